#include "support/TraceCapture.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <sstream>

#include "support/Environment.h"
#include "support/TempDir.h"

namespace qel::test {

namespace {

struct Redirection {
    std::optional<TempDir> own;
    std::string directory;
    std::string log;
};

Redirection& redirection() {
    static Redirection theRedirection;
    return theRedirection;
}

bool isStamp(const std::string& text, std::size_t at) {
    const std::string shape = "dd/dd dd:dd:dd.ddd ddd";
    if (text.size() < at + shape.size()) return false;
    for (std::size_t i = 0; i < shape.size(); ++i) {
        const char c = text[at + i];
        if (shape[i] == 'd' ? c < '0' || c > '9' : c != shape[i]) return false;
    }
    return true;
}

}  // namespace

void redirectTrace() {
    Redirection& r = redirection();
    if (!r.directory.empty()) return;
    if (const char* given = std::getenv("QEL_TEST_TRACE_DIR"); given != nullptr) {
        r.directory = given;
    } else {
        r.own.emplace();
        r.directory = r.own->path().string();
    }
    const std::filesystem::path folder(r.directory);
    r.log = (folder / "trace.log").string();
    setEnvironment("BX_ERR_LOG_FILE_PATH", r.log);
    setEnvironment("BX_OPTIONS_FILE_PATH", (folder / "trace.opt").string());
    setEnvironment("XDG_STATE_HOME", (folder / "state").string());
}

const std::string& traceDirectory() {
    redirectTrace();
    return redirection().directory;
}

const std::string& traceLogPath() {
    redirectTrace();
    return redirection().log;
}

std::string withoutPrefix(const std::string& line) {
    const std::size_t close = line.find("] ");
    if (line.empty() || line[0] != '[' || close == std::string::npos) return line;
    const std::size_t stamp = close + 2;
    if (!isStamp(line, stamp)) return line;
    const std::size_t end = line.find(": ", stamp + 22);
    return end == std::string::npos ? line : line.substr(end + 2);
}

std::string maskStamps(const std::string& text) {
    std::string masked;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t close = text.find_first_not_of("0123456789ABCDEF", at + 1);
        const bool prefix = text[at] == '[' && close != std::string::npos && close >= at + 5 &&
                            text.compare(close, 2, "] ") == 0 && isStamp(text, close + 2);
        const std::size_t stamp = prefix ? close + 2 : at;
        if (!isStamp(text, stamp)) {
            masked += text[at++];
            continue;
        }
        // The number of a stamp may have more than three digits.
        at = std::min(text.find_first_not_of("0123456789", stamp + 19), text.size());
        masked += prefix ? "<prefix>" : "<stamp>";
    }
    return masked;
}

TraceCapture::TraceCapture() {
    mark();
}

void TraceCapture::mark() {
    mark_ = readFile(traceLogPath()).size();
}

std::vector<std::string> TraceCapture::lines() const {
    const std::string all = readFile(traceLogPath());
    std::istringstream in(all.size() < mark_ ? all : all.substr(mark_));
    std::vector<std::string> result;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        result.push_back(line);
    }
    return result;
}

std::vector<std::string> TraceCapture::errors() const {
    std::vector<std::string> result;
    for (const std::string& line : lines()) {
        // A second stamp stands between the prefix and the word.
        const std::string text = withoutPrefix(line);
        const std::size_t at = text.find(": Error ");
        if (isStamp(text, 0) && at != std::string::npos) result.push_back(text.substr(at + 2));
    }
    return result;
}

bool TraceCapture::hasError(const std::string& details, const std::string& source, int line) const {
    const std::vector<std::string> logged = errors();
    const std::string wanted =
        "Error " + details + " at " + source + " line " + std::to_string(line);
    return std::find(logged.begin(), logged.end(), wanted) != logged.end();
}

bool TraceCapture::hasError(const std::string& details, const std::string& source) const {
    const std::string wanted = "Error " + details + " at " + source + " line ";
    const std::vector<std::string> logged = errors();
    return std::any_of(logged.begin(), logged.end(), [&wanted](const std::string& each) {
        return each.compare(0, wanted.size(), wanted) == 0;
    });
}

}  // namespace qel::test
