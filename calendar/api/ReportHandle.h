// A report as the C interface hands it out. One thread at a time.
#ifndef QEL_CALENDAR_API_REPORTHANDLE_H
#define QEL_CALENDAR_API_REPORTHANDLE_H

#include <memory>
#include <string_view>
#include <utility>

#include "QelCalendar/qelcalendar.h"
#include "calendar/api/Calls.h"
#include "calendar/report/ConversionReport.h"

namespace qel::calendar::api {

// A sink that hands text to a callback.
inline auto writeTo(qelcal_write_fn write, void* context) {
    return
        [write, context](std::string_view text) { goOn(write(context, text.data(), text.size())); };
}

}  // namespace qel::calendar::api

struct qelcal_report {
    qelcal_report(qelcal_write_fn body, void* context)
        : made(std::make_unique<qel::calendar::ConversionReport>(
              qel::calendar::api::writeTo(body, context))),
          report(*made) {}
    explicit qelcal_report(const qel::calendar::ConversionReport& whole)
        : made(qel::calendar::ConversionReport::partOf(whole)), report(*made) {}

    // Ends the file that has begun, if one has.
    void endFile() {
        reading = nullptr;
        if (std::exchange(inFile, false)) report.endFile();
    }

    const std::unique_ptr<qel::calendar::ConversionReport> made;
    qel::calendar::ConversionReport& report;
    bool inFile = false;
    const qelcal_converter* reading = nullptr;  // whose file it is; null when that one gave up
    bool finished = false;
};

#endif
