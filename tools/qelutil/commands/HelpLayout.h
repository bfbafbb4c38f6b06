// --help in lines that fit the terminal. One thread.
#ifndef QELUTIL_COMMANDS_HELPLAYOUT_H
#define QELUTIL_COMMANDS_HELPLAYOUT_H

#include <CLI/CLI.hpp>
#include <string>

namespace qel::cli {

class HelpLayout : public CLI::Formatter {
  public:
    HelpLayout();

    std::string make_option(const CLI::Option* option, bool isPositional) const override;
    std::string make_subcommand(const CLI::App* command) const override;
    std::string make_description(const CLI::App* app) const override;
    // Lines that are set in are examples, to be copied: they stay as they are.
    std::string make_footer(const CLI::App* app) const override;

  private:
    [[nodiscard]] std::string twoColumns(const std::string& name, const std::string& text) const;

    std::size_t width_;
};

}  // namespace qel::cli

#endif
