// The program's own reading of untidy rule texts: what it understands, it can write.
#include "Fuzz.h"
#include "calendar/rules/RuleReader.h"
#include "calendar/rules/RuleRecords.h"
#include "calendar/rules/RuleWriteICalendar.h"
#include "calendar/rules/RuleWriteVCalendar.h"

using namespace qel::fuzz;
using namespace qel::calendar;

QEL_FUZZ_TARGET(rule_command) {
    const std::string text = in.text();
    const RuleReading reading = readRules(text, guessRuleForm(text), std::nullopt);
    for (const Rule& rule : reading.rules) {
        std::vector<Note> notes;
        if (rulePieces(rule, &notes).empty()) continue;
        const std::string written = iCalendarText(rule);
        FUZZ_CHECK(!written.empty());
        FUZZ_CHECK(!readRules(written, RuleForm::ICalendar, std::nullopt).rules.empty());
        (void)vCalendarTexts(rule, std::nullopt);
    }
}
