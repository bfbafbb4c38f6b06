// Times and durations.
#include <cassert>
#include <cstring>
#include <string>

#include "calendar/api/Calls.h"
#include "calendar/api/TimeValue.h"
#include "calendar/base/CalendarNames.h"
#include "calendar/base/Days.h"

namespace qel::calendar::api {

qelcal_time timeOf(const Moment& moment) {
    const Civil civil = civilOf(moment.day);
    return {civil.year,
            civil.month,
            civil.day,
            moment.second / 3600,
            moment.second / 60 % 60,
            moment.second % 60,
            moment.isDate ? 1 : 0,
            moment.clock == Clock::Utc     ? QELCAL_UTC
            : moment.clock == Clock::Zoned ? QELCAL_ZONED
                                           : QELCAL_FLOATING};
}

std::optional<Moment> momentOf(const qelcal_time& time) {
    const auto within = [](int value, int least, int most) {
        return value >= least && value <= most;
    };
    if (!within(time.year, 1, 9999) || !within(time.month, 1, 12) ||
        !within(time.day, 1, daysInMonth(time.year, time.month)) || !within(time.hour, 0, 23) ||
        !within(time.minute, 0, 59) || !within(time.second, 0, 59) ||
        !within(time.clock, QELCAL_FLOATING, QELCAL_ZONED))
        return std::nullopt;
    Moment moment;
    moment.day = dayNumber(time.year, time.month, time.day);
    moment.isDate = time.is_date != 0;
    moment.second = moment.isDate ? 0 : time.hour * 3600 + time.minute * 60 + time.second;
    moment.clock = time.clock == QELCAL_UTC     ? Clock::Utc
                   : time.clock == QELCAL_ZONED ? Clock::Zoned
                                                : Clock::Floating;
    return moment;
}

RuleStart ruleStartOf(const Moment& moment) {
    const Civil civil = civilOf(moment.day);
    return {civil.year, civil.month, civil.day, moment.second, moment.isDate, 0, moment.clock};
}

}  // namespace qel::calendar::api

namespace {

namespace api = qel::calendar::api;

constexpr char kInvalidTime[] = "a field of the time is out of its range";

int write(const std::string& written, char* text) {
    // The longest is a duration of 28 bytes.
    static_assert(QELCAL_TIME_SIZE == 32);
    assert(written.size() < QELCAL_TIME_SIZE);
    std::memcpy(text, written.c_str(), written.size() + 1);
    return QELCAL_OK;
}

}  // namespace

int qelcal_time_read(const char* text, qelcal_time* time) {
    if (text == nullptr || time == nullptr)
        return api::fail(QELCAL_INVALID_ARGUMENT, "the text or the result is null");
    return api::guarded([=] {
        std::string problem;
        const auto moment = qel::calendar::parseMoment(text, &problem);
        if (!moment) return api::fail(QELCAL_INVALID_TEXT, problem);
        *time = api::timeOf(*moment);
        return int{QELCAL_OK};
    });
}

int qelcal_time_write(const qelcal_time* time, char* text) {
    if (time == nullptr || text == nullptr)
        return api::fail(QELCAL_INVALID_ARGUMENT, "the time or the result is null");
    return api::guarded([=] {
        const auto moment = api::momentOf(*time);
        if (!moment) return api::fail(QELCAL_INVALID_ARGUMENT, kInvalidTime);
        return write(qel::calendar::formatMoment(*moment), text);
    });
}

int qelcal_time_add(const qelcal_time* time, int64_t seconds, qelcal_time* result) {
    if (time == nullptr || result == nullptr)
        return api::fail(QELCAL_INVALID_ARGUMENT, "the time or the result is null");
    const auto moment = api::momentOf(*time);
    if (!moment) return api::fail(QELCAL_INVALID_ARGUMENT, kInvalidTime);
    constexpr std::int64_t kFirst = std::int64_t{qel::calendar::dayNumber(1, 1, 1)} * 86400;
    constexpr std::int64_t kLast = std::int64_t{qel::calendar::dayNumber(10000, 1, 1)} * 86400;
    // More than all years leave them from anywhere, and the sum cannot overflow.
    if (seconds > kLast - kFirst || seconds < kFirst - kLast ||
        moment->seconds() + seconds < kFirst || moment->seconds() + seconds >= kLast)
        return api::fail(QELCAL_INVALID_ARGUMENT, "the sum lies outside the years 1 to 9999");
    *result = api::timeOf(momentAt(*moment, moment->seconds() + seconds));
    return QELCAL_OK;
}

int64_t qelcal_time_seconds(const qelcal_time* time) {
    const auto moment = time == nullptr ? std::nullopt : api::momentOf(*time);
    return moment ? moment->seconds() : 0;
}

int qelcal_time_weekday(const qelcal_time* time) {
    const auto moment = time == nullptr ? std::nullopt : api::momentOf(*time);
    return moment ? qel::calendar::weekdayOf(moment->day) : 0;
}

const char* qelcal_month_name(int month) {
    return month >= 1 && month <= 12 ? qel::calendar::monthName(month).data() : "";
}

const char* qelcal_weekday_name(int weekday) {
    return weekday >= 1 && weekday <= 7 ? qel::calendar::weekdayName(weekday).data() : "";
}

int qelcal_duration_read(const char* text, int64_t* seconds) {
    if (text == nullptr || seconds == nullptr)
        return api::fail(QELCAL_INVALID_ARGUMENT, "the text or the result is null");
    return api::guarded([=] {
        std::string problem;
        const auto duration = qel::calendar::parseDuration(text, &problem);
        if (!duration) return api::fail(QELCAL_INVALID_TEXT, problem);
        *seconds = duration->total();
        return int{QELCAL_OK};
    });
}

int qelcal_duration_write(int64_t seconds, char* text) {
    if (text == nullptr) return api::fail(QELCAL_INVALID_ARGUMENT, "the result is null");
    return api::guarded([=] { return write(qel::calendar::formatDuration(seconds), text); });
}
