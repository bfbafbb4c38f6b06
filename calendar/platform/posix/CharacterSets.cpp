#include "calendar/platform/CharacterSets.h"

#include <iconv.h>

#include <cerrno>

namespace qel::calendar::platform {

std::optional<std::string> toUtf8(std::string_view text, std::string_view name) {
    const std::string from(name);
    const iconv_t handle = iconv_open("UTF-8", from.c_str());
    if (handle == reinterpret_cast<iconv_t>(-1)) return std::nullopt;
    std::string result;
    // iconv(3) does not write to its input, although its parameter is not const.
    char* in = const_cast<char*>(text.data());
    std::size_t left = text.size();
    char buffer[4096];
    while (left > 0) {
        char* out = buffer;
        std::size_t room = sizeof buffer;
        const std::size_t done = iconv(handle, &in, &left, &out, &room);
        const int problem = errno;
        result.append(buffer, sizeof buffer - room);
        if (done == static_cast<std::size_t>(-1) && problem != E2BIG) {
            result += "\xEF\xBF\xBD";
            ++in;
            --left;
            iconv(handle, nullptr, nullptr, nullptr, nullptr);
        }
    }
    iconv_close(handle);
    return result;
}

}  // namespace qel::calendar::platform
