// The pages that go with the program and the library, each a function of the program's command line
// or of the catalogue of notes: the same input gives the same bytes. Any thread.
#ifndef QELUTIL_PAGES_PAGES_H
#define QELUTIL_PAGES_PAGES_H

#include <string>

#include "pages/CommandLine.h"

namespace qel::cli {

// qelutil(1), in the man macros.
[[nodiscard]] std::string programManPage(const PageCommand& program);
// qelutil-NAME(1) of one of its commands.
[[nodiscard]] std::string commandManPage(const PageCommand& program, const PageCommand& command);

[[nodiscard]] std::string bashCompletion(const PageCommand& program);
[[nodiscard]] std::string zshCompletion(const PageCommand& program);
[[nodiscard]] std::string fishCompletion(const PageCommand& program);
[[nodiscard]] std::string powerShellCompletion(const PageCommand& program);

// docs/notes.md: each note of the calendar library, what it means and what to do.
[[nodiscard]] std::string notesDocument();
// include/QelCalendar/qelcalnotes.h: their numbers as a C enumeration.
[[nodiscard]] std::string notesHeader();

}  // namespace qel::cli

#endif
