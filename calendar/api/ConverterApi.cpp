// Calendars converted.
#include <memory>
#include <optional>
#include <ostream>
#include <streambuf>
#include <string>
#include <utility>

#include "calendar/api/Calls.h"
#include "calendar/api/Choosing.h"
#include "calendar/api/EntryHandle.h"
#include "calendar/api/ReportHandle.h"
#include "calendar/converter/Converter.h"
#include "calendar/converter/HeldFiles.h"
#include "calendar/report/Outcome.h"

using qel::calendar::CalendarFormat;
using qel::calendar::ConvertedEntry;
using qel::calendar::Note;
namespace api = qel::calendar::api;

namespace {

// Hands what is written to a callback; null drops it.
class CallbackBuffer final : public std::streambuf {
  public:
    CallbackBuffer(qelcal_write_fn write, void* context) : write_(write), context_(context) {}

  private:
    int_type overflow(int_type c) override {
        const char byte = traits_type::to_char_type(c);
        if (!traits_type::eq_int_type(c, traits_type::eof())) xsputn(&byte, 1);
        return traits_type::not_eof(c);
    }
    std::streamsize xsputn(const char* bytes, std::streamsize size) override {
        if (write_ != nullptr && size > 0)
            api::goOn(write_(context_, bytes, static_cast<size_t>(size)));
        return size;
    }

    qelcal_write_fn write_;
    void* context_;
};

int formatNumber(const std::optional<CalendarFormat>& format) {
    if (!format) return QELCAL_OTHER;
    return *format == CalendarFormat::ICalendar ? QELCAL_ICALENDAR : QELCAL_VCALENDAR;
}

std::optional<CalendarFormat> formatOf(int number) {
    if (number == QELCAL_ICALENDAR) return CalendarFormat::ICalendar;
    if (number == QELCAL_VCALENDAR) return CalendarFormat::VCalendar10;
    return std::nullopt;
}

}  // namespace

// The converter, with the callbacks and the report that it serves.
struct qelcal_converter final : private qel::calendar::ConversionObserver {
  public:
    enum class State { BetweenFiles, Named, Scanning, Reading, Finished, Failed };

    qelcal_converter(int target, qelcal_write_fn output, void* context)
        : buffer_(output, context),
          out_(&buffer_),
          own_(std::make_unique<qel::calendar::Converter>(
              out_, formatOf(target), [this](Note note) { hear(std::move(note)); })),
          converter(*own_) {
        // A callback that asks to stop does so through the stream.
        out_.exceptions(std::ios::badbit);
        converter.observe(this);
    }
    // A part of `whole`, which holds what it reads.
    explicit qelcal_converter(const qelcal_converter& whole)
        : buffer_(nullptr, nullptr),
          out_(&buffer_),
          holder(std::make_unique<qel::calendar::FileHolder>(whole.converter.choices(),
                                                             whole.wantsLines())),
          converter(holder->converter()) {}

    // Runs one step; after one that fails the result is incomplete and nothing can follow.
    template <class Step>
    int run(Step step) {
        if (state == State::Failed)
            return api::fail(QELCAL_WRONG_ORDER, "a call on this converter has failed before");
        const int result = api::guarded(step);
        if (result != QELCAL_OK && result != QELCAL_WRONG_ORDER) {
            leaveReport();
            state = State::Failed;
        }
        return result;
    }

    // False when the report cannot take the file now.
    [[nodiscard]] bool beginReading() {
        if (state == State::Reading) return true;
        if (report != nullptr && (report->finished || report->reading != nullptr)) return false;
        if (state == State::Scanning) converter.endScan();
        state = State::Reading;
        beginInReport(name);
        if (holder != nullptr) holder->beginFile(name);
        converter.beginFile(name);
        return true;
    }

    void beginInReport(const std::string& file) {
        tally_.beginFile(file);
        if (report == nullptr) return;
        report->endFile();
        report->reading = this;
        report->inFile = true;
        report->report.beginFile(file);
    }

    // The files that `part` has read. False when the report cannot take them now.
    [[nodiscard]] bool join(qelcal_converter& part) {
        if (report != nullptr && (report->finished || report->reading != nullptr)) return false;
        state = State::Reading;
        for (qel::calendar::HeldFile& file : part.holder->take()) {
            beginInReport(file.name);
            converter.take(std::move(file));
            if (report != nullptr) report->endFile();
        }
        state = State::BetweenFiles;
        return true;
    }

    void endReading() {
        converter.endFile();
        if (report != nullptr) report->endFile();
        state = State::BetweenFiles;
    }

    // Another converter may use the report although this one has not ended its file.
    void leaveReport() {
        if (state == State::Reading && report != nullptr) report->reading = nullptr;
    }

