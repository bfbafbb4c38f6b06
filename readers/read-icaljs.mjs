// Prints what ical.js reads of calendar files: one JSON object a file, in the form that compare.py
// explains. Usage: node read-icaljs.mjs PATH-OF-ICAL.JS MOST FILE...
import { readFileSync } from "node:fs";
import { pathToFileURL } from "node:url";

const [library, most, ...files] = process.argv.slice(2);
const { default: ICAL } = await import(pathToFileURL(library));

// The series that have no end are looked at up to here.
const lastYear = 2400;

function text(time) {
  if (!time) return "";
  const local = time.isDate || time.zone === ICAL.Timezone.localTimezone;
  return (local ? time : time.convertToZone(ICAL.Timezone.utcTimezone)).toICALString();
}

function dates(component, start) {
  if (!start) return [];
  // The expansion gives nothing for one moved occurrence of a series.
  if (!component.hasProperty("rrule") && !component.hasProperty("rdate")) return [text(start)];
  const expansion = new ICAL.RecurExpansion({ component, dtstart: start });
  const found = [];
  while (found.length < Number(most)) {
    const time = expansion.next();
    if (!time || time.year > lastYear) break;
    found.push(text(time));
  }
  return [...new Set(found)];
}

function alarm(component) {
  const trigger = component.getFirstPropertyValue("trigger");
  return trigger instanceof ICAL.Duration ? String(trigger.toSeconds()) : text(trigger);
}

function entry(component) {
  const value = (name) => component.getFirstPropertyValue(name);
  const start = value("dtstart");
  return {
    kind: component.name.toUpperCase(),
    uid: value("uid") ?? "",
    "recurrence-id": text(value("recurrence-id")),
    summary: value("summary") ?? "",
    description: value("description") ?? "",
    location: value("location") ?? "",
    start: text(start),
    end: component.name !== "vevent" ? "" : text(new ICAL.Event(component).endDate),
    due: text(value("due")),
    completed: text(value("completed")),
    percent: value("percent-complete") ?? 0,
    alarms: component.getAllSubcomponents("valarm").map(alarm),
    dates: dates(component, start),
  };
}

for (const file of files) {
  const result = { file, errors: [], entries: [] };
  try {
    const parsed = ICAL.parse(readFileSync(file, "utf8"));
    const calendars = typeof parsed[0] === "string" ? [parsed] : parsed;
    for (const calendar of calendars) {
      for (const each of new ICAL.Component(calendar).getAllSubcomponents()) {
        if (!["vevent", "vtodo", "vjournal"].includes(each.name)) continue;
        try {
          result.entries.push(entry(each));
        } catch (error) {
          result.errors.push(`${each.getFirstPropertyValue("uid")}: ${error.message}`);
        }
      }
    }
  } catch (error) {
    result.errors.push(error.message);
  }
  console.log(JSON.stringify(result));
}
