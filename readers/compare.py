"""Compares what the readers of calendar files say, and prints one table of it.

Usage: compare.py QELUTIL FOLDER

FOLDER/ics holds the files that were read, FOLDER/READER.jsonl a JSON object for each of them:
    {"file": NAME, "errors": [TEXT], "entries": [ENTRY]}
An ENTRY has kind, uid, recurrence-id, summary, description, location, start, end, due, completed,
percent, alarms (their times, or seconds from the start) and dates (the first occurrences). Times are
YYYYMMDDTHHMMSSZ, YYYYMMDDTHHMMSS without a zone, or YYYYMMDD. An end that is not written is the one
that RFC 5545 section 3.6.1 names.

A difference without a known reason, an entry that is not read or a complaint fails the comparison.
The reasons are explained in docs/limits.md.
"""
import collections
import json
import pathlib
import re
import subprocess
import sys
from datetime import datetime

READERS = ("libical", "kcalendarcore", "ical.js")
TIMES = ("recurrence-id", "start", "end", "due", "completed", "alarms", "dates")
MOST = 50


def load(path):
    objects = map(json.loads, path.read_text().splitlines())
    return {pathlib.Path(each["file"]).stem: each for each in objects}


def written_entries(path):
    """The lines of each entry of an iCalendar file, folds undone, without those of its alarms."""
    text = path.read_bytes().decode("utf-8", "replace").replace("\r\n ", "")
    found, entry, alarm = [], None, False
    for line in text.split("\r\n"):
        if line in ("BEGIN:VEVENT", "BEGIN:VTODO", "BEGIN:VJOURNAL"):
            entry = []
            found.append(entry)
        elif line in ("BEGIN:VALARM", "END:VALARM"):
            alarm = line.startswith("BEGIN")
        elif entry is not None and not alarm:
            entry.append(line)
    return found


def values(lines, name):
    return [line.split(":", 1) for line in lines if re.match(name + "[;:]", line)]


def likeness(one, other):
    return sum(one[field] == other[field] for field in one)


def partner(entry, others):
    """The entry among `others` that is this one; it is taken from them."""
    def identity(each):
        return each["kind"], each["uid"], bool(each["recurrence-id"])
    same = [each for each in others if identity(each) == identity(entry)]
    best = max(same, key=lambda each: likeness(entry, each), default=None)
    if best is not None:
        others.remove(best)
    return best


def days(dates):
    """Days between the first date and each; an hour more or less is summer time."""
    moments = [datetime.strptime(date[:8] + (date[8:15] or "T000000"), "%Y%m%dT%H%M%S") for date in dates]
    return [round((each - moments[0]).total_seconds() / 86400) for each in moments]


def own_days(qelutil, lines, start):
    """The same by this system, for a series of one rule and nothing else; None for others."""
    rules = values(lines, "RRULE")
    if len(rules) != 1 or any(values(lines, name) for name in ("RDATE", "EXDATE", "EXRULE")):
        return None
    # Of the two clocks of a start the one counts in which the rule's end is written.
    if not rules[0][1].count("Z;"):
        start = values(lines, "DTSTART")[0][1]
    command = [qelutil, "expand", rules[0][1], "--from", "ical", "--start", start,
               "--through", "24001231", "--count", str(MOST), "--json"]
    output = subprocess.run(command, capture_output=True, check=True, text=True).stdout
    return days([date.replace("-", "") for date in json.loads(output)["dates"]])


def listed(lines, name):
    """The dates of all lines of that name."""
    return {date for _, value in values(lines, name) for date in value.split(",")}


def has_zone(lines):
    return any(";TZID=" in line for line in lines)


# What a reader is known to do, in the order of looking: reader, reason, and whether that explains a
# field of an entry. `mine` is the reader's entry, `usual` what the others have.
REASONS = (
    ("kcalendarcore", "shows a description as the summary of an entry that has none",
     lambda field, mine, usual, lines: field in ("summary", "description") and not usual["summary"]
     and mine["summary"].strip() == usual["description"].strip()),
    ("ical.js", "keeps blanks at the ends of a text",
     lambda field, mine, usual, lines: field in ("summary", "description", "location")
     and mine[field].strip() == usual[field].strip()),
    ("kcalendarcore", "takes 100 percent for a to-do that is completed",
     lambda field, mine, usual, lines: field == "percent" and usual["completed"] != ""),
    ("kcalendarcore", "takes out the dates of an EXRULE, and the others do not",
     lambda field, mine, usual, lines: field == "dates" and values(lines, "EXRULE")),
    ("ical.js", "takes no date out for an EXRULE, libical the first",
     lambda field, mine, usual, lines: field == "dates" and values(lines, "EXRULE")),
    # Where two rules have one date, an EXDATE takes it out of one of them.
    ("ical.js", "keeps a date of an EXDATE that several rules have",
     lambda field, mine, usual, lines: field == "dates" and len(values(lines, "RRULE")) > 1
     and set(usual["dates"]) < set(mine["dates"])
     and set(mine["dates"]) - set(usual["dates"]) <= listed(lines, "EXDATE")),
    ("kcalendarcore", "leaves out an RDATE before the start",
     lambda field, mine, usual, lines: field == "dates"
     and set(mine["dates"]) < set(usual["dates"])
     and all(each in listed(lines, "RDATE") and each < values(lines, "DTSTART")[0][1]
             for each in set(usual["dates"]) - set(mine["dates"]))),
    ("ical.js", "alone has a number for seconds of more than 68 years",
     lambda field, mine, usual, lines: field == "alarms"
     and any(abs(int(each)) >= 2 ** 31 for each in mine["alarms"] if "T" not in each)),
    ("kcalendarcore", "puts a zone of its own in the place of a VTIMEZONE",
     lambda field, mine, usual, lines: field in TIMES and has_zone(lines)),
)


