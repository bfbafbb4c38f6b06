/// @file
/// Recurrence rules: read any of their three texts, write any, explain them, list their dates. One
/// object belongs to one thread at a time.
#ifndef QELCALENDAR_RULES_H
#define QELCALENDAR_RULES_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "QelCalendar/Error.h"
#include "QelCalendar/Notes.h"
#include "QelCalendar/Times.h"

namespace qelcal {

/// What was read from one rule text: mostly one rule, several where the text has several. Cheap
/// to copy; copies share what was read.
///
///     qelcal::Rules rules("W2 MO WE FR #10", qelcal::Time::read("20050615"));
///     rules.text(QELCAL_FORM_ICALENDAR);  // FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE,FR
///     rules.words();  // every 2 weeks on Monday, Wednesday and Friday, 10 times
class Rules {
  public:
    /// Reads a text whose series starts on `start`; see qelcal_rules_read, and
    /// QELCAL_CHOOSE_COUNT_MEANS for `countMeans`. Throws Error.
    Rules(const std::string& text, const Time& start, qelcal_form form = QELCAL_FORM_ANY,
          const std::string& countMeans = {}) {
        read(text, &start, form, countMeans);
    }
    /// The same without a start: words() is empty and dates() throws.
    explicit Rules(const std::string& text, qelcal_form form = QELCAL_FORM_ANY) {
        read(text, nullptr, form, {});
    }
    /// Rules that belong to `owner`, which is kept alive.
    Rules(const qelcal_rules* rules, std::shared_ptr<const void> owner)
        : rules_(std::move(owner), rules) {}

    /// The form that the text was read as.
    qelcal_form form() const { return static_cast<qelcal_form>(qelcal_rules_form(get())); }
    /// The number of rules.
    std::size_t count() const { return qelcal_rules_count(get()); }
    /// False when a part that decides on the dates was not understood.
    bool complete() const { return qelcal_rules_complete(get()) != 0; }
    /// How the text was understood.
    std::vector<Note> notes() const {
        std::vector<Note> all;
        for (std::size_t i = 0; i < qelcal_rules_note_count(get()); ++i)
            all.emplace_back(qelcal_rules_note(get(), i));
        return all;
    }
    /// The texts of a rule in `form`: several where the form needs several, none where it cannot
    /// hold the rule; reason() says why then.
    std::vector<std::string> texts(qelcal_form form, std::size_t rule = 0) const {
        std::vector<std::string> all;
        for (std::size_t i = 0; i < qelcal_rules_text_count(get(), rule, form); ++i)
            all.push_back(qelcal_rules_text(get(), rule, form, i));
        return all;
    }
    /// The first of texts(), empty where there is none.
    std::string text(qelcal_form form, std::size_t rule = 0) const {
        return qelcal_rules_text(get(), rule, form, 0);
    }
    /// What `form` cannot express of the rule; empty when it can express all of it.
    std::string reason(qelcal_form form, std::size_t rule = 0) const {
        return qelcal_rules_reason(get(), rule, form);
    }
    /// The number of QelUtility's records (QelUtility/RRule.h) that the rule takes together, 0 when
    /// no record can hold it.
    std::size_t recordCount(std::size_t rule = 0) const {
        return qelcal_rules_record_count(get(), rule);
    }
    /// Fills in one of these records. True when its positions belong to its weekday; see
    /// qelcal_rules_record. Throws Error past the last one.
    bool record(std::size_t index, _rruleRepeat& record, std::size_t rule = 0) const {
        int ordinals = 0;
        detail::check(qelcal_rules_record(get(), rule, index, &record, &ordinals));
        return ordinals != 0;
    }
    /// What the records cannot express.
    std::vector<Note> recordNotes(std::size_t rule = 0) const {
        std::vector<Note> all;
        for (std::size_t i = 0; i < qelcal_rules_record_note_count(get(), rule); ++i)
            all.emplace_back(qelcal_rules_record_note(get(), rule, i));
        return all;
    }
    /// The rule in plain English.
    std::string words(std::size_t rule = 0) const { return qelcal_rules_words(get(), rule); }
    /// True when the rule by itself has an occurrence on the start.
    bool yieldsStart(std::size_t rule = 0) const {
        return qelcal_rules_yields_start(get(), rule) != 0;
    }
    /// The first `most` dates (0: all through 2499). Throws Error without a start.
    std::vector<Time> dates(std::size_t most, std::size_t rule = 0) const {
        return list(rule, nullptr, nullptr, most);
    }
    /// The dates from `since` through `through`. Throws Error without a start.
    std::vector<Time> dates(const Time& since, const Time& through, std::size_t rule = 0) const {
        return list(rule, &since, &through, 0);
    }
    /// For calls of the C interface.
    const qelcal_rules* get() const noexcept { return rules_.get(); }

  private:
    void read(const std::string& text, const Time* start, qelcal_form form,
              const std::string& countMeans) {
        qelcal_rules* rules = nullptr;
        detail::check(
            qelcal_rules_read_counting(text.c_str(), form, start, countMeans.c_str(), &rules));
        rules_ = std::shared_ptr<const qelcal_rules>(rules, [](const qelcal_rules* owned) {
            qelcal_rules_free(const_cast<qelcal_rules*>(owned));
        });
    }

    static int QELCALENDAR_CALL add(void* context, const qelcal_time* time) {
        try {
            static_cast<std::vector<Time>*>(context)->push_back(*time);
            return 0;
        } catch (...) {
            return 1;
        }
    }

    std::vector<Time> list(std::size_t rule, const Time* since, const Time* through,
                           std::size_t most) const {
        std::vector<Time> times;
        const int result = qelcal_rules_dates(get(), rule, since, through, most, &add, &times);
        if (result == QELCAL_STOPPED) throw std::bad_alloc();
        detail::check(result);
        return times;
    }

    std::shared_ptr<const qelcal_rules> rules_;
};

}  // namespace qelcal

#endif
