/// @file
/// The entries of a calendar as values that a program can use, read one at a time. One object
/// belongs to one thread at a time.
#ifndef QELCALENDAR_ENTRIES_H
#define QELCALENDAR_ENTRIES_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "QelCalendar/Error.h"
#include "QelCalendar/Notes.h"
#include "QelCalendar/Rules.h"
#include "QelCalendar/Times.h"

namespace qelcal {

/// An event, a to-do or a note, as long as it lasts: until the next call on the reader that
/// returned it, or until the callback that received it returns. Copying it does not make it last
/// longer.
class Entry {
  public:
    /// A view of an entry of the C interface.
    explicit Entry(const qelcal_entry* entry = nullptr) : entry_(entry) {}

    /// False for an empty view: there is no entry, or the file has ended.
    explicit operator bool() const noexcept { return entry_ != nullptr; }
    /// What it is.
    qelcal_entry_kind kind() const {
        return static_cast<qelcal_entry_kind>(qelcal_entry_kind_of(entry_));
    }
    /// The line of the file on which it begins.
    std::size_t line() const { return qelcal_entry_line(entry_); }
    /// Its UID, empty where it has none.
    std::string uid() const { return qelcal_entry_uid(entry_); }
    /// True when it has a property of that name, in capitals.
    bool has(const std::string& name) const {
        return qelcal_entry_text(entry_, name.c_str()) != nullptr;
    }
    /// The value of the first property of that name ("SUMMARY"), empty where there is none.
    std::string text(const std::string& name) const {
        const char* value = qelcal_entry_text(entry_, name.c_str());
        return value == nullptr ? std::string() : value;
    }
    /// All values of all properties of that name ("CATEGORIES").
    std::vector<std::string> values(const std::string& name) const {
        std::vector<std::string> all;
        for (std::size_t i = 0; i < qelcal_entry_property_count(entry_); ++i) {
            if (qelcal_entry_property_name(entry_, i) != name) continue;
            for (std::size_t j = 0; j < qelcal_entry_value_count(entry_, i); ++j)
                all.push_back(qelcal_entry_value(entry_, i, j));
        }
        return all;
    }
    /// True when it has that time.
    bool has(qelcal_which_time which) const {
        Time time;
        return qelcal_entry_time(entry_, which, &time) == QELCAL_OK;
    }
    /// One of its times. Throws Error (QELCAL_ABSENT) where it has none.
    Time time(qelcal_which_time which) const {
        Time time;
        detail::check(qelcal_entry_time(entry_, which, &time));
        return time;
    }
    /// One of its times in UTC. Throws Error (QELCAL_ABSENT) where that cannot be known.
    Time utc(const Time& time) const {
        Time result;
        detail::check(qelcal_entry_to_utc(entry_, &time, &result));
        return result;
    }
    /// True for an all-day entry.
    bool allDay() const { return qelcal_entry_all_day(entry_) != 0; }
    /// The name of the zone of its zoned times, empty where it has none.
    std::string zone() const {
        const char* name = qelcal_entry_zone(entry_);
        return name == nullptr ? std::string() : name;
    }
    /// Its rules; those of excluding() take dates out. They last as long as the entry.
    std::vector<Rules> rules() const { return rulesThat(false); }
    /// Its EXRULEs.
    std::vector<Rules> excluding() const { return rulesThat(true); }
    /// Its single dates (RDATE), or those that are taken out (EXDATE).
    std::vector<Time> dates(bool excluded) const {
        std::vector<Time> all(qelcal_entry_date_count(entry_, excluded ? 1 : 0));
        for (std::size_t i = 0; i < all.size(); ++i)
            qelcal_entry_date(entry_, excluded ? 1 : 0, i, &all[i]);
        return all;
    }
    /// Its first `most` occurrences (0: all through 2499), without those that are taken out.
    std::vector<Time> occurrences(std::size_t most) const { return list(nullptr, nullptr, most); }
    /// Its occurrences from `since` through `through`, the first `most` of them (0: all).
    std::vector<Time> occurrences(const Time& since, const Time& through,
                                  std::size_t most = 0) const {
        return list(&since, &through, most);
    }
    /// Its alarms; their texts last as long as the entry.
    std::vector<qelcal_alarm> alarms() const {
        std::vector<qelcal_alarm> all(qelcal_entry_alarm_count(entry_));
        for (std::size_t i = 0; i < all.size(); ++i) qelcal_entry_alarm(entry_, i, &all[i]);
        return all;
    }
    /// What was reported about it.
    std::vector<Note> notes() const {
        std::vector<Note> all;
        for (std::size_t i = 0; i < qelcal_entry_note_count(entry_); ++i)
            all.emplace_back(qelcal_entry_note(entry_, i));
        return all;
    }
    /// For calls of the C interface.
    const qelcal_entry* get() const noexcept { return entry_; }

