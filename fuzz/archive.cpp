#include <istream>
#include <memory>
#include <sstream>

#include "Fuzz.h"
#include "QelCalendar/qelcalendar.h"
#include "base/Command.h"
#include "base/ZipArchive.h"

using namespace qel::fuzz;

// What an archive says of its files holds for what is read of them, or they are refused.
QEL_FUZZ_TARGET(archive) {
    const std::string bytes = in.text();
    const auto opener = [&bytes] { return std::make_unique<std::istringstream>(bytes); };
    try {
        const qel::cli::ZipArchive archive("archive", opener, "");
        std::vector<char> block(std::size_t{64} << 10);
        for (const auto& member : archive.members()) {
            FUZZ_CHECK(qelcal_is_utf8(member.name.data(), member.name.size()) != 0);
            std::uint64_t size = 0;
            try {
                const std::unique_ptr<std::istream> file = archive.open(member);
                do {
                    file->read(block.data(), static_cast<std::streamsize>(block.size()));
                    size += static_cast<std::uint64_t>(file->gcount());
                    FUZZ_CHECK(size <= member.size);
                } while (file->gcount() != 0);
                FUZZ_CHECK(size == member.size);
            } catch (const qel::cli::InputError&) {
                continue;
            }
        }
    } catch (const qel::cli::InputError&) {
        return;
    }
}