def reason(reader, field, mine, usual, lines):
    for known, text, explains in REASONS:
        if known == reader and explains(field, mine, usual, lines):
            return text
    return None


def back(folder, unexplained):
    """The other way: vCalendar 1.0 from iCalendar, as kcalendarcore's reader of that takes it."""
    before, after = load(folder / "from.jsonl"), load(folder / "back.jsonl")
    counts = collections.Counter()
    for name in sorted(after):
        text = (folder / "vcs" / (name + ".vcs")).read_bytes().decode("utf-8", "replace")
        begin = r"^BEGIN:(?:VEVENT|VTODO)\r$"
        written = len(re.findall(begin, text, re.M))
        first = text.split("END:VCALENDAR")[0]
        later = written - len(re.findall(begin, first, re.M))
        uids = re.findall(r"^UID[^:\r\n]*:(.*?)\r$", first, re.M)
        found = after[name]["entries"]
        counts["files"] += 1
        counts["entries"] += written
        counts["entries read"] += len(found)
        if after[name]["errors"]:
            # Its parameters are words that begin with a letter.
            if re.search(r"""^[A-Z-]+(;[^:\r\n]+)?;[A-Z-]+=["0-9]""", text, re.M):
                counts["entries of a file that kcalendarcore refuses for a parameter"] += written
            elif written:
                unexplained.append(f"{name}.vcs: {after[name]['errors']}")
            continue
        shared = len(uids) - len(set(uids))
        counts["entries of which kcalendarcore keeps one, because they share a UID"] += shared
        counts["entries of a file's second calendar, which kcalendarcore passes over"] += later
        if len(found) != written - later - shared:
            unexplained.append(f"{name}.vcs: {written} entries, {shared} share a UID, {len(found)} read")
        known = {entry["summary"].strip() for entry in before[name]["entries"]}
        for entry in found:
            counts["summaries as in the iCalendar file"] += entry["summary"].strip() in known
            if known and entry["summary"].strip() not in known:
                unexplained.append(f"{name}.vcs: summary {entry['summary']!r}")
    print("vCalendar 1.0 from iCalendar, read by kcalendarcore:")
    for what, count in counts.items():
        print(f"{count:7} {what}")


def main():
    qelutil, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    read = {reader: load(folder / (reader + ".jsonl")) for reader in READERS}
    counts, differing, unexplained = collections.Counter(), collections.Counter(), []

    def note(name, reader, field, mine, usual, lines):
        why = reason(reader, field, mine, usual, lines)
        if why is None:
            unexplained.append(f"{name}: {reader}: {field} {mine[field]!r}, others {usual[field]!r}")
        return f"{reader} {why or 'has another ' + field}"

    for name in sorted(read["libical"]):
        written = written_entries(folder / "ics" / (name + ".ics"))
        counts["files"] += 1
        counts["entries"] += len(written)
        for reader in READERS:
            for error in read[reader][name]["errors"]:
                if reader == "kcalendarcore" and error.startswith("Failed to map"):
                    differing["kcalendarcore says that it has no zone like a VTIMEZONE"] += 1
                else:
                    unexplained.append(f"{name}: {reader} says: {error}")
        first, third = (read[reader][name]["entries"] for reader in ("libical", "ical.js"))
        second = list(read["kcalendarcore"][name]["entries"])
        if not len(written) == len(first) == len(third):
            unexplained.append(f"{name}: entries: {len(written)}, {len(first)}, {len(third)}")
            continue
        identities = collections.Counter((each["uid"], each["recurrence-id"]) for each in first)
        for lines, one, three in zip(written, first, third):
            counts["alarms"] += len(one["alarms"])
            counts["occurrences"] += len(one["dates"])
            found = set()
            two = partner(one, second)
            if two is None:
                found.add("kcalendarcore keeps one of the entries that share a UID")
                if identities[one["uid"], one["recurrence-id"]] < 2:
                    unexplained.append(f"{name}: kcalendarcore has not {one['uid']}")
                two = three
            for field in one:
                if one[field] == two[field] == three[field]:
                    continue
                # Who stands alone deviates; when all differ, libical is taken for right.
                if two[field] == three[field]:
                    found.add(note(name, "libical", field, one, two, lines))
                elif one[field] == three[field]:
                    found.add(note(name, "kcalendarcore", field, two, one, lines))
                elif one[field] == two[field]:
                    found.add(note(name, "ical.js", field, three, one, lines))
                else:
                    found.add(note(name, "kcalendarcore", field, two, one, lines))
                    found.add(note(name, "ical.js", field, three, one, lines))
            own = own_days(qelutil, lines, one["start"])
            if own is not None:
                counts["series of one rule"] += 1
                if own != days(one["dates"]):
                    unexplained.append(f"{name}: qelutil has other dates for {values(lines, 'RRULE')}")
            differing.update(found)
            counts["entries in which all agree"] += not found
    for what, count in counts.items():
        print(f"{count:7} {what}")
    for what, count in sorted(differing.items()):
        print(f"{count:7} differ: {what}")
    back(folder, unexplained)
    for text in unexplained:
        print("UNEXPLAINED", text)
    sys.exit(1 if unexplained else 0)


if __name__ == "__main__":
    main()
