// A file to convert: looked at before anything is done with it, searched for zones, then read. One
// thread.
#ifndef QELUTIL_COMMANDS_CALENDARINPUT_H
#define QELUTIL_COMMANDS_CALENDARINPUT_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "base/CalendarFiles.h"
#include "base/Spool.h"

namespace qel::cli {

class CalendarInput {
  public:
    // Receives the next bytes; `done` counts those so far.
    using Take = std::function<void(const char* bytes, std::size_t size, std::uint64_t done)>;

    // Throws InputError when the file cannot be read, or no calendar or entry begins in it: then it
    // says what the file seems to be.
    CalendarInput(Context& context, const CalendarFile& file);

    // Has read() give larger pieces after the first megabyte, which several threads can share.
    void useLargePieces() { large_ = true; }

    // For messages.
    [[nodiscard]] const std::string& name() const { return input_.name(); }

    // Hands all bytes to `scan`, where they can be read twice, and then to `write`. Zones may be
    // described after the entries that use them, but only iCalendar has them: a phone's file that
    // can be read only once need not be held. Throws InputError when the medium fails.
    void read(const Take& scan, const Take& write);

  private:
    Context& context_;
    const CalendarFile& file_;
    InputFile input_;
    std::optional<Spool> spool_;  // of what can be read only once
    bool kept_ = false;           // by the spool
    bool large_ = false;
};

}  // namespace qel::cli

#endif
