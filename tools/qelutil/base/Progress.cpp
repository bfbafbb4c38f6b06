#include "base/Progress.h"

#include <algorithm>
#include <ostream>

#include "base/Terminal.h"
#include "base/Text.h"
#include "platform/Console.h"

namespace qel::cli {

namespace {
constexpr auto kPatience = std::chrono::milliseconds(1000);
constexpr auto kBetweenDraws = std::chrono::milliseconds(100);
constexpr std::size_t kBarWidth = 30;
}  // namespace

Progress::Progress(Context& context, std::string_view label, std::uint64_t total)
    : context_(context),
      label_(label),
      total_(total),
      nextDraw_(Clock::now() + kPatience),
      enabled_(platform::errorIsTerminal()) {
    context_.progress_ = this;
}

Progress::~Progress() {
    try {
        hide();
    } catch (...) {  // the terminal cannot be written to; the next write to it reports that
    }
    context_.progress_ = nullptr;
}

void Progress::update(std::uint64_t done) {
    if (!enabled_) return;
    const auto now = Clock::now();
    if (now < nextDraw_) return;
    nextDraw_ = now + kBetweenDraws;
    draw(done);
}

void Progress::relabel(std::string_view label) {
    hide();
    label_ = label;
}

void Progress::draw(std::uint64_t done) {
    // A line that is as wide as the screen would move on to the next one.
    constexpr std::size_t kNumbers = 8;  // " [] 100%"
    const std::size_t room = static_cast<std::size_t>(errorWidth()) - 1 - kNumbers;
    const std::size_t bar = std::min(kBarWidth, room / 2);
    std::string line = printable(label_, room - bar);
    while (line.size() > room - bar || !isUtf8(line)) line.pop_back();
    line += ' ';
    if (total_ != 0) {
        const double part = std::min(1.0, static_cast<double>(done) / static_cast<double>(total_));
        const auto filled = static_cast<std::size_t>(part * static_cast<double>(bar));
        line += '[' + std::string(filled, '#') + std::string(bar - filled, '.') + "] " +
                std::to_string(static_cast<int>(part * 100.0)) + '%';
    } else {
        line += std::to_string(done);
    }
    hide();
    context_.err_ << '\r' << line;
    context_.err_.flush();
    shown_ = line.size();
}

void Progress::hide() {
    if (shown_ == 0) return;
    // Blanks instead of an erase sequence: every terminal knows them.
    context_.err_ << '\r' << std::string(shown_, ' ') << '\r';
    shown_ = 0;
    context_.err_.flush();
}

}  // namespace qel::cli
