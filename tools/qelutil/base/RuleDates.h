// How `qelutil rule` and `qelutil expand` show dates and notes. One thread.
#ifndef QELUTIL_BASE_RULEDATES_H
#define QELUTIL_BASE_RULEDATES_H

#include <iosfwd>
#include <vector>

#include "base/MonthGrid.h"
#include "base/RuleArguments.h"

namespace qel::cli {

// The dates, none excluded.
[[nodiscard]] std::vector<MarkedDay> listed(const std::vector<int>& days);

// One date a line, "  2005-06-15  Wednesday"; an excluded one in parentheses.
void writeDateList(std::ostream& out, const std::vector<MarkedDay>& dates);

// The months that hold a date, side by side. REQUIRES: dates ascend, each once.
void writeDateGrids(std::ostream& out, const std::vector<MarkedDay>& dates);

// How the rule's text was understood, on standard error.
void writeNotes(Context& context, const ReadRules& read);

}  // namespace qel::cli

#endif
