/** A large calendar as several files that every importer takes. */
import { writeZip } from "./zip.js";

/** What large importers take at once. */
const pieceSize = 1000000;
const tail = "END:VCALENDAR\r\n";

/**
 * An archive of the calendar's pieces. What belongs together, the entries of one UID, stays together,
 * and each piece has the zones that it uses.
 * @param {Blob} calendar
 * @param {string} name its file's
 */
export async function inPieces(calendar, name) {
    const pieces = split(await calendar.text());
    const digits = String(pieces.length).length;
    return writeZip(pieces.map((parts, i) => ({
        name: name.replace(/\.ics$/, `-${String(i + 1).padStart(digits, "0")}.ics`),
        data: new Blob(parts),
    })));
}

/** @param {string} calendar @returns {string[][]} of each piece the parts */
export function split(calendar) {
    const { head, zones, groups } = components(calendar);
    const encoder = new TextEncoder();
    const sizeOf = (/** @type {string} */ part) => encoder.encode(part).length;
    const frame = sizeOf(head) + tail.length;
    const sizeOfZone = new Map([...zones].map(([id, zone]) => [id, sizeOf(zone)]));
    /** @type {string[][]} */
    const pieces = [];
    /** @type {string[]} */
    let body = [];
    /** @type {Set<string>} */
    let used = new Set();
    let size = frame;
    const seal = () => {
        if (body.length > 0) pieces.push([head, ...[...used].map((id) => zones.get(id) ?? ""), ...body, tail]);
        body = [];
        used = new Set();
        size = frame;
    };
    const sizeWith = (/** @type {Group} */ { zones: ids }) =>
        size + [...ids].reduce((sum, id) => sum + (used.has(id) ? 0 : sizeOfZone.get(id) ?? 0), 0);
    for (const group of groups) {
        const own = sizeOf(group.text);
        if (sizeWith(group) + own > pieceSize) seal();
        size = sizeWith(group) + own;
        for (const id of group.zones) used.add(id);
        body.push(group.text);
    }
    seal();
    return pieces;
}

/** @typedef {{text: string, zones: Set<string>}} Group the components of one UID */

/** @param {string} calendar */
function components(calendar) {
    const pattern = /^BEGIN:(VEVENT|VTODO|VJOURNAL|VTIMEZONE)\r?\n[^]*?^END:\1\r?\n/gm;
    /** @type {Map<string, Group>} */
    const groups = new Map();
    /** @type {Map<string, string>} */
    const zones = new Map();
    let head;
    for (const match of calendar.matchAll(pattern)) {
        head ??= calendar.slice(0, match.index);
        const [whole, name] = match;
        const unfolded = whole.replace(/\r?\n[ \t]/g, "");
        const property = (/** @type {string} */ key) => new RegExp(`^${key}[^:\\n]*:(.*)$`, "m").exec(unfolded)?.[1].trim();
        if (name === "VTIMEZONE") {
            zones.set(property("TZID") ?? "", whole);
            continue;
        }
        const uid = property("UID") ?? `#${groups.size}`;
        const group = groups.get(uid) ?? { text: "", zones: new Set() };
        group.text += whole;
        for (const [, id] of unfolded.matchAll(/^[A-Z-]+[^:\n]*?;TZID="?([^":;\n]+)/gm)) group.zones.add(id);
        groups.set(uid, group);
    }
    return { head: head ?? "", zones, groups: groups.values() };
}
