// Makes the page that shows what became of every entry: qelutil's --report, from a program.
#include <QelCalendar/Convert.h>
#include <QelCalendar/Report.h>
#include <stdio.h>

#include <string>

static const std::string kFile =
    "BEGIN:VCALENDAR\nVERSION:1.0\n"
    "BEGIN:VEVENT\nSUMMARY:Dinner\nDTSTART:20050615T190000\nEND:VEVENT\n"
    "END:VCALENDAR\n";

int main() {
    try {
        // The head has the totals, so it comes last. The body may go to a temporary file.
        std::string head;
        std::string body;
        qelcal::Report report(
            [&body](const char* bytes, size_t size) { body.append(bytes, size); });
        qelcal::Converter converter(QELCAL_ICALENDAR, nullptr);  // the page alone is wanted
        converter.reportTo(&report);
        converter.beginFile("phone.vcs");
        converter.write(kFile.data(), kFile.size());
        converter.endFile();
        converter.finish();
        report.result(0, "phone.ics", "");
        report.finish("", [&head](const char* bytes, size_t size) { head.append(bytes, size); });

        const std::string page = head + body;
        printf("%s\n", page.substr(0, page.find('\n')).c_str());
        printf("the entry %s in it\n", page.find("Dinner") != std::string::npos ? "is" : "is not");
    } catch (const qelcal::Error& error) {
        printf("%s\n", error.what());
        return 1;
    }
    return 0;
}

// Prints:
// <!DOCTYPE html>
// the entry is in it
