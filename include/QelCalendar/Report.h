/// @file
/// A page (HTML, nothing from outside, no script but that of its own search box) about every entry
/// of one or several conversions. It is written in two streams, because its top is known only at
/// the end: the page is the head followed by the body. One object belongs to one thread at a time.
#ifndef QELCALENDAR_REPORT_H
#define QELCALENDAR_REPORT_H

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "QelCalendar/Error.h"

namespace qelcal {

/// The report of one run.
class Report {
  public:
    /// Receives a piece of the page.
    using Output = std::function<void(const char* bytes, std::size_t size)>;

    /// `body` receives the body as it comes; what it throws comes out of the converter's call as an
    /// Error (QELCAL_STOPPED).
    explicit Report(Output body)
        : body_(new Output(std::move(body))),
          report_(detail::made(qelcal_report_new(&write, body_.get()))) {}

    /// The day on which weeks begin in its months, 1 Sunday to 7 Saturday; Monday by default.
    void weekStart(int weekday) { detail::check(qelcal_report_week_start(report_.get(), weekday)); }
    /// Adds a file that no converter reads, as one that cannot be opened; result() says why. Not
    /// while a file is being converted.
    void addFile(const std::string& name) {
        detail::check(qelcal_report_add_file(report_.get(), name.c_str()));
    }
    /// A part of this report: with it another thread may convert the next files, while this report
    /// is used. Any thread may call this; each part belongs to one.
    Report part() const { return Report(detail::made(qelcal_report_part(report_.get()))); }
    /// Adds the files of `part`, as if they had been converted for this report one after the other.
    /// The part is of no further use.
    void join(Report& part) {
        detail::check(qelcal_report_join(report_.get(), part.report_.get()));
    }
    /// Says what became of a file, 0 for the first: the name of its result, and, where it has no
    /// part in any result, the reason why.
    void result(std::size_t file, const std::string& output, const std::string& reason) {
        detail::check(qelcal_report_result(report_.get(), file, output.c_str(), reason.c_str()));
    }
    /// Ends the body and hands the head to `head`. `remark` is a sentence about the run, or empty.
    void finish(const std::string& remark, Output head) {
        detail::check(qelcal_report_finish(report_.get(), remark.c_str(), &write, &head));
    }
    /// For calls of the C interface.
    qelcal_report* get() const noexcept { return report_.get(); }

  private:
    explicit Report(qelcal_report* part) : report_(part) {}
    static int QELCALENDAR_CALL write(void* context, const char* bytes, std::size_t size) {
        try {
            (*static_cast<Output*>(context))(bytes, size);
            return 0;
        } catch (...) {
            return 1;
        }
    }
    struct Free {
        void operator()(qelcal_report* report) const { qelcal_report_free(report); }
    };

    std::unique_ptr<Output> body_;
    std::unique_ptr<qelcal_report, Free> report_;
};

}  // namespace qelcal

#endif
