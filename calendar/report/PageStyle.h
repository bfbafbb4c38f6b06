// The look of the report, inline in the page. Any thread.
#ifndef QEL_CALENDAR_REPORT_PAGESTYLE_H
#define QEL_CALENDAR_REPORT_PAGESTYLE_H

namespace qel::calendar {

// The content of <style>: light and dark as the reader's system asks, narrow screens, print.
extern const char kPageStyle[];

}  // namespace qel::calendar

#endif
