// The reading of untidy rule texts, through the library's interface: what it understands, it can
// write, explain and list.
#include "Fuzz.h"
#include "QelCalendar/Rules.h"

using namespace qel::fuzz;

namespace {

std::size_t rulesIn(const std::string& text, qelcal_form form) {
    try {
        return qelcal::Rules(text, form).count();
    } catch (const qelcal::Error& error) {
        FUZZ_CHECK(error.result() == QELCAL_INVALID_TEXT && error.what()[0] != '\0');
        return 0;
    }
}

void check(const qelcal::Rules& rules, std::size_t rule) {
    (void)rules.texts(QELCAL_FORM_VCALENDAR, rule);
    if (qelcal_rules_record_count(rules.get(), rule) == 0) return;
    const std::string written = rules.text(QELCAL_FORM_ICALENDAR, rule);
    FUZZ_CHECK(!written.empty());
    FUZZ_CHECK(rulesIn(written, QELCAL_FORM_ICALENDAR) != 0);
}

}  // namespace

QEL_FUZZ_TARGET(rule_command) {
    const std::string text = in.text();
    if (rulesIn(text, QELCAL_FORM_ANY) != 0) {
        const qelcal::Rules rules(text);
        for (std::size_t i = 0; i < rules.count(); ++i) check(rules, i);
    }
    try {
        const qelcal::Rules dated(text, qelcal::Time::read("20050615T090000"));
        for (std::size_t i = 0; i < dated.count(); ++i) {
            check(dated, i);
            FUZZ_CHECK(!dated.words(i).empty());
            const std::vector<qelcal::Time> dates = dated.dates(5, i);
            for (std::size_t each = 1; each < dates.size(); ++each)
                FUZZ_CHECK(dates[each - 1].seconds() < dates[each].seconds());
        }
    } catch (const qelcal::Error& error) {
        FUZZ_CHECK(error.result() == QELCAL_INVALID_TEXT);
    }
}
