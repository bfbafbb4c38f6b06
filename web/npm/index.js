/** Calendars of old phones (vCalendar 1.0) and of today (iCalendar): read, converted, explained. */
import { readFile } from "node:fs/promises";
import { Conversion, format, loadEngine, stream, wanted } from "./engine.js";

/**
 * A calendar's bytes, at once or in pieces of any size. A string is taken as UTF-8.
 * @typedef {string | Uint8Array | ArrayBuffer | Blob | ReadableStream<Uint8Array | string>
 *     | AsyncIterable<Uint8Array | string> | Iterable<Uint8Array | string>} Input
 *
 * @typedef {object} Options
 * @property {"ics" | "vcs"} [to] iCalendar or vCalendar 1.0; by default the other than the input's
 * @property {string} [name] the input's name, for its notes
 * @property {string} [zone] the zone of local times that name none: "Europe/Berlin"
 * @property {string} [charset] the character set of texts that name none: "windows-1251"
 * @property {"dates" | "periods"} [countMeans] what the number after # counts in a vCalendar rule with
 *     several days in a period; "dates" by default
 * @property {boolean} [distinctUids] give another UID to an entry whose UID an earlier one has
 * @property {boolean} [onePass] convert while the input comes, instead of keeping it until its end. Zones
 *     that are described after their entries are missed then, and texts that name no character set
 *     are not compared with one another before one is guessed.
 *
 * @typedef {object} KindOfNote a message about the input or the result, and how often it came
 * @property {number} code
 * @property {string} name
 * @property {"note" | "warning" | "error"} severity
 * @property {"unchanged" | "kept elsewhere" | "lost"} fate
 * @property {string} meaning
 * @property {string} advice
 * @property {number} count
 * @property {{line: number, text: string}} first
 *
 * @typedef {object} Summary
 * @property {"ics" | "vcs" | undefined} format of the result; undefined when there was nothing to convert
 * @property {number} entries
 * @property {number} changed entries that are not the same in the result
 * @property {number} lost properties and entries that the result cannot hold
 * @property {KindOfNote[]} notes
 *
 * @typedef {Summary & {calendar: string, bytes: Uint8Array}} Converted
 *
 * @typedef {object} Entry
 * @property {"event" | "to-do" | "note"} kind
 * @property {string} uid
 * @property {string} title
 * @property {string} place
 * @property {string} about
 * @property {boolean} allDay
 * @property {string} [start] "20050615T103000", "20050615T083000Z" in UTC, "20050615" for a date
 * @property {string} [end]
 * @property {string} [due]
 * @property {string} [completed]
 * @property {string} [created]
 * @property {string} [modified]
 * @property {string} [recurrenceId]
 * @property {string} [duration]
 * @property {string} [zone]
 * @property {import("./engine.js").Rule[]} rules
 * @property {{time?: string, minutes?: number, fromEnd: boolean, text: string}[]} alarms `minutes` from the
 *     start or the end, before it when negative
 * @property {{name: string, values: string[]}[]} properties everything, also what has a name above
 * @property {{code: number, line: number, text: string}[]} notes
 * @property {number} line in the input
 * @property {string} source its lines in the input
 * @property {boolean} sourceCut whether it has more lines than `source`
 * @property {string} written its lines in the result
 */

/** Pieces that the engine is given at once. */
const pieceSize = 1 << 18;

/** @type {Promise<WebAssembly.Module> | undefined} */
let compiled;

/** An engine has one conversion at a time: each conversion has its own. */
async function newEngine() {
    compiled ??= readFile(new URL("./engine.wasm", import.meta.url)).then((bytes) => WebAssembly.compile(bytes));
    return loadEngine(await compiled);
}

/**
 * The input in pieces that the engine takes.
 * @param {Input} input
 * @returns {AsyncGenerator<Uint8Array>}
 */
