// The options file: any content reads, and a value that is written reads back.
#include "platform/Profile.h"
#include "Fuzz.h"
#include "platform/Process.h"

#include <filesystem>
#include <fstream>

using namespace qel::fuzz;

QEL_FUZZ_TARGET(profile) {
    static const std::string path =
        (std::filesystem::temp_directory_path() /
         ("qel-fuzz-" + std::to_string(qel::platform::processId()) + ".opt"))
            .string();
    const std::string key = "k" + in.line();
    const std::string value = in.line();
    {
        std::ofstream file(path, std::ios::binary | std::ios::trunc);
        file << in.text();
    }
    std::vector<char> out(1 + value.size());
    qel::platform::readProfile(path.c_str(), "LogSettings", key.c_str(), out.data(), out.size());
    FUZZ_CHECK(std::strlen(out.data()) < out.size());
    const auto isPlain = [](char c) {
        return '!' <= c && c <= '~' && std::strchr("=[];#\"'", c) == nullptr;
    };
    const bool plain = std::all_of(key.begin(), key.end(), isPlain) &&
                       std::all_of(value.begin(), value.end(), isPlain);
    if (plain &&
        qel::platform::writeProfile(path.c_str(), "LogSettings", key.c_str(), value.c_str())) {
        qel::platform::readProfile(path.c_str(), "LogSettings", key.c_str(), out.data(),
                                   out.size());
        FUZZ_CHECK(value == out.data());
    }
    std::filesystem::remove(path);
}
