#include "Progress.h"

#include <algorithm>
#include <ostream>

#include "Text.h"
#include "platform/Console.h"

namespace qel::cli {

namespace {
constexpr auto kPatience = std::chrono::milliseconds(1000);
constexpr auto kBetweenDraws = std::chrono::milliseconds(100);
constexpr std::size_t kBarWidth = 30;
}  // namespace

Progress::Progress(Context& context, std::string_view label, std::uint64_t total)
    : context_(context),
      label_(printable(label, 40)),
      total_(total),
      nextDraw_(Clock::now() + kPatience),
      enabled_(platform::errorIsTerminal()) {
    context_.progress_ = this;
}

Progress::~Progress() {
    try {
        hide();
    } catch (...) {  // the terminal is gone; whoever writes to it next says so
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

void Progress::draw(std::uint64_t done) {
    std::ostream& err = context_.err_;
    err << '\r' << label_ << ' ';
    if (total_ != 0) {
        const double part = std::min(1.0, static_cast<double>(done) / static_cast<double>(total_));
        const auto filled = static_cast<std::size_t>(part * static_cast<double>(kBarWidth));
        err << '[' << std::string(filled, '#') << std::string(kBarWidth - filled, '.') << "] "
            << static_cast<int>(part * 100.0) << "% ";
    } else {
        err << done << ' ';
    }
    err.flush();
    shown_ = true;
}

void Progress::hide() {
    if (!shown_) return;
    shown_ = false;
    // Blanks instead of an erase sequence: every terminal knows them.
    context_.err_ << '\r' << std::string(label_.size() + kBarWidth + 24, ' ') << '\r';
    context_.err_.flush();
}

}  // namespace qel::cli