async function* pieces(input) {
    const encoder = new TextEncoder();
    const whole = typeof input === "string" || ArrayBuffer.isView(input) || input instanceof ArrayBuffer;
    const parts = whole ? [input] : input instanceof Blob ? input.stream() : input;
    for await (const part of /** @type {AsyncIterable<Uint8Array | string | ArrayBuffer>} */ (parts)) {
        const bytes = typeof part === "string" ? encoder.encode(part)
            : part instanceof ArrayBuffer ? new Uint8Array(part)
            : ArrayBuffer.isView(part) ? new Uint8Array(part.buffer, part.byteOffset, part.byteLength)
            : undefined;
        if (bytes === undefined) throw new TypeError("a calendar is a string, bytes, or pieces of these");
        for (let at = 0; at < bytes.length; at += pieceSize) yield bytes.subarray(at, at + pieceSize);
    }
}

/**
 * Runs a conversion; yields whenever the engine may have something to take.
 * @param {import("./engine.js").Engine} engine
 * @param {Input} input
 * @param {Options} options
 * @param {number} more
 * @returns {AsyncGenerator<void, Summary>}
 */
async function* run(engine, input, options, more) {
    const { to, name = "", zone, charset, countMeans, distinctUids, onePass = false } = options;
    if (to !== undefined && to !== "ics" && to !== "vcs") throw new TypeError(`to is "ics" or "vcs", not ${JSON.stringify(to)}`);
    const target = to === "ics" ? format.icalendar : to === "vcs" ? format.vcalendar : format.other;
    const choices = { zone, charset, countMeans, distinctUids: distinctUids ? "yes" : undefined };
    const conversion = new Conversion(engine, { target, choices, more });
    try {
        conversion.beginFile(name);
        let source = /** @type {AsyncIterable<Uint8Array> | Uint8Array[]} */ (pieces(input));
        if (!onePass) {
            const kept = [];
            for await (const piece of source) {
                conversion.scan(piece);
                // The caller's bytes may change before they are converted.
                kept.push(piece.slice());
            }
            source = kept;
        }
        for await (const piece of source) {
            conversion.write(piece);
            yield;
        }
        conversion.endFile();
        const summary = conversion.finish();
        yield;
        return described(engine, summary);
    } finally {
        conversion.free();
    }
}

/**
 * @param {import("./engine.js").Engine} engine
 * @param {import("./engine.js").Summary} summary
 * @returns {Summary}
 */
function described(engine, { target, entries, changed, lost, notes }) {
    const kinds = new Map(engine.noteKinds().map((kind) => [kind.code, kind]));
    return {
        format: target === format.icalendar ? "ics" : target === format.vcalendar ? "vcs" : undefined,
        entries,
        changed,
        lost,
        notes: notes.map(({ code, count, first }) => {
            const { name, severity, fate, meaning, advice } = /** @type {import("./engine.js").NoteKind} */ (kinds.get(code));
            return {
                code,
                name,
                severity: /** @type {const} */ (["note", "warning", "error"])[severity],
                fate: /** @type {const} */ (["unchanged", "kept elsewhere", "lost"])[fate],
                meaning,
                advice,
                count,
                first: { line: first.line, text: first.text },
            };
        }),
    };
}

/**
 * Converts a calendar in pieces, as they are ready; what the generator returns is the summary.
 * @param {Input} input
 * @param {Options} [options]
 * @returns {AsyncGenerator<Uint8Array, Summary>}
 */
export async function* convertPieces(input, options = {}) {
    const engine = await newEngine();
    const steps = run(engine, input, options, 0);
    try {
        for (;;) {
            const { done, value } = await steps.next();
            const bytes = engine.take(stream.output);
            if (bytes.length > 0) yield bytes;
            if (done) return value;
        }
    } finally {
        await steps.return(/** @type {any} */ (undefined));
    }
}

/**
 * Converts a calendar.
 * @param {Input} input
 * @param {Options} [options]
 * @returns {Promise<Converted>}
 */
