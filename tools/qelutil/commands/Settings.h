// The file of a person's own defaults, qelutil.toml: what of it concerns the command that is run.
// One thread.
#ifndef QELUTIL_COMMANDS_SETTINGS_H
#define QELUTIL_COMMANDS_SETTINGS_H

#include <CLI/CLI.hpp>
#include <iosfwd>
#include <string>
#include <vector>

#include "base/Command.h"

namespace qel::cli {

class Settings : public CLI::ConfigTOML {
  public:
    // REQUIRES: `app` and `context` outlive it.
    Settings(const CLI::App& app, Context& context) : app_(app), context_(context) {}

    // The defaults for the command that `app` has parsed. Sections of other commands do not matter,
    // and a default gives way to what the command line says: "split" is nothing for a run without
    // --output.
    [[nodiscard]] std::vector<CLI::ConfigItem> from_config(std::istream& input) const override;

    // After the command line is parsed, so that --help shows help in any case: warns about what no
    // command has, and throws UsageError for what is wrong in the section of this one.
    void check() const;

  private:
    [[nodiscard]] bool concerns(const CLI::ConfigItem& item) const;
    [[nodiscard]] bool fits(const CLI::App& command, const CLI::ConfigItem& item,
                            const std::vector<CLI::ConfigItem>& all) const;

    const CLI::App& app_;
    Context& context_;
    // What from_config, which the parser calls and which must not throw there, found wrong.
    mutable std::vector<std::string> remarks_;
    mutable std::string problem_;
};

}  // namespace qel::cli

#endif
