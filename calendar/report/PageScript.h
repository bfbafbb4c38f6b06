// The search of the report, inline in the page. Any thread.
#ifndef QEL_CALENDAR_REPORT_PAGESCRIPT_H
#define QEL_CALENDAR_REPORT_PAGESCRIPT_H

namespace qel::calendar {

// The content of <script>. Without scripts the page has all it shows, and no search box.
extern const char kPageScript[];
// Its digest as a Content-Security-Policy writes it: the page runs no other script, whatever the
// texts of a calendar contain.
extern const char kPageScriptDigest[];

}  // namespace qel::calendar

#endif
