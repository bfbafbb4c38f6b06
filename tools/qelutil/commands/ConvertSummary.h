// The outcome of `qelutil convert` as a sentence and as JSON. Any thread.
#ifndef QELUTIL_COMMANDS_CONVERTSUMMARY_H
#define QELUTIL_COMMANDS_CONVERTSUMMARY_H

#include <string>
#include <vector>

#include "base/Json.h"
#include "calendar/base/Notes.h"
#include "calendar/report/Outcome.h"

namespace qel::cli {

// "3 files (1 left out), 12 entries: 11 converted, 2 changed, 1 warning, 0 errors, 1 not carried
// over".
[[nodiscard]] std::string summaryText(const calendar::Totals& totals);
[[nodiscard]] Json summaryJson(const calendar::Totals& totals);
// `shown`: the file's notes that were shown.
[[nodiscard]] Json outcomeJson(const calendar::FileOutcome& file,
                               const std::vector<calendar::Note>& shown);

}  // namespace qel::cli

#endif