  private:
    static int QELCALENDAR_CALL add(void* context, const qelcal_time* time) {
        try {
            static_cast<std::vector<Time>*>(context)->push_back(*time);
            return 0;
        } catch (...) {
            return 1;
        }
    }

    std::vector<Time> list(const Time* since, const Time* through, std::size_t most) const {
        std::vector<Time> times;
        const int result = qelcal_entry_occurrences(entry_, since, through, most, &add, &times);
        if (result == QELCAL_STOPPED) throw std::bad_alloc();
        detail::check(result);
        return times;
    }

    std::vector<Rules> rulesThat(bool exclude) const {
        std::vector<Rules> all;
        for (std::size_t i = 0; i < qelcal_entry_rule_count(entry_); ++i)
            if ((qelcal_entry_rule_excludes(entry_, i) != 0) == exclude)
                all.emplace_back(qelcal_entry_rules(entry_, i), nullptr);
        return all;
    }

    const qelcal_entry* entry_;
};

/// Reads the entries of one file.
///
///     qelcal::Reader reader;
///     reader.write(bytes.data(), bytes.size());
///     reader.end();
///     while (qelcal::Entry entry = reader.next()) std::cout << entry.text("SUMMARY") << "\n";
class Reader {
  public:
    Reader() : reader_(detail::made(qelcal_reader_new())) {}

    /// Chooses before the first byte of the file. Throws Error (QELCAL_INVALID_ARGUMENT) for a
    /// value that it cannot have.
    void choose(qelcal_choice choice, const std::string& value) {
        detail::check(qelcal_reader_choose(reader_.get(), choice, value.c_str()));
    }
    /// The whole input in a pass of its own before write(), for zones that are described after the
    /// entries that use them. Optional.
    void scan(const void* bytes, std::size_t size) {
        detail::check(qelcal_reader_scan(reader_.get(), bytes, size));
    }
    /// The next bytes of the file, a piece of any size.
    void write(const void* bytes, std::size_t size) {
        detail::check(qelcal_reader_write(reader_.get(), bytes, size));
    }
    /// There are no more bytes.
    void end() { detail::check(qelcal_reader_end(reader_.get())); }
    /// The next entry; false when more input is needed or, after end(), when there is none left.
    Entry next() {
        const qelcal_entry* entry = nullptr;
        const int result = qelcal_reader_next(reader_.get(), &entry);
        if (result == QELCAL_END || result == QELCAL_NEED_INPUT) return Entry();
        detail::check(result);
        return Entry(entry);
    }
    /// Notes that belong to no entry, so far.
    std::vector<Note> notes() const {
        std::vector<Note> all;
        for (std::size_t i = 0; i < qelcal_reader_note_count(reader_.get()); ++i)
            all.emplace_back(qelcal_reader_note(reader_.get(), i));
        return all;
    }

  private:
    struct Free {
        void operator()(qelcal_reader* reader) const { qelcal_reader_free(reader); }
    };
    std::unique_ptr<qelcal_reader, Free> reader_;
};

}  // namespace qelcal

#endif
