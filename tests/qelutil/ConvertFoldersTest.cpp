// qelutil convert over folders: results, names, what is never overwritten, --strict, --dry-run, and
// the report.
#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "Qelutil.h"

namespace qel::test {
namespace {

namespace fs = std::filesystem;

std::string calendar(const std::string& lines) {
    return "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\nDTSTART:20050615T083000\r\n" + lines +
           "END:VEVENT\r\nEND:VCALENDAR\r\n";
}

const std::string kGood = calendar("SUMMARY:Good\r\nRRULE:W2 WE #10\r\n");
const std::string kLossy = calendar("SUMMARY:Lossy\r\nPRIORITY:1\r\nno property\r\n");

class ConvertFolders : public QelutilTest {
  protected:
    ConvertFolders() {
        put("phone/a.vcs", kGood);
        put("phone/2005/b.VCS", kGood);
        put("phone/2005/.hidden.vcs", kLossy);
        put("phone/.trash/c.vcs", kLossy);
        put("phone/read.me", "no calendar");
        std::error_code notHere;  // where links cannot be made, there is nothing to follow
        fs::create_directory_symlink(state_.path() / "phone", state_.path() / "phone/loop",
                                     notHere);
        if (has("phone/loop")) ++others_;
    }

    void put(const std::string& name, const std::string& text) const {
        fs::create_directories((state_.path() / name).parent_path());
        writeFile(state_.file(name), text);
    }
    [[nodiscard]] bool has(const std::string& name) const {
        return fs::exists(state_.path() / name);
    }
    // As messages write it.
    [[nodiscard]] std::string nameOf(const std::string& name) const {
        return (state_.path() / name).generic_string();
    }
    [[nodiscard]] std::string read(const std::string& name) const {
        return readFile(state_.file(name));
    }

