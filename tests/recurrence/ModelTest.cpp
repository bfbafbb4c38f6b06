// Every series of a small world beside the day-by-day model: each type, intervals 1 to 4, all
// values of its fields and all subsets of its sets, from starts over four years with a leap day. A
// few seconds of it run as a test; `./dev model` sets QEL_MODEL_WHOLE for all.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "QelUtility/RptExpand.h"
#include "recurrence/DayModel.h"
#include "recurrence/RepeatRecord.h"

namespace {

using qel::test::describe;
using qel::test::modelDay;
using qel::test::modelNext;

constexpr int kFirstStart = 37620;    // 1 January 2003
constexpr int kStarts = 1461;         // to 31 December 2006
constexpr int kLeapDay = 424;         // 29 February 2004 among them
constexpr std::size_t kFailures = 5;  // more are not shown

bool isWhole() {
    return std::getenv("QEL_MODEL_WHOLE") != nullptr;
}

using Visit = std::function<void(const ZQTR_REPEAT&)>;

// Sets one field after the other to each of its values, then visits.
class World {
  public:
    World(short type, int startStride) : startStride_(startStride) {
        ClearZQTR(&base_);
        base_.type = type;
        base_.endDate = -1;
        base_.interval = 1;
        base_.unitCount = 1;
    }
    World& each(short ZQTR_REPEAT::*field, int low, int high) {
        return add(
            high - low + 1,
            [=](ZQTR_REPEAT& record, int i) { record.*field = static_cast<short>(low + i); });
    }
    World& each(short ZQTR_REPEAT::*field, std::vector<short> values) {
        const int count = static_cast<int>(values.size());
        return add(count, [=](ZQTR_REPEAT& record, int i) {
            record.*field = values[static_cast<std::size_t>(i)];
        });
    }
    template <int kSize>
    World& subsets(short (ZQTR_REPEAT::*set)[kSize]) {
        return add(
            1 << kSize,
            [=](ZQTR_REPEAT& record, int i) {
                for (int bit = 0; bit < kSize; ++bit) (record.*set)[bit] = (i >> bit & 1) != 0;
            });
    }
    // Of the fifth week also the flag that is not 1.
    World& weeks() {
        return add(
            48,
            [](ZQTR_REPEAT& record, int i) {
                for (int bit = 0; bit < 4; ++bit) record.weeks[bit] = (i >> bit & 1) != 0;
                record.weeks[4] = static_cast<short>(i >> 4);
            });
    }
    World& months(std::vector<int> sets) {
        const int count = static_cast<int>(sets.size());
        return add(count, [=](ZQTR_REPEAT& record, int i) {
            for (int bit = 0; bit < 12; ++bit)
                record.months[bit] = (sets[static_cast<std::size_t>(i)] >> bit & 1) != 0;
        });
    }

    // Every record from every start whose turn it is, or a sample of both.
    void visit(unsigned turn, unsigned turns, const Visit& see) const {
        const unsigned stride = isWhole() ? 1 : 97;
        long long number = 0;
        std::vector<int> at(fields_.size());
        ZQTR_REPEAT record = base_;
        for (;;) {
            for (std::size_t i = 0; i < at.size(); ++i) fields_[i].set(record, at[i]);
            for (int start = kLeapDay % startStride_; start < kStarts; start += startStride_) {
                if (++number % (static_cast<long long>(turns) * stride) != turn * stride) continue;
                record.startDate = kFirstStart + start;
                see(record);
            }
            std::size_t field = 0;
            while (field < at.size() && ++at[field] == fields_[field].count) at[field++] = 0;
            if (field == at.size()) return;
        }
    }

  private:
    struct Field {
        int count;
        std::function<void(ZQTR_REPEAT&, int)> set;
    };

    World& add(int count, std::function<void(ZQTR_REPEAT&, int)> set) {
        fields_.push_back({count, std::move(set)});
        return *this;
    }

