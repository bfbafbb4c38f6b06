/** One entry: a row of it, and the dialog with all that is known of it. */
import * as dates from "./dates.js";
import { byId, element, fill } from "./dom.js";
import { text } from "./texts.js";

/** Dates of a series that an entry shows. */
const someDates = 6;

/**
 * @typedef {import("./diary.js").Diary} Diary
 * @typedef {import("./engine.js").Details} Details
 */

/** @param {number} concern */
export function concernMark(concern) {
    if (concern === 0) return null;
    const name = text(concern === 2 ? "lost" : "changedMark");
    return element("span", { class: `mark concern-${concern}`, title: name }, element("span", { class: "unseen" }, name));
}

/** @param {number} kind */
export const kindText = (kind) => (kind === 2 ? text("todo") : kind === 3 ? text("journal") : "");

/** @param {Diary} diary @param {import("./diary.js").Occurrence} occurrence */
export const timeText = (diary, occurrence) =>
    diary.isAllDay(occurrence) ? text("allDay") : dates.timeOfDay(occurrence.minute);

/**
 * @param {Diary} diary
 * @param {number} index
 * @param {string} time
 * @param {(index: number) => void} show
 */
export function entryButton(diary, index, time, show) {
    const { title, place, kind } = diary.entries[index];
    return element(
        "button",
        { class: `line kind-${kind}`, click: () => show(index) },
        element("span", { class: "time" }, time),
        element("span", { class: "name", dir: "auto" }, title || text("untitled")),
        place !== "" && element("small", { dir: "auto" }, place),
        concernMark(diary.concern(index)),
    );
}

/** @param {Diary} diary @param {number} index */
export async function showEntry(diary, index) {
    const entry = diary.entries[index];
    const details = await diary.details(index);
    const dialog = /** @type {HTMLDialogElement} */ (byId("entry"));
    fill(
        dialog,
        element(
            "header",
            {},
            element("h2", { id: "entry-title", dir: "auto" }, entry.title || text("untitled")),
            element("button", { class: "quiet icon", "aria-label": text("close"), title: text("close"), click: () => dialog.close() }, "×"),
        ),
        element("dl", { class: "facts" }, facts(diary, index, details)),
        notes(diary, details),
        element(
            "details",
            { class: "sides" },
            element("summary", {}, text("sourceResult")),
            element(
                "div",
                { class: "two" },
                side(text("source"), details.source, details.sourceCut === 1,
                    text("entryLine", diary.names[entry.file] ?? "", details.line)),
                side(text("result"), details.written, false, ""),
            ),
        ),
    );
    dialog.showModal();
}

/**
 * @param {string} name
 * @param {string} lines
 * @param {boolean} cut
 * @param {string} where
 */
function side(name, lines, cut, where) {
    return element(
        "section",
        {},
        element("h3", {}, name, where !== "" && element("small", {}, ` ${where}`)),
        element("pre", { tabindex: 0, "aria-label": name }, lines.trimEnd()),
        cut && element("p", { class: "faint" }, text("sourceCut")),
    );
}

/** @param {Diary} diary @param {number} index @param {Details} details */
function facts(diary, index, details) {
    const entry = diary.entries[index];
    const property = (/** @type {string} */ name) => details.properties.find((each) => each.name === name)?.values.join(", ");
    const upcoming = entry.dates === undefined ? [] : diary.starts(index, dates.today(), someDates);
    const shown = upcoming.length > 0 || entry.dates === undefined ? upcoming : diary.starts(index, 0, someDates);
    /** @type {[string, import("./dom.js").Child][]} */
    const rows = [
        [text("when"), whenText(entry, details)],
        [text("due"), details.due && dates.writtenTime(details.due)],
        [text("completed"), details.completed && dates.writtenTime(details.completed)],
        // The library's sentence is English.
        [text("repeats"), details.rules.map((rule) => element("div", { lang: "en" }, rule.words))],
        [
            upcoming.length > 0 ? text("nextDates") : text("firstDates"),
            shown.length > 0 && element("ul", { class: "dates" }, shown.map((at) => element("li", {}, dates.dayAndTime(at, entry.day)))),
        ],
        [text("place"), property("LOCATION") && element("span", { dir: "auto" }, property("LOCATION") ?? "")],
        [text("about"), property("DESCRIPTION") && element("p", { class: "about", dir: "auto" }, property("DESCRIPTION") ?? "")],
        [text("alarm"), details.alarms.map((alarm) => element("div", {}, alarmText(alarm)))],
        [
            text("other"),
            details.properties
                .filter(({ name }) => !["SUMMARY", "LOCATION", "DESCRIPTION"].includes(name))
                .slice(0, 40)
                .map(({ name, values }) =>
                    element("div", { class: "property" }, element("code", {}, name), " ",
                        element("span", { dir: "auto" }, values.join(", ").slice(0, 300)))),
        ],
    ];
    return rows.flatMap(([name, value]) =>
        !value || (Array.isArray(value) && value.length === 0) ? [] : [element("dt", {}, name), element("dd", {}, value)],
    );
}

/** @param {import("./engine.js").Entry} entry @param {Details} details */
function whenText(entry, details) {
    if (details.start === undefined || entry.minute === undefined) return "";
    const start = dates.shownMinute(entry.minute, entry.clock, entry.day);
    const end = start + (entry.length ?? 0);
    const zone = entry.clock === 2 ? ` (${zoneName(entry.zone ?? "")})` : entry.clock === 1 ? ` (${text("localTime")})` : "";
    const first = dates.dayOf(start);
    const last = Math.max(first, dates.dayOf(end - 1));
    if (entry.day) return first === last ? dates.longDay(first) : `${dates.longDay(first)} – ${dates.longDay(last)}`;
    const from = `${dates.longDay(first)}, ${dates.timeOfDay(start)}`;
    if (end === start) return from + zone;
    return `${from} – ${dates.dayOf(end) === first ? "" : `${dates.longDay(dates.dayOf(end))}, `}${dates.timeOfDay(end)}${zone}`;
}

/** A zone by its name; one that a phone describes by its offset alone, by that. @param {string} zone */
function zoneName(zone) {
    const [, hours, minutes] = /^TZ([+-]\d\d)(\d\d)-/.exec(zone) ?? [];
    return hours === undefined ? zone : `UTC${hours}:${minutes}`;
}

/** @param {Details["alarms"][number]} alarm */
function alarmText({ time, minutes = 0 }) {
    if (time !== undefined) return dates.writtenTime(time);
    if (minutes === 0) return text("alarmAt");
    return text(minutes < 0 ? "alarmBefore" : "alarmAfter", dates.lengthInWords(Math.abs(minutes)));
}

/** @param {Diary} diary @param {Details} details */
function notes(diary, details) {
    if (details.notes.length === 0) return null;
    return element(
        "section",
        { class: "entry-notes" },
        element("h3", {}, text("notesOf")),
        element(
            "ul",
            { lang: "en" },
            details.notes.slice(0, 50).map((note) => {
                const kind = diary.kinds.get(note.code);
                return element(
                    "li",
                    { class: `note concern-${diary.concernOf(note.code)}` },
                    element("p", {}, note.text),
                    element("p", { class: "faint" }, `${kind?.meaning ?? ""} ${diary.advice(note.code).advice}`),
                );
            }),
        ),
    );
}