    std::string phone_ = state_.file("phone");
    std::string out_ = state_.file("out");
    unsigned others_ = 3;  // in the folder, beside the calendars
};

// `qelutil FILE` and `qelutil FOLDER`: what is there already stays, the results have free names.
TEST_F(ConvertFolders, ResultsBesideWhatWasNamed) {
    const std::string file = state_.file("phone/a.vcs");
    EXPECT_TRUE(contains(run({file}).err, "written: " + nameOf("phone/a.ics")));
    EXPECT_TRUE(contains(run({file, "--to", "ics"}).err, nameOf("phone/a-report-2.html")));
    EXPECT_TRUE(has("phone/a-report.html"));
    EXPECT_EQ(read("phone/a.ics"), read("phone/a-2.ics"));
    fs::remove(state_.path() / "phone/a-2.ics");
    fs::remove(state_.path() / "phone/a.ics");
    const ProcessResult all = run({phone_ + "/"});
    EXPECT_EQ(all.exitCode, 0) << all.err;
    EXPECT_TRUE(
        contains(all.err, "what became of each entry: " + nameOf("phone-converted/report.html")));
    EXPECT_TRUE(has("phone-converted/2005/b.ics"));
    // Without a result there is no report.
    fails(1, {state_.file("missing.vcs")}, "cannot be read");
    EXPECT_FALSE(has("missing-report.html"));
    ProcessOptions settings;
    writeFile(state_.file("qelutil.toml"), "[convert]\nzone = \"Europe/Berlin\"\n");
    settings.environment = {{"XDG_CONFIG_HOME", state_.path().string()},
                            {"APPDATA", state_.path().string()}};
    EXPECT_TRUE(contains(run({"convert", file}, settings).out, "TZID=Europe/Berlin"));
    EXPECT_TRUE(contains(run({"--dry-run", "--color", "never", file}).err, "nothing written"));
    // What does not concern the run, or goes with another option, does not stop it.
    writeFile(state_.file("qelutil.toml"),
              "nonsense\n[convrt]\nzone = 1\n[show]\nnext = \"x\"\n[convert]\nsplit = \"1M\"\n"
              "only = [\"todos\", \"notes\"]\n");
    const ProcessResult defaults = run({"convert", file}, settings);
    EXPECT_FALSE(contains(defaults.out, "BEGIN:VEVENT"));
    EXPECT_TRUE(contains(defaults.err, "[convrt]"));
    writeFile(state_.file("qelutil.toml"), "[convert]\nthreads = 2\n");
    EXPECT_EQ(run({"convert", file, file}, settings).exitCode, 0);
    writeFile(state_.file("qelutil.toml"), "[convert]\nthreads = 65\n");
    EXPECT_TRUE(contains(run({"convert", file}, settings).err, "qelutil.toml: threads: "));
    writeFile(state_.file("qelutil.toml"), "[convert]\nto = \"doc\"\n");
    EXPECT_TRUE(contains(run({"convert", file}, settings).err, "qelutil.toml: to: doc"));
    EXPECT_EQ(run({"convert", "--help"}, settings).exitCode, 0);
}

// Windows has functions for paths of 260 characters at most, and lists another folder beyond that.
TEST_F(ConvertFolders, PathsOfAnyLength) {
    // Removed one by one, because removing a tree lists it.
    struct Folders {
        std::vector<fs::path> made;
        ~Folders() {
            std::error_code left;
            for (; !made.empty(); made.pop_back()) fs::remove(made.back(), left);
        }
    } folders;
    fs::path deep = state_.path() / "deep";
    for (int i = 0; i < 8; ++i) {
        fs::create_directory(deep);
        folders.made.push_back(deep);
        deep /= std::string(40, 'd');
    }
    deep = folders.made.back() / "a.vcs";
    folders.made.push_back(deep);
    writeFile(deep.string(), kGood);
    const std::string result = state_.file("deep.ics");
    const ProcessResult converted = run({"convert", state_.file("deep"), "-o", result});
    EXPECT_EQ(converted.exitCode, 0) << converted.err;
    EXPECT_EQ(run({"convert", deep.string()}).out, run({"convert", phone_ + "/a.vcs"}).out);
    EXPECT_TRUE(contains(readFile(result), "SUMMARY:Good"));
}

// Every entry is in one piece, each piece is a calendar with its zones, and what has one UID stays
// together.
TEST_F(ConvertFolders, PiecesOfALimitedSize) {
    std::string input = "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nTZ:+01\r\n";
    for (const char* uid : {"a", "b", "c", "d", "e", "a"})
        input += std::string(
                     "BEGIN:VEVENT\r\nDTSTART:20050615T083000\r\nSUMMARY:END:VCALENDAR\r\n"
                     "UID:") +
                 uid + "\r\nDESCRIPTION:" + std::to_string(input.size()) + "\r\nEND:VEVENT\r\n";
    writeFile(state_.file("a.vcs"), input + "END:VCALENDAR\r\n");
    const std::string out = state_.file("a.ics");
    EXPECT_EQ(run({"convert", state_.file("a.vcs"), "-o", out, "--split", "1K"}).exitCode, 0);
    EXPECT_FALSE(has("a.ics"));
    int entries = 0;
    for (int i = 1; has("a-" + std::to_string(i) + ".ics"); ++i) {
        const std::string piece = read("a-" + std::to_string(i) + ".ics");
        EXPECT_LE(piece.size(), 1024U);
        EXPECT_TRUE(contains(piece, "BEGIN:VTIMEZONE"));
        for (std::size_t at = 0; (at = piece.find("\r\nUID:", at)) != std::string::npos; ++at) {
            ++entries;
            if (piece[at + 6] == 'a') EXPECT_EQ(i, 1);
        }
    }
    EXPECT_EQ(entries, 6);
    EXPECT_EQ(run({"convert", state_.file("a.vcs"), "-o", out, "--split", "1M", "--only", "events"})
                  .exitCode,
              0);
    EXPECT_TRUE(has("a.ics"));
    for (const char* size : {"0", "-5", "1.5M", "99999999999G", "x", ""})
        EXPECT_EQ(run({"convert", state_.file("a.vcs"), "-o", out, "--split", size}).exitCode, 2)
            << size;
    EXPECT_TRUE(contains(run({"show", ""}).err, "the name of a file is empty"));
    const std::string twice = run({"convert", phone_ + "/a.vcs", phone_ + "//a.vcs"}).out;
    EXPECT_EQ(twice.find("BEGIN:VEVENT"), twice.rfind("BEGIN:VEVENT"));
}

TEST_F(ConvertFolders, AResultForEachFile) {
    const ProcessResult result = run({"convert", phone_, "--output-dir", out_});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "qelutil: 2 files, 2 entries: 2 converted, 0 changed, 0 warnings, 0 errors, 0 not "
              "carried over\nqelutil: not converted: " +
                  std::to_string(others_) + " other files; --verbose lists them\n");
    EXPECT_TRUE(contains(read("out/a.ics"), "FREQ=WEEKLY;COUNT=10"));
    EXPECT_TRUE(has("out/2005/b.ics"));
    EXPECT_FALSE(has("out/2005/.hidden.ics"));
    // A folder that exists may be named by --output too, and results are no inputs.
    put("phone/out/old.ics", read("out/a.ics"));
    EXPECT_EQ(run({"convert", phone_, "-o", phone_ + "/out"}).exitCode, 0);
    EXPECT_FALSE(has("phone/out/out/old.vcs"));
    // All in one.
    const ProcessResult one = run({"convert", phone_, "-o", state_.file("all.ics")});
    EXPECT_TRUE(contains(one.err, "qelutil: 5 files, 5 entries: 5 converted"));
    fails(1, {"convert", state_.file("phone/.trash"), state_.file("none")}, "none: cannot be read");
    fs::create_directories(state_.path() / "empty");
    fails(1, {"convert", state_.file("empty")},
          "there is no calendar (.vcs, .ics, .vnt, .ical) in this folder");
}

TEST_F(ConvertFolders, NothingIsOverwrittenInSilence) {
    put("out/a.ics", "as it was");
    const ProcessResult there = fails(1, {"convert", phone_, "-d", out_}, "a.ics exists already");
    EXPECT_TRUE(contains(there.err, "2 files (1 left out), 2 entries: 1 converted"));
    EXPECT_EQ(read("out/a.ics"), "as it was");
    EXPECT_EQ(run({"convert", phone_, "-d", out_, "--overwrite"}).exitCode, 0);
    EXPECT_NE(read("out/a.ics"), "as it was");
    // Two with one name, and a result that is an input.
    put("phone/A.ics", read("out/a.ics"));
    fails(1, {"convert", phone_, "-d", state_.file("two"), "--to", "ics"},
          "is already the result of");
    put("phone/a.ics", read("out/a.ics"));
    fails(1, {"convert", phone_, "-d", phone_, "--overwrite"}, "is itself one of the files");
    EXPECT_EQ(read("phone/a.vcs"), kGood);
    fails(1, {"convert", "-d", out_}, "standard input has no name", kGood);
    fails(2, {"convert", phone_, "--overwrite"}, "--overwrite goes with --output-dir");
    for (const auto& each : fs::recursive_directory_iterator(state_.path()))
        EXPECT_FALSE(each.path().filename().string().starts_with(".qelutil")) << each.path();
}

TEST_F(ConvertFolders, StrictLetsNothingPass) {
    put("phone/lossy.vcs", kLossy);
    put("all.ics", "as it was");
    const std::string all = state_.file("all.ics");
    fails(1, {"convert", "--strict", phone_, "-d", out_}, "lossy.vcs: is left out");
    EXPECT_TRUE(has("out/a.ics"));
    EXPECT_FALSE(has("out/lossy.ics"));
    const ProcessResult one = fails(1, {"convert", "--strict", phone_, "-o", all}, "as it was");
    EXPECT_TRUE(contains(one.err, "3 entries: 0 converted, 2 changed, 0 warnings, 1 error, 1 not"));
    EXPECT_EQ(read("all.ics"), "as it was");
    EXPECT_EQ(runWithInput({"convert", "--strict"}, kLossy).out, "");
    EXPECT_EQ(runWithInput({"convert", "--strict"}, kGood).out,
              runWithInput({"convert"}, kGood).out);
}

TEST_F(ConvertFolders, ADryRunWritesNothing) {
    put("phone/lossy.vcs", kLossy);
    const ProcessResult result = run({"convert", "-n", phone_, "-d", out_});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_FALSE(has("out"));
    EXPECT_TRUE(contains(result.out, phone_ + "/a.vcs -> " + out_ + "/a.ics: 1 entry, 0 changed"));
    EXPECT_TRUE(contains(result.out, "lossy.ics: 1 entry, 1 changed, 1 not carried over\n"));
    EXPECT_TRUE(contains(result.err, "nothing written; would be: 3 files"));
}

TEST_F(ConvertFolders, AFileWithoutACalendarReplacesNothing) {
    put("all.ics", "as it was");
    fails(1, {"convert", state_.file("phone/read.me"), "-o", state_.file("all.ics")},
          "there is no entry to write; " + state_.file("all.ics") + " is left as it was");
    EXPECT_EQ(read("all.ics"), "as it was");
    EXPECT_EQ(runWithInput({"convert"}, "").out, "");
    put("phone/text.vcs", "no calendar");
    EXPECT_EQ(run({"convert", phone_, "-d", out_}).exitCode, 1);
    EXPECT_FALSE(has("out/text.ics"));
    EXPECT_TRUE(has("out/a.ics"));
}

TEST_F(ConvertFolders, EverythingIsTakenOrNamed) {
    const std::string note = "BEGIN:VNOTE\r\nVERSION:1.1\r\nBODY:A note\r\nEND:VNOTE\r\n";
    for (const char* name : {"c.VNT", "d.Ical", "e.iCalendar", "f.vcal"})
        put(std::string("phone/") + name, name[2] == 'V' ? note : kGood);
    put("phone/old.bak", kGood);
    put("phone/us.VCF", "BEGIN:VCARD\r\nVERSION:2.1\r\nN:Us\r\nEND:VCARD\r\n");
    put("phone/photo.jpg", std::string("\xFF\xD8\xFF\0\x10", 5));
    const std::string page = state_.file("page.html");
    const std::string otherFiles = std::to_string(others_ + 3) + " other files";
    const ProcessResult all =
        run({"convert", phone_, "--json", "-v", "-d", out_, "--report", page});
    EXPECT_EQ(all.exitCode, 0) << all.err;
    for (const char* each : {"c", "d", "e", "f"})
        EXPECT_TRUE(has(std::string("out/") + each + ".ics"));
    for (const std::string& says : std::vector<std::string>{
             "us.VCF: note: is not converted: it is a contact (vCard)",
             "old.bak: warning: is not converted: it is a calendar under a name",
             "6 files, 6 entries", otherFiles + " (1 contact, which address"})
        EXPECT_TRUE(contains(all.err, says));
    EXPECT_TRUE(contains(read("page.html"), otherFiles));
    const auto json = nlohmann::ordered_json::parse(all.out);
    EXPECT_EQ(json["summary"]["otherFiles"], others_ + 3);
    EXPECT_EQ(json["summary"]["contacts"], 1);
    EXPECT_EQ(json["otherFiles"].size(), others_ + 3U);
}

TEST_F(ConvertFolders, WithoutAnEntryNothingIsWritten) {
    const std::string empty = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nEND:VCALENDAR\r\n";
    const std::string late = std::string(200000, '\n') + kGood;
    const std::pair<std::string, std::string> kFiles[] = {
        {"", "it is empty"},
        {empty, "there is no event, to-do or note in this calendar"},
        {"BEGIN:VCARD\r\nEND:VCARD\r\n", "it is a contact (vCard); address books import it"},
        {"<html><body>Not found", "it is a web page"},
        {std::string("\n\0B\0E\0G\0", 8), "UTF-16 text without a byte-order mark"},
    };
    for (const auto& [text, says] : kFiles) {
        put("other.vcs", text);
        fails(1, {"convert", state_.file("other.vcs"), "-o", state_.file("all.ics")}, says);
        fails(1, {"convert", state_.file("other.vcs"), "-d", out_}, says);
        EXPECT_EQ(fails(1, {"convert"}, says, text).out, "");
    }
    EXPECT_FALSE(has("all.ics"));
    EXPECT_FALSE(has("out/other.ics"));
    // Behind whatever else, a calendar is found.
    put("other.vcs", late);
    EXPECT_EQ(run({"convert", state_.file("other.vcs")}).out, runWithInput({"convert"}, late).out);
    EXPECT_TRUE(contains(run({"convert", state_.file("other.vcs")}).out, "SUMMARY:Good"));
}

// One run writes one format: that of the result's name, or of today where a phone's file is among
// them.
TEST_F(ConvertFolders, WhatIsWrittenWithoutBeingNamed) {
    const std::string own = state_.file("mixed/a.ics");
    const std::string phone = state_.file("phone/a.vcs");
    fs::create_directories(state_.path() / "mixed");
    EXPECT_EQ(run({"convert", phone, "-o", own}).exitCode, 0);
    fs::copy_file(phone, state_.path() / "mixed/b.vcs");
    for (const char* name : {"again.ics", "phone.vcs"}) {
        EXPECT_EQ(run({"convert", own, "-o", state_.file(name)}).exitCode, 0);
        EXPECT_TRUE(
            contains(read(name), std::string(name) == "phone.vcs" ? "VERSION:1" : "VERSION:2"));
    }
    EXPECT_EQ(run({"convert", state_.file("mixed"), "-d", out_}).exitCode, 0);
    EXPECT_TRUE(has("out/a.ics"));
    EXPECT_TRUE(has("out/b.ics"));
    fails(1, {state_.file("gone/x.vcs")}, "cannot be read");
    EXPECT_FALSE(has("gone"));
}

TEST_F(ConvertFolders, TheReportShowsEveryEntry) {
    put("phone/odd.vcs",
        calendar("SUMMARY:<script>alert('1')</script>&\r\nRNUM:3\r\nno <property>\r\n"
                 "EXDATE:20050617T083000\r\nRRULE:D1 #5\r\n"));
    const std::string page = state_.file("report.html");
    const ProcessResult result =
        run({"convert", phone_, "-d", out_, "--report", page, "--zone", "Asia/Tokyo"});
    EXPECT_EQ(result.exitCode, 1);
    const std::string text = read("report.html");
    for (const char* says :
         {"&lt;script&gt;alert(&#39;1&#39;)&lt;/script&gt;&amp;", "every day, 5 times",
          "every 2 weeks on Wednesday, 10 times", "<code>W2 WE #10</code>", "<caption>June 2005",
          "<td class=o><b>15</b><td class=o><b>16</b><td class=x><s>17</s>", "X-VCAL-RNUM",
          "no &lt;property&gt;", "is not a property", "not all carried over",
          "<dt>Entries<dd>3</div>", "RRULE:D1 #5\n",
          "Times without a zone are those of Asia/Tokyo."})
        EXPECT_TRUE(contains(text, says));
    for (const char* never : {"<script>alert", "http:", "https:", "src=", "url(", "Files left out"})
        EXPECT_FALSE(contains(text, never));
    put("other/hourly.ics",
        "BEGIN:VCALENDAR\nVERSION:2.0\nBEGIN:VEVENT\nDTSTART:20050615T083000\n"
        "RRULE:FREQ=DAILY;BYHOUR=8,9;COUNT=9000\nEND:VEVENT\nEND:VCALENDAR\n");
    run({"convert", state_.file("other/hourly.ics"), "-n", "--report", state_.file("hourly.html")});
    EXPECT_TRUE(contains(read("hourly.html"), "none: times of day in a rule"));
    fails(1, {"convert", phone_, "-n", "--report", state_.file("no/such/report.html")},
          "cannot be written");
    fails(2, {"convert", phone_, "--report", page, "-o", page}, "name the same file");
}

// Whole conversions, and among them files that fail, lose entries, or are long.
TEST_F(ConvertFolders, ManyThreadsDoWhatOneDoes) {
    const fs::path golden = fs::path(QEL_TEST_SOURCE_DIR) / "tests/calendar/golden";
    for (const char* copy : {"1", "2", "3", "4"}) fs::copy(golden, state_.path() / "phone" / copy);
    put("phone/1/empty.ics", "");
    put("phone/2/text.vcs", "no calendar");
    put("phone/2/x.ics", kGood);
    put("phone/2/x.vcs", kGood);
    put("phone/3/lossy.vcs", kLossy);
    std::string entries;
    for (int i = 0; i < 2100; ++i)
        entries += "BEGIN:VEVENT\r\nUID:" + std::to_string(i) +
                   "\r\nDTSTART:20050615T083000\r\nEND:VEVENT\r\n";
    put("phone/4/long.vcs", calendar(entries + "BEGIN:VEVENT\r\n"));
    ProcessOptions here;
    here.directory = state_.path().string();
    const auto all = [&](const std::string& threads, std::vector<std::string> words) {
        fs::remove_all(out_);
        fs::remove_all(state_.path() / "phone-converted");
        for (const char* each : {"r.html", "all.vcs"}) fs::remove(state_.path() / each);
        words.insert(words.end(), {"phone", "--threads", threads});
        const ProcessResult result = run(words, here);
        std::string text = std::to_string(result.exitCode) + result.out + result.err;
        std::vector<fs::path> files;
        for (const char* folder : {"out", "phone-converted"})
            if (has(folder))
                for (const auto& each : fs::recursive_directory_iterator(state_.path() / folder))
                    if (each.is_regular_file()) files.push_back(each.path());
        for (const char* each : {"r.html", "all.vcs"})
            if (has(each)) files.push_back(state_.path() / each);
        std::sort(files.begin(), files.end());
        for (const fs::path& each : files)
            text += each.generic_string() + "\n" + readFile(each.string());
        return text;
    };
    const std::vector<std::vector<std::string>> ways = {
        {"convert", "-d", "out", "--report", "r.html"},
        {"convert", "-d", "out", "--strict", "--verbose", "--json", "--to", "ics"},
        {"convert", "-d", "out", "--dry-run"},
        {"convert", "--beside"},
        {"convert", "-o", "all.vcs", "--json", "--distinct-uids"},
        {"convert", "-o", "all.vcs", "--to", "vcs", "--report", "r.html", "--verbose"},
        {"convert", "--only", "todos"}};
    for (const auto& words : ways) {
        const std::string one = all("1", words);
        EXPECT_GT(one.size(), 10000U);
        EXPECT_EQ(one == all("5", words), true) << words.back();
    }
}

// From one file and from a pipe: it is read in larger pieces after the first megabyte.
TEST_F(ConvertFolders, ManyThreadsDoWhatOneDoesWithALargeFile) {
    std::string entries;
    for (int i = 0; i < 30000; ++i)
        entries += "BEGIN:VEVENT\r\nUID:" + std::to_string(i - i % 9) +
                   "\r\nSUMMARY:" + std::to_string(i) +
                   "\r\nDTSTART:20050615T083000\r\nRRULE:D1 #3\r\nEND:VEVENT\r\n";
    put("large.vcs", calendar(entries));
    const auto all = [&](const std::string& threads) {
        std::string text;
        for (const char* each : {"large.ics", "r.html"}) fs::remove(state_.path() / each);
        const std::string large = state_.file("large.vcs");
        const std::string result = state_.file("large.ics");
        for (const std::vector<std::string>& words :
             {std::vector<std::string>{"convert", large, "-o", result, "--threads", threads,
                                       "--report", state_.file("r.html"), "--json"},
              {"convert", large, "-n", "--threads", threads, "-v"}}) {
            const ProcessResult done = run(words);
            text += std::to_string(done.exitCode) + done.out + done.err;
        }
        text += runWithInput({"convert", "--threads", threads}, readFile(result)).out;
        return text + readFile(result) + readFile(state_.file("r.html"));
    };
    const std::string one = all("1");
    EXPECT_GT(one.size(), 9000000U);
    EXPECT_EQ(one == all("3"), true);
}

}  // namespace
}  // namespace qel::test