    int startStride_;
    ZQTR_REPEAT base_{};
    std::vector<Field> fields_;
};

struct Case {
    const char* name;
    std::size_t steps;  // of each series
    World world;
};

std::vector<Case> cases() {
    using R = ZQTR_REPEAT;
    const std::vector<short> ends{1, 15, 28, 29, 30, 31};
    std::vector<int> allMonths(4096);
    for (int i = 0; i < 4096; ++i) allMonths[static_cast<std::size_t>(i)] = i;
    const std::vector<int> someMonths{0x001, 0x002, 0x800, 0x803, 0x249,
                                      0x555, 0xAAA, 0x0F0, 0x7FF, 0xFFF};
    return {
        {"Daily", 40, World(1, 1).each(&R::interval, 1, 4)},
        {"Weekly", 20, World(2, 1).each(&R::interval, 1, 4).each(&R::dayOfWeek, 1, 7)},
        {"MonthlyDay", 20, World(3, 1).each(&R::interval, 1, 4).each(&R::dayOfMonth, 1, 31)},
        {"MonthlyWeekday", 20,
         World(4, 1)
             .each(&R::interval, 1, 4)
             .each(&R::dayOfWeek, 1, 7)
             .each(&R::weekOfMonth, 1, 5)},
        {"YearlyDate", 5,
         World(5, 7).each(&R::interval, 1, 4).each(&R::month, 1, 12).each(&R::dayOfMonth, 1, 31)},
        {"YearlyWeekday", 5,
         World(6, 7)
             .each(&R::interval, 1, 4)
             .each(&R::month, 1, 12)
             .each(&R::dayOfWeek, 1, 7)
             .each(&R::weekOfMonth, 1, 5)},
        {"DayOfMonths", 8,
         World(7, 61).each(&R::interval, {1, 3}).each(&R::dayOfMonth, ends).months(allMonths)},
        {"WeeksOfMonths", 8, World(8, 61).subsets(&R::days).weeks().months(someMonths)},
        {"MonthlyKind", 20,
         World(10, 1)
             .each(&R::interval, 1, 4)
             .each(&R::dayOfMonth, 1, 5)
             .each(&R::dayOfWeek, 8, 10)},
        {"YearlyKind", 5,
         World(11, 7)
             .each(&R::interval, 1, 4)
             .each(&R::month, 1, 12)
             .each(&R::dayOfMonth, 1, 5)
             .each(&R::dayOfWeek, 8, 10)},
        {"WeeklyDays", 20, World(12, 1).each(&R::interval, 1, 4).subsets(&R::days)},
        {"QuarterlyDay", 8, World(13, 1).each(&R::interval, {1, 3}).each(&R::dayOfMonth, 1, 92)},
        {"QuarterlyWeekday", 8,
         World(14, 1)
             .each(&R::interval, {1, 3})
             .each(&R::dayOfWeek, 1, 7)
             .each(&R::weekOfMonth, 1, 14)},
        {"WeeksMonthly", 8, World(15, 31).each(&R::interval, 1, 4).subsets(&R::days).weeks()},
    };
}

// One series beside the model. What differs is the text of the answer.
class Comparison {
  public:
    Comparison() { DateBlock_Init(&list_, 0, DATEBLOCK_STEP, DATEBLOCK_MAXIMUM); }
    ~Comparison() { DateBlock_Free(&list_); }
    Comparison(const Comparison&) = delete;
    Comparison& operator=(const Comparison&) = delete;

    std::string differs(const ZQTR_REPEAT& repeat, std::size_t steps) {
        std::string text = stepsDiffer(repeat, steps);
        const bool isOrdinary = found_.size() >= 3 && modelDay(found_.back()).year < 2080;
        if (text.empty() && isOrdinary) text = jumpsDiffer(repeat);
        if (text.empty() && isOrdinary) text = listDiffers(repeat);
        return text.empty() ? text : describe(repeat) + ": " + text;
    }
    [[nodiscard]] long long steps() const { return steps_; }

  private:
    std::string stepsDiffer(ZQTR_REPEAT repeat, std::size_t steps) {
        found_.clear();
        int previous = -1;
        int next = -1;
        const bool empty =
            repeat.type == REPEAT_WEEKLY_DAYS &&
            std::none_of(repeat.days, repeat.days + 7, [](short flag) { return flag; });
        if (empty) return {};  // an error, as a table of failures has it
        while (found_.size() < steps) {
            const int expected = modelNext(repeat, previous);
            if (expected < 0) return {};
            ++steps_;
            const int result = ZQRepeatNextDate(&repeat, &next, &previous);
            if (result != 0 || next != expected)
                return differs("step", expected, result == 0 ? next : -result);
            found_.push_back(next);
        }
        static constexpr int kFromStart = 1 << 3 | 1 << 4 | 1 << 6 | 1 << 7 | 1 << 10 | 1 << 11;
        if ((kFromStart >> repeat.type & 1) == 0) return {};
        previous = -2;
        const int expected = modelNext(repeat, previous);
        const int result = ZQRepeatNextDate(&repeat, &next, &previous);
        return result == 0 && next == expected ? "" : differs("from -2", expected, next);
    }

