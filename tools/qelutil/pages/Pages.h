// The pages that go with the program, each a function of its command line: the same commands give
// the same bytes. Any thread.
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

}  // namespace qel::cli

#endif
