// qelutil convert as a process: files, pipes, messages, exit codes.
#include <filesystem>

#include "Qelutil.h"

namespace qel::test {
namespace {

const char kPhone[] =
    "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\nUID:1\r\nSUMMARY:One\r\n"
    "DTSTART:20050615T083000Z\r\nRRULE:W2 MO WE FR #10\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";

class ConvertCommand : public QelutilTest {
  protected:
    std::string fileWith(const std::string& name, const std::string& text) const {
        const std::string path = state_.file(name);
        writeFile(path, text);
        return path;
    }
};

TEST_F(ConvertCommand, FromAPipeToAPipe) {
    const ProcessResult there = runWithInput({"convert"}, kPhone);
    EXPECT_EQ(there.exitCode, 0) << there.err;
    EXPECT_EQ(there.err, "");
    EXPECT_TRUE(contains(there.out, "RRULE:FREQ=WEEKLY;COUNT=10;INTERVAL=2;BYDAY=MO,WE,FR\r\n"));
    const ProcessResult back = runWithInput({"convert", "-"}, there.out);
    EXPECT_TRUE(contains(back.out, "RRULE:W2 MO WE FR #10\r\n"));
}

TEST_F(ConvertCommand, APipeIsReadForItsZonesFirst) {
    std::string text = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n";
    for (int each = 0; each < 2000; ++each)
        text += "BEGIN:VEVENT\r\nUID:" + std::to_string(each) +
                "\r\nDTSTART;TZID=Here:20050601T090000\r\nEND:VEVENT\r\n";
    text +=
        "BEGIN:VTIMEZONE\r\nTZID:Here\r\nBEGIN:STANDARD\r\nDTSTART:19700101T000000\r\n"
        "TZOFFSETFROM:+0530\r\nTZOFFSETTO:+0530\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n"
        "END:VCALENDAR\r\n";
    const ProcessResult piped = runWithInput({"convert"}, text);
    EXPECT_EQ(piped.err, "");
    EXPECT_TRUE(contains(piped.out, "TZ:+05:30\r\n"));
    EXPECT_EQ(piped.out, run({"convert", fileWith("zone.ics", text)}).out);
}

TEST_F(ConvertCommand, SeveralFilesIntoOne) {
    const std::string first = fileWith("a.vcs", kPhone);
    const std::string out = state_.file("all.ics");
    std::string other = kPhone;
    other.replace(other.find("UID:1"), 5, "UID:2");
    const ProcessResult result = run({"convert", first, fileWith("b.vcs", other), "--output", out});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    const std::string text = readFile(out);
    EXPECT_EQ(text.find("BEGIN:VCALENDAR"), text.rfind("BEGIN:VCALENDAR"));
    EXPECT_NE(text.find("BEGIN:VEVENT"), text.rfind("BEGIN:VEVENT"));
}

TEST_F(ConvertCommand, NoResultTakesThePlaceOfAnInput) {
    const std::string phone = fileWith("a.vcs", kPhone);
    const std::string sameByPath = (state_.path() / "." / "a.vcs").string();
    const std::string sameByLink = state_.file("link.ics");
    std::filesystem::create_hard_link(phone, sameByLink);
    const std::string page = fileWith("page.html", "as it was");
    for (const std::string& name : {phone, sameByPath, sameByLink}) {
        fails(2, {"convert", phone, "-o", name}, "is itself one of the files to convert");
        fails(2, {"convert", phone, "-n", "--report", name}, "is itself one of the files");
    }
    for (const char* one : {"page.html", "new.html"})
        fails(2,
              {"convert", phone, "-o", state_.file(one), "--report",
               (state_.path() / "." / one).string()},
              "name the same file");
    // Other commands too.
    fails(1, {"encode", "base64", phone, "-o", sameByLink}, "is the file that is read");
    EXPECT_EQ(readFile(phone), kPhone);
    EXPECT_EQ(readFile(page), "as it was");
}

TEST_F(ConvertCommand, MessagesNameFileAndLine) {
    const std::string bad = fileWith(
        "bad.vcs",
        "BEGIN:VCALENDAR\nVERSION:1.0\nBEGIN:VEVENT\nDTSTART:20050101\nRRULE:never\nRNUM:2\n"
        "STATUS:SENT\nSEQUENC:1\nRRULE:D1\nEND:VEVENT\nEND:VCALENDAR\n");
    ProcessResult result = run({"convert", bad});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.err, bad + ":5: "));
    EXPECT_TRUE(contains(result.err, bad + ":8: warning: "));
    EXPECT_FALSE(contains(result.err, ":9: "));
    result = run({"convert", "--verbose", bad});
    EXPECT_TRUE(contains(result.err, bad + ":9: note: "));
}

TEST_F(ConvertCommand, WhatCannotBeDone) {
    const std::string out = fileWith("out.ics", "as it was");
    // One file is missing: the others are converted, and the exit code tells.
    const ProcessResult missing =
        run({"convert", state_.file("none.vcs"), fileWith("a.vcs", kPhone)});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(contains(missing.err, "none.vcs"));
    EXPECT_TRUE(contains(missing.out, "UID:1"));
    // With no file at all there is nothing to put in an older result's place.
    EXPECT_EQ(run({"convert", state_.file("none.vcs"), "-o", out}).exitCode, 1);
    EXPECT_EQ(readFile(out), "as it was");
    const ProcessResult folder = runWithInput({"convert", "-o", state_.path().string()}, kPhone);
    EXPECT_EQ(folder.exitCode, 1);
    EXPECT_TRUE(contains(folder.err, "is a directory"));
    EXPECT_EQ(runWithInput({"convert", "-o", state_.file("no/such/folder.ics")}, kPhone).exitCode,
              1);
    EXPECT_EQ(runWithInput({"convert"}, "").exitCode, 1);
    EXPECT_EQ(readFile(out), "as it was");
}

TEST_F(ConvertCommand, AlikeMessagesAreOneWithACount) {
    std::string text = "BEGIN:VCALENDAR\nVERSION:1.0\nBEGIN:VEVENT\nDTSTART:20050101\n";
    for (int each = 0; each < 5000; ++each) text += "no property\n";
    const ProcessResult result = runWithInput({"convert"}, text + "END:VEVENT\nEND:VCALENDAR\n");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_TRUE(contains(result.err, "standard input:5: a line is left out"));
    EXPECT_TRUE(contains(result.err, "and 4999 more like it\n"));

    // Over all files, and in each file's part of the document; the worst of many kinds comes last.
    const std::string a = fileWith("a.vcs", kPhone + text + "TRANSP:2\nBOGUS\n");
    const std::string b =
        fileWith("b.vcs", text + "GEO:900,900\nPRIORITY:x\nRRULE:every day\nTZ:121g\nEND:VEVENT\n");
    const ProcessResult both = run({"convert", a, b, "--json", "-n"});
    EXPECT_TRUE(contains(both.err, "a.vcs:14: a line is left out"));
    EXPECT_TRUE(contains(both.err, "and 10000 more like it, in 2 files together"));
    EXPECT_TRUE(contains(both.err, "look first at " + a + ":14: a line is left out"));
    EXPECT_TRUE(contains(both.out, "\"count\": 5001,"));
    EXPECT_TRUE(contains(run({"convert", a, b, "-v", "-n"}).err, "a.vcs:15: a line is left out"));
}

}  // namespace
}  // namespace qel::test