    // The jump comes to where the steps come, from any date between two of them.
    std::string jumpsDiffer(const ZQTR_REPEAT& repeat) {
        // Refused, as documented: such a day may leave its quarter.
        if (repeat.type == REPEAT_QUARTERLY_WEEKDAY && repeat.weekOfMonth == 13) return {};
        for (const std::size_t i : {std::size_t{1}, found_.size() - 1})
            for (const int date : {found_[i - 1] + 1, found_[i]}) {
                if (date <= repeat.startDate) continue;
                int reached = -1;
                const int result = ZQRepeatJump(&repeat, date, &reached);
                if (result != 0 || reached != found_[i]) return differs("jump", found_[i], reached);
            }
        return {};
    }

    // An end and exclusions: what is listed up to the one, with the others marked.
    std::string listDiffers(ZQTR_REPEAT repeat) {
        const std::size_t middle = found_.size() / 2;
        int exclusions[] = {found_[0], found_[middle] + 1, found_[middle]};
        repeat.exclusions = exclusions;
        repeat.exclusionCount = 3;
        repeat.endDate = found_[found_.size() - 2];
        // In a year every type lists all that it is asked for.
        const int to = std::min(found_.back(), repeat.startDate + 365);
        // The record is packed, so its fields have no references.
        const int endDate = repeat.endDate;
        const int last = std::min(to, endDate);
        std::vector<int> expected;
        int expectedValid = 0;
        for (const int date : found_) {
            if (date < repeat.startDate || date > last) continue;
            const bool excluded =
                std::count(std::begin(exclusions), std::end(exclusions), date) != 0;
            expected.push_back(excluded ? -date : date);
            expectedValid += excluded ? 0 : 1;
        }
        int valid = -1;
        int total = -1;
        const int wanted = static_cast<int>(found_.size()) + 20;
        const int result = Unfold_Repeat(&repeat, wanted, repeat.startDate, repeat.startDate, to,
                                         &list_, &valid, &total);
        if (result != 0) return differs("list", 0, -result);
        if (total != static_cast<int>(expected.size()) || valid != expectedValid ||
            !std::equal(expected.begin(), expected.end(), list_.data))
            return differs("listed", static_cast<int>(expected.size()), total);
        return {};
    }

    static std::string differs(const char* what, int expected, int found) {
        return std::string(what) + " " + std::to_string(qel::test::date(expected)) + " expected, " +
               std::to_string(qel::test::date(found)) + " found";
    }

    std::vector<int> found_;
    DateBlock list_{};
    long long steps_ = 0;
};

class Model : public testing::TestWithParam<Case> {};

TEST_P(Model, EverySeriesOfTheSmallWorld) {
    const Case& tested = GetParam();
    const unsigned turns = std::max(1U, std::thread::hardware_concurrency());
    std::vector<std::vector<std::string>> failures(turns);
    std::atomic<long long> series{0};
    std::atomic<long long> steps{0};
    std::vector<std::thread> running;
    for (unsigned turn = 0; turn < turns; ++turn)
        running.emplace_back([&, turn] {
            Comparison comparison;
            tested.world.visit(turn, turns, [&](const ZQTR_REPEAT& repeat) {
                ++series;
                if (failures[turn].size() >= kFailures) return;
                std::string text = comparison.differs(repeat, tested.steps);
                if (!text.empty()) failures[turn].push_back(std::move(text));
            });
            steps += comparison.steps();
        });
    for (std::thread& each : running) each.join();
    for (const auto& each : failures)
        for (const std::string& text : each) ADD_FAILURE() << text;
    EXPECT_GT(steps, 0);
    std::printf("%s: %lld series, %lld steps\n", tested.name, series.load(), steps.load());
}

INSTANTIATE_TEST_SUITE_P(Engine, Model, testing::ValuesIn(cases()),
                         [](const auto& tested) { return tested.param.name; });

}  // namespace
