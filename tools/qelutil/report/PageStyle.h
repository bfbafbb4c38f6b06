// The look of the report, inline in the page. Any thread.
#ifndef QELUTIL_REPORT_PAGESTYLE_H
#define QELUTIL_REPORT_PAGESTYLE_H

namespace qel::cli {

// What stands in <style>: light and dark as the reader's system asks, narrow screens, print.
extern const char kPageStyle[];

}  // namespace qel::cli

#endif
