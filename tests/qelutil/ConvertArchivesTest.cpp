// qelutil convert over ZIP archives: their files are those of a folder, and an archive that is
// damaged, locked or made to fill a disk is named.
#include <zlib.h>

#include <filesystem>

#include "Qelutil.h"

namespace qel::test {
namespace {

const std::string kCalendar =
    "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\nSUMMARY:Good\r\n"
    "DTSTART:20050615T083000Z\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";

std::string number(std::uint64_t value, int size) {
    std::string bytes;
    for (int i = 0; i < size; ++i, value >>= 8) bytes += static_cast<char>(value & 0xFFU);
    return bytes;
}

std::string deflated(const std::string& text) {
    z_stream stream{};
    deflateInit2(&stream, 9, Z_DEFLATED, -15, 9, Z_DEFAULT_STRATEGY);
    std::string packed(deflateBound(&stream, static_cast<uLong>(text.size())), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(packed.size() - stream.avail_out);
    deflateEnd(&stream);
    return packed;
}

struct Member {
    std::string name;
    std::string text = kCalendar;
    int method = 8;
    int flags = 0;
    std::string extra = {};
    std::uint32_t wrongSum = 0;
    std::int64_t at = -1;  // another member's place
};

// As archivers write it.
std::string zip(const std::vector<Member>& members, const std::string& before = "") {
    std::string bytes = before;
    std::string directory;
    for (const Member& each : members) {
        const std::string packed = each.method == 8 ? deflated(each.text) : each.text;
        const uLong sum = crc32(0, reinterpret_cast<const Bytef*>(each.text.data()),
                                static_cast<uInt>(each.text.size())) ^
                          each.wrongSum;
        const std::string facts = number(20, 2) + number(static_cast<unsigned>(each.flags), 2) +
                                  number(static_cast<unsigned>(each.method), 2) + number(0, 4) +
                                  number(sum, 4) + number(packed.size(), 4) +
                                  number(each.text.size(), 4) + number(each.name.size(), 2) +
                                  number(each.extra.size(), 2);
        const std::uint64_t at =
            each.at < 0 ? bytes.size() - before.size() : static_cast<std::uint64_t>(each.at);
        directory += "PK\1\2" + number(20, 2) + facts + number(0, 10) + number(at, 4) + each.name +
                     each.extra;
        bytes += "PK\3\4" + facts + each.name + each.extra + packed;
    }
    const std::string end = "PK\5\6" + number(0, 4) + number(members.size(), 2) +
                            number(members.size(), 2) + number(directory.size(), 4) +
                            number(bytes.size() - before.size(), 4) + number(0, 2);
    return bytes + directory + end;
}

class ConvertArchives : public QelutilTest {
  protected:
    std::string put(const std::string& name, const std::string& bytes) const {
        std::filesystem::create_directories((state_.path() / name).parent_path());
        writeFile(state_.file(name), bytes);
        return state_.file(name);
    }
    [[nodiscard]] bool has(const std::string& utf8) const {
        return std::filesystem::exists(
            state_.path() / std::filesystem::path(std::u8string(utf8.begin(), utf8.end())));
    }
};

TEST_F(ConvertArchives, AreReadAsFoldersAre) {
    const std::string umlaut = "caf\x82.vcs";  // code page 437
    std::string inUnicode = number(0x7075, 2) + number(5 + 8, 2) + "\1";
    inUnicode +=
        number(crc32(0, reinterpret_cast<const Bytef*>("?.vcs"), 5), 4) + "\xE6\x97\xA5.vcs" + "";
    inUnicode = number(0x7075, 2) + number(inUnicode.size() - 4, 2) + inUnicode.substr(4);
    const std::string phone = put("backup/phone.ZIP", zip({{"2005\\june.vcs"},
                                                           {"2005/"},
                                                           {umlaut},
                                                           {"?.vcs", kCalendar, 8, 0, inUnicode},
                                                           {"plain.ics", kCalendar, 0},
                                                           {"../../up.vcs"},
                                                           {"us.vcf", "BEGIN:VCARD\r\n"},
                                                           {"inner.zip", zip({{"a.vcs"}})},
                                                           {".hidden/a.vcs"}},
                                                          "behind something else"));
    const std::string out = state_.file("out");
    ProcessResult result = run({"convert", state_.file("backup"), "-d", out, "--to", "ics"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    for (const char* each : {"2005/june", "caf\xC3\xA9", "\xE6\x97\xA5", "plain", "__/__/up"})
        EXPECT_TRUE(has(std::string("out/phone/") + each + ".ics")) << each << result.err;
    EXPECT_TRUE(contains(result.err, "5 files, 5 entries: 5 converted"));
    EXPECT_TRUE(contains(result.err, "3 other files (1 contact, "));
    // By its own name, whatever that is, and in the character set that is chosen.
    put("phone.backup", zip({{"\x8F\xAC.vcs"}, {"b.vcs"}}));
    result = run({"convert", state_.file("phone.backup"), "-d", out, "--charset", "Shift_JIS"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(has("out/\xE5\xB0\x8F.ics"));
    EXPECT_TRUE(has("out/b.ics"));
    EXPECT_TRUE(contains(run({"convert", phone}).out, "SUMMARY:Good"));
    fails(2, {"convert", phone, "-o", phone}, "is itself one of the files to convert");
}

TEST_F(ConvertArchives, WhatIsWrongIsNamedAndTheRestIsConverted) {
    const std::string bomb(70 << 20, '\n');
    const struct {
        std::vector<Member> members;
        const char* says;
        const char* summary;
    } kArchives[] = {
        {{{"a.vcs"}, {"b.vcs", kCalendar, 8, 1}}, "b.vcs: is encrypted", "2 files (1 left out)"},
        {{{"a.vcs"}, {"b.vcs", kCalendar, 9}}, "b.vcs: is packed in a way", "2 files (1 left out)"},
        {{{"a.vcs"}, {"b.vcs", kCalendar, 8, 0, {}, 1}},
         "b.vcs: this ZIP archive is damaged",
         "2 files (1 left out)"},
        {{{"a.vcs"}, {"b.vcs", bomb}}, "b.vcs: this file would unpack", "2 files (1 left out)"},
        {{{"a.vcs"}, {"b.vcs", kCalendar, 8, 0, {}, 0, 0}},
         "this archive would unpack",
         "1 file (1 left out)"},
        {{{"a.txt"}}, "there is no calendar (.vcs, .ics, .vnt, .ical) in this archive", "0 files"},
    };
    for (const auto& [members, says, summary] : kArchives) {
        put("a.zip", zip(members));
        EXPECT_TRUE(contains(fails(1, {"convert", state_.file("a.zip")}, says).err, summary));
    }
    // Cut anywhere, it is an archive that cannot be read.
    const std::string whole = zip({{"a.vcs"}, {"b.vcs"}});
    for (std::size_t size = 4; size < whole.size(); size += 7) {
        put("a.zip", whole.substr(0, size));
        const ProcessResult result = run({"convert", state_.file("a.zip"), "-n"});
        EXPECT_EQ(result.exitCode, 1) << size;
        EXPECT_TRUE(contains(result.err, "is damaged")) << size;
    }
}

}  // namespace
}  // namespace qel::test