export async function convert(input, options = {}) {
    const steps = convertPieces(input, options);
    /** @type {Uint8Array[]} */
    const parts = [];
    for (;;) {
        const { done, value } = await steps.next();
        if (!done) {
            parts.push(value);
            continue;
        }
        const bytes = new Uint8Array(parts.reduce((size, part) => size + part.length, 0));
        let at = 0;
        for (const part of parts) {
            bytes.set(part, at);
            at += part.length;
        }
        return { ...value, calendar: new TextDecoder().decode(bytes), bytes };
    }
}

/**
 * A conversion between two web streams, for `pipeThrough`; `summary` comes with the end.
 * @param {Options} [options]
 * @returns {{writable: WritableStream<Uint8Array | string>, readable: ReadableStream<Uint8Array>, summary: Promise<Summary>}}
 */
export function convertStream(options = {}) {
    const { writable, readable: input } = new TransformStream();
    const reader = input.getReader();
    const steps = convertPieces({ async *[Symbol.asyncIterator]() {
        for (;;) {
            const { done, value } = await reader.read();
            if (done) return;
            yield value;
        }
    } }, options);
    /** @type {(summary: Summary) => void} */
    let resolve;
    /** @type {(problem: unknown) => void} */
    let reject;
    /** @type {Promise<Summary>} */
    const summary = new Promise((...both) => { [resolve, reject] = both; });
    // Who reads the stream meets its failure there.
    summary.catch(() => undefined);
    const readable = new ReadableStream({
        async pull(controller) {
            try {
                const { done, value } = await steps.next();
                if (!done) return controller.enqueue(value);
                controller.close();
                resolve(value);
            } catch (problem) {
                controller.error(problem);
                reject(problem);
            }
        },
        async cancel(reason) {
            reject(reason);
            await reader.cancel(reason);
            await steps.return(/** @type {any} */ (undefined));
        },
    });
    return { writable, readable, summary };
}

/**
 * The entries of a calendar, one after another; `written` shows each in the other format.
 * @param {Input} input
 * @param {Options} [options]
 * @returns {AsyncGenerator<Entry, Summary>}
 */
export async function* entries(input, options = {}) {
    const engine = await newEngine();
    const steps = run(engine, input, options, wanted.entries);
    const lines = (/** @type {number} */ which) => engine.takeText(which).split("\n").filter(Boolean).map((line) => JSON.parse(line));
    try {
        for (;;) {
            const { done, value } = await steps.next();
            engine.call("engine_drop", stream.output);
            engine.call("engine_drop", stream.dates);
            const summaries = lines(stream.entries);
            for (const [i, details] of lines(stream.details).entries()) yield entryOf(summaries[i], details);
            if (done) return value;
        }
    } finally {
        await steps.return(/** @type {any} */ (undefined));
    }
}

/**
 * @param {import("./engine.js").Entry} summary
 * @param {import("./engine.js").Details} details
 * @returns {Entry}
 */
function entryOf({ kind, title, place }, details) {
    const about = details.properties.find(({ name }) => name === "DESCRIPTION")?.values[0] ?? "";
    return {
        kind: kind === 2 ? "to-do" : kind === 3 ? "note" : "event",
        title,
        place,
        about,
        ...details,
        allDay: details.allDay === 1,
        sourceCut: details.sourceCut === 1,
        alarms: details.alarms.map((alarm) => ({ ...alarm, fromEnd: alarm.fromEnd === 1 })),
        notes: details.notes.map(({ code, line, text }) => ({ code, line, text })),
    };
}

/**
 * Recurrence rules of a text, of either format, in words and in both formats.
 * @param {string} text "FREQ=WEEKLY;COUNT=10", "W1 MO #10"
 * @param {{start: string, dates?: number}} options the date or time of the first occurrence,
 *     "2005-06-15" or "20050615T103000", and how many dates are wanted
 * @returns {Promise<(import("./engine.js").Rule & {dates: string[]})[]>}
 */
export async function rule(text, { start, dates = 0 }) {
    return (await newEngine()).rule(text, start, dates);
}

/** The library's version. */
export async function version() {
    return (await newEngine()).version();
}
