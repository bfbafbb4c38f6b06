// The report of conversions as a page.
#include "calendar/api/ReportHandle.h"

#include <memory>

namespace api = qel::calendar::api;

qelcal_report* qelcal_report_new(qelcal_write_fn body, void* context) {
    return api::guardedValue(
        static_cast<qelcal_report*>(nullptr),
        [=]() -> qelcal_report* {
            if (body == nullptr) {
                api::fail(QELCAL_INVALID_ARGUMENT, "the callback for the body is null");
                return nullptr;
            }
            return std::make_unique<qelcal_report>(body, context).release();
        });
}

qelcal_report* qelcal_report_part(const qelcal_report* report) {
    return api::guardedValue(
        static_cast<qelcal_report*>(nullptr),
        [=]() -> qelcal_report* {
            if (report == nullptr || report->report.isPart()) {
                api::fail(QELCAL_INVALID_ARGUMENT, "the report is null, or itself a part");
                return nullptr;
            }
            return std::make_unique<qelcal_report>(report->report).release();
        });
}

void qelcal_report_free(qelcal_report* report) {
    delete report;
}

int qelcal_report_week_start(qelcal_report* report, int weekday) {
    if (report == nullptr || weekday < 1 || weekday > 7)
        return api::fail(QELCAL_INVALID_ARGUMENT,
                         "the report is null, or there is no such weekday");
    report->report.beginWeeksOn(weekday);
    return QELCAL_OK;
}

int qelcal_report_add_file(qelcal_report* report, const char* name) {
    if (report == nullptr || name == nullptr)
        return api::fail(QELCAL_INVALID_ARGUMENT, "the report or the name is null");
    if (report->finished) return api::fail(QELCAL_WRONG_ORDER, "the report is finished already");
    if (report->reading != nullptr)
        return api::fail(QELCAL_WRONG_ORDER, "a file of the report has not ended");
    return api::guarded([=] {
        report->endFile();
        report->report.addFile(name);
        return int{QELCAL_OK};
    });
}

int qelcal_report_join(qelcal_report* report, qelcal_report* part) {
    if (report == nullptr || part == nullptr || report == part)
        return api::fail(QELCAL_INVALID_ARGUMENT, "the report or its part is null, or one is both");
    if (report->report.isPart() || !part->report.isPart())
        return api::fail(QELCAL_INVALID_ARGUMENT, "a report takes parts, and a part does not");
    if (report->finished || part->finished)
        return api::fail(QELCAL_WRONG_ORDER, "the report or its part is finished already");
    if (report->reading != nullptr || part->reading != nullptr)
        return api::fail(QELCAL_WRONG_ORDER, "a file of the report or its part has not ended");
    return api::guarded([=] {
        report->endFile();
        part->endFile();
        part->finished = true;
        report->report.join(part->report);
        return int{QELCAL_OK};
    });
}

int qelcal_report_result(qelcal_report* report, size_t file, const char* output,
                         const char* reason) {
    if (report == nullptr || output == nullptr || reason == nullptr ||
        file >= report->report.tally().files().size())
        return api::fail(QELCAL_INVALID_ARGUMENT,
                         "the report or a text is null, or there is no such file");
    if (report->finished) return api::fail(QELCAL_WRONG_ORDER, "the report is finished already");
    return api::guarded([=] {
        report->report.settle(file, output, reason);
        return int{QELCAL_OK};
    });
}

int qelcal_report_finish(qelcal_report* report, const char* remark, qelcal_write_fn head,
                         void* context) {
    if (report == nullptr || remark == nullptr || head == nullptr)
        return api::fail(QELCAL_INVALID_ARGUMENT, "the report, the remark or the callback is null");
    if (report->report.isPart())
        return api::fail(QELCAL_INVALID_ARGUMENT, "a part is finished by the report that it joins");
    if (report->finished) return api::fail(QELCAL_WRONG_ORDER, "the report is finished already");
    if (report->reading != nullptr)
        return api::fail(QELCAL_WRONG_ORDER, "a file of the report has not ended");
    return api::guarded([=] {
        report->endFile();
        report->finished = true;
        report->report.finish(remark, api::writeTo(head, context));
        return int{QELCAL_OK};
    });
}