    [[nodiscard]] qelcal_counts counts() const {
        const qel::calendar::OutcomeCounts all = tally_.totals().counts;
        return {converter.counts().calendars,
                converter.counts().entries,
                converter.counts().alarms,
                all.changed,
                all.warnings,
                all.errors,
                all.lost};
    }

  private:
    void hear(Note note) {
        tally_.note(note);
        if (report != nullptr) report->report.note(note);
        if (onNote == nullptr) return;
        const qelcal_note handle(std::move(note));
        api::goOn(onNote(noteContext, &handle));
    }

    [[nodiscard]] bool wantsLines() const override {
        return (onEntry != nullptr && lines) || report != nullptr;
    }

    void entryConverted(const ConvertedEntry& converted) override {
        tally_.entryConverted(converted);
        if (report != nullptr) report->report.entryConverted(converted);
        if (onEntry == nullptr) return;
        const qelcal_entry handle(converted.entry, converted.notes);
        const qelcal_converted event{&handle,
                                     formatNumber(converted.target),
                                     wanted(converted.source),
                                     lines ? converted.source.size() : 0,
                                     lines && converted.sourceCut ? 1 : 0,
                                     wanted(converted.written),
                                     lines ? converted.written.size() : 0};
        api::goOn(onEntry(entryContext, &event));
    }

    // Never null, as an empty view may be.
    [[nodiscard]] const char* wanted(std::string_view text) const {
        return lines && !text.empty() ? text.data() : "";
    }

    CallbackBuffer buffer_;
    std::ostream out_;
    qel::calendar::Tally tally_;
    const std::unique_ptr<qel::calendar::Converter> own_;  // null for a part

  public:
    const std::unique_ptr<qel::calendar::FileHolder> holder;  // of a part, else null
    qel::calendar::Converter& converter;
    State state = State::BetweenFiles;
    std::string name;  // of the file
    qelcal_report* report = nullptr;
    qelcal_note_fn onNote = nullptr;
    void* noteContext = nullptr;
    qelcal_converted_fn onEntry = nullptr;
    void* entryContext = nullptr;
    bool lines = false;
};

namespace {

using State = qelcal_converter::State;

int refuseNull() {
    return api::fail(QELCAL_INVALID_ARGUMENT, "the converter or an argument is null");
}

int refusePart() {
    return api::fail(QELCAL_INVALID_ARGUMENT, "a part of a converter only reads files");
}

int refuseOrder(const char* why) {
    return api::fail(QELCAL_WRONG_ORDER, why);
}

int refuseReport() {
    return refuseOrder("the report is finished, or another converter's file is in it");
}

bool inFile(const qelcal_converter& converter) {
    return converter.state == State::Named || converter.state == State::Scanning ||
           converter.state == State::Reading;
}

std::string_view textOf(const void* bytes, size_t size) {
    return size == 0 ? std::string_view() : std::string_view(static_cast<const char*>(bytes), size);
}

}  // namespace

qelcal_converter* qelcal_converter_new(int target, qelcal_write_fn output, void* context) {
    return api::guardedValue(
        static_cast<qelcal_converter*>(nullptr),
        [=]() -> qelcal_converter* {
            if (target < QELCAL_OTHER || target > QELCAL_VCALENDAR) {
                api::fail(QELCAL_INVALID_ARGUMENT, "the target is not a calendar format");
                return nullptr;
            }
            return std::make_unique<qelcal_converter>(target, output, context).release();
        });
}

qelcal_converter* qelcal_converter_part(const qelcal_converter* converter) {
    return api::guardedValue(
        static_cast<qelcal_converter*>(nullptr),
        [=]() -> qelcal_converter* {
            if (converter == nullptr || converter->holder != nullptr) {
                api::fail(QELCAL_INVALID_ARGUMENT, "the converter is null, or itself a part");
                return nullptr;
            }
            return std::make_unique<qelcal_converter>(*converter).release();
        });
}

int qelcal_converter_join(qelcal_converter* converter, qelcal_converter* part) {
    if (converter == nullptr || part == nullptr) return refuseNull();
    if (converter->holder != nullptr || part->holder == nullptr)
        return api::fail(QELCAL_INVALID_ARGUMENT, "a converter takes parts, and a part does not");
    return converter->run([=] {
        if (converter->state != State::BetweenFiles || part->state != State::BetweenFiles)
            return refuseOrder(
                "a file of the converter or its part has not ended, or the "
                "calendar is finished already");
        if (!converter->join(*part)) return refuseReport();
        return int{QELCAL_OK};
    });
}

void qelcal_converter_free(qelcal_converter* converter) {
    if (converter != nullptr) converter->leaveReport();
    delete converter;
}

