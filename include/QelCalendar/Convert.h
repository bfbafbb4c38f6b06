/// @file
/// Calendars converted, vCalendar 1.0 to iCalendar and back: bytes in by pieces of any size, the
/// calendar out through one callback, notes through another. One object belongs to one thread at a
/// time; memory is bounded whatever the size of the files.
#ifndef QELCALENDAR_CONVERT_H
#define QELCALENDAR_CONVERT_H

#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "QelCalendar/Entries.h"
#include "QelCalendar/Error.h"
#include "QelCalendar/Notes.h"
#include "QelCalendar/Report.h"
#include "QelCalendar/Texts.h"

namespace qelcal {

/// One entry after its conversion; everything lasts until the callback returns.
struct Converted {
    Entry entry;           ///< as it was read, with its notes
    qelcal_format target;  ///< what it was written as
    std::string source;    ///< its bytes in the file; empty unless lines are wanted
    bool sourceCut;        ///< the entry has more lines than `source`
    std::string written;   ///< its lines in the result; empty unless lines are wanted
};

/// Converts any number of files into one calendar. What a callback throws ends the call that it
/// belongs to and comes out of it.
class Converter {
  public:
    /// Receives a piece of the calendar.
    using Output = std::function<void(const char* bytes, std::size_t size)>;
    /// Receives a note.
    using OnNote = std::function<void(const Note& note)>;
    /// Receives a note of the C interface, which is valid during the call. Not null.
    using OnNoteHandle = std::function<void(const qelcal_note* note)>;
    /// Receives an entry after its conversion.
    using OnEntry = std::function<void(const Converted& converted)>;

    /// A converter to `target`. An empty `output` drops the calendar: a dry run.
    explicit Converter(qelcal_format target, Output output)
        : state_(new State(std::move(output))),
          converter_(detail::made(qelcal_converter_new(
              target, state_->output ? &State::write : nullptr, state_.get()))) {}

    /// From now on `note` (empty: nobody) receives every note at once.
    void onNote(OnNote note) {
        if (!note) return onNoteHandle({});
        onNoteHandle([note](const qelcal_note* each) { note(Note(each)); });
    }
    /// The same without a copy, for those who look at few notes. It takes the place of onNote.
    void onNoteHandle(OnNoteHandle note) {
        state_->note = std::move(note);
        detail::check(qelcal_converter_on_note(
            converter_.get(), state_->note ? &State::report : nullptr, state_.get()));
    }
    /// From the next file on `entry` (empty: nobody) receives every entry; `lines`: with its source
    /// and written lines.
    void onEntry(OnEntry entry, bool lines = false) {
        state_->entry = std::move(entry);
        detail::check(qelcal_converter_on_entry(converter_.get(),
                                                state_->entry ? &State::convert : nullptr,
                                                state_.get(), lines ? 1 : 0));
    }
    /// From the next file on `report` (null: none) receives all that is converted; it must outlive
    /// the converter or be taken off it.
    void reportTo(Report* report) {
        finish(
            qelcal_converter_report(converter_.get(), report == nullptr ? nullptr : report->get()));
    }
    /// Chooses for the files that begin after it. Throws Error (QELCAL_INVALID_ARGUMENT) for a
    /// value that it cannot have.
    void choose(qelcal_choice choice, const std::string& value) {
        detail::check(qelcal_converter_choose(converter_.get(), choice, value.c_str()));
    }
    /// From the next file on `most` threads work on each large piece given to write(), this one
    /// among them; callbacks are called on this one, in the same order as with one.
    void threads(int most) { detail::check(qelcal_converter_threads(converter_.get(), most)); }
    /// Begins a file; its notes have `name`.
    void beginFile(const std::string& name) {
        finish(qelcal_converter_begin_file(converter_.get(), name.c_str()));
    }
    /// The whole file in a pass of its own before write(), for zones that are described after the
    /// entries that use them. Optional.
    void scan(const void* bytes, std::size_t size) {
        finish(qelcal_converter_scan(converter_.get(), bytes, size));
    }
    /// The next bytes of the file, a piece of any size.
    void write(const void* bytes, std::size_t size) {
        finish(qelcal_converter_write(converter_.get(), bytes, size));
    }
    /// The file ends here.
    void endFile() { finish(qelcal_converter_end_file(converter_.get())); }
    /// A part of this converter: with it another thread may read the next files, while this one is
    /// used. It holds what it reads until join(), and only reads. Any thread may call this; each
    /// part belongs to one.
    Converter part() const { return Converter(detail::made(qelcal_converter_part(get()))); }
    /// Converts the files that `part` has read, as if this converter had read them.
    void join(Converter& part) {
        finish(qelcal_converter_join(converter_.get(), part.converter_.get()));
    }
    /// Ends the calendar and hands on what is left of it.
    void finish() { finish(qelcal_converter_finish(converter_.get())); }
    /// What is written; QELCAL_OTHER before the first file has shown it.
    qelcal_format target() const {
        return static_cast<qelcal_format>(qelcal_converter_target(converter_.get()));
    }
    /// The counts of all files so far.
    qelcal_counts counts() const {
        qelcal_counts counts = {};
        detail::check(qelcal_converter_counts(converter_.get(), &counts));
        return counts;
    }

  private:
    explicit Converter(qelcal_converter* part) : state_(new State({})), converter_(part) {}
    const qelcal_converter* get() const noexcept { return converter_.get(); }

    // Where the callbacks find the caller's functions, and leave what they throw.
    struct State {
        explicit State(Output sink) : output(std::move(sink)) {}

        template <class Call>
        int guarded(Call call) noexcept {
            try {
                call();
                return 0;
            } catch (...) {
                problem = std::current_exception();
                return 1;
            }
        }
        static int QELCALENDAR_CALL write(void* context, const char* bytes, std::size_t size) {
            State& state = *static_cast<State*>(context);
            return state.guarded([&] { state.output(bytes, size); });
        }
        static int QELCALENDAR_CALL report(void* context, const qelcal_note* note) {
            State& state = *static_cast<State*>(context);
            return state.guarded([&] { state.note(note); });
        }
        static int QELCALENDAR_CALL convert(void* context, const qelcal_converted* converted) {
            State& state = *static_cast<State*>(context);
            return state.guarded([&] {
                state.entry({Entry(converted->entry), static_cast<qelcal_format>(converted->target),
                             std::string(converted->source, converted->source_size),
                             converted->source_cut != 0,
                             std::string(converted->written, converted->written_size)});
            });
        }

        Output output;
        OnNoteHandle note;
        OnEntry entry;
        std::exception_ptr problem;
    };
    struct Free {
        void operator()(qelcal_converter* converter) const { qelcal_converter_free(converter); }
    };

    void finish(int result) {
        if (state_->problem) {
            std::exception_ptr problem;
            std::swap(problem, state_->problem);
            std::rethrow_exception(problem);
        }
        detail::check(result);
    }

    std::unique_ptr<State> state_;
    std::unique_ptr<qelcal_converter, Free> converter_;
};

/// A whole calendar in memory, converted. `notes`, which may be null, receives what was reported.
///
///     std::string ics = qelcal::convert(vcs);
inline std::string convert(const std::string& calendar, qelcal_format target = QELCAL_OTHER,
                           std::vector<Note>* notes = nullptr) {
    std::string result;
    Converter converter(
        target, [&result](const char* bytes, std::size_t size) { result.append(bytes, size); });
    if (notes != nullptr) converter.onNote([notes](const Note& note) { notes->push_back(note); });
    converter.beginFile("");
    converter.scan(calendar.data(), calendar.size());
    converter.write(calendar.data(), calendar.size());
    converter.endFile();
    converter.finish();
    return result;
}

}  // namespace qelcal

#endif