int qelcal_converter_on_note(qelcal_converter* converter, qelcal_note_fn note, void* context) {
    if (converter == nullptr) return refuseNull();
    if (converter->holder != nullptr) return refusePart();
    converter->onNote = note;
    converter->noteContext = context;
    return QELCAL_OK;
}

int qelcal_converter_on_entry(qelcal_converter* converter, qelcal_converted_fn converted,
                              void* context, int lines) {
    if (converter == nullptr) return refuseNull();
    if (converter->holder != nullptr) return refusePart();
    if (converter->state == State::Reading)
        return refuseOrder("a file is being read: choose who receives entries before it begins");
    converter->onEntry = converted;
    converter->entryContext = context;
    converter->lines = lines != 0;
    return QELCAL_OK;
}

int qelcal_converter_choose(qelcal_converter* converter, int choice, const char* value) {
    if (converter == nullptr) return refuseNull();
    if (inFile(*converter)) return refuseOrder("a file has begun; choose before it");
    return api::guarded([=] {
        qel::calendar::Choices choices = converter->converter.choices();
        const int result = api::choose(choices, choice, value);
        if (result == QELCAL_OK) converter->converter.choose(std::move(choices));
        return result;
    });
}

int qelcal_converter_threads(qelcal_converter* converter, int most) {
    if (converter == nullptr) return refuseNull();
    if (converter->holder != nullptr) return refusePart();
    if (most < 1 || most > QELCAL_MOST_THREADS)
        return api::fail(QELCAL_INVALID_ARGUMENT, "a converter uses 1 to 64 threads");
    if (inFile(*converter)) return refuseOrder("a file has begun; its threads are chosen before");
    converter->converter.useThreads(static_cast<size_t>(most));
    return QELCAL_OK;
}

int qelcal_converter_report(qelcal_converter* converter, qelcal_report* report) {
    if (converter == nullptr) return refuseNull();
    if (converter->holder != nullptr) return refusePart();
    if (converter->state == State::Reading)
        return refuseOrder("a file is being read; its report is chosen before");
    if (report != nullptr && report->finished) return refuseOrder("the report is finished");
    converter->report = report;
    return QELCAL_OK;
}

int qelcal_converter_begin_file(qelcal_converter* converter, const char* name) {
    if (converter == nullptr || name == nullptr) return refuseNull();
    return converter->run([=] {
        if (converter->state != State::BetweenFiles)
            return refuseOrder("the file before has not ended, or the calendar is finished");
        converter->name = name;
        converter->state = State::Named;
        return int{QELCAL_OK};
    });
}

int qelcal_converter_scan(qelcal_converter* converter, const void* bytes, size_t size) {
    if (converter == nullptr || (bytes == nullptr && size != 0)) return refuseNull();
    return converter->run([=] {
        if (converter->state != State::Named && converter->state != State::Scanning)
            return refuseOrder("a file is scanned after begin_file and before write");
        if (std::exchange(converter->state, State::Scanning) == State::Named)
            converter->converter.beginScan();
        converter->converter.scan(textOf(bytes, size));
        return int{QELCAL_OK};
    });
}

int qelcal_converter_write(qelcal_converter* converter, const void* bytes, size_t size) {
    if (converter == nullptr || (bytes == nullptr && size != 0)) return refuseNull();
    return converter->run([=] {
        if (!inFile(*converter)) return refuseOrder("no file has begun");
        if (!converter->beginReading()) return refuseReport();
        converter->converter.write(textOf(bytes, size));
        return int{QELCAL_OK};
    });
}

int qelcal_converter_end_file(qelcal_converter* converter) {
    if (converter == nullptr) return refuseNull();
    return converter->run([=] {
        if (!inFile(*converter)) return refuseOrder("no file has begun");
        if (!converter->beginReading()) return refuseReport();
        converter->endReading();
        return int{QELCAL_OK};
    });
}

int qelcal_converter_finish(qelcal_converter* converter) {
    if (converter == nullptr) return refuseNull();
    if (converter->holder != nullptr) return refusePart();
    return converter->run([=] {
        if (converter->state != State::BetweenFiles)
            return refuseOrder("a file has not ended, or the calendar is finished already");
        converter->converter.finish();
        converter->state = State::Finished;
        return int{QELCAL_OK};
    });
}

int qelcal_converter_target(const qelcal_converter* converter) {
    return converter == nullptr ? int{QELCAL_OTHER} : formatNumber(converter->converter.target());
}

int qelcal_converter_counts(const qelcal_converter* converter, qelcal_counts* counts) {
    if (converter == nullptr || counts == nullptr) return refuseNull();
    return api::guarded([=] {
        *counts = converter->counts();
        return int{QELCAL_OK};
    });
}
