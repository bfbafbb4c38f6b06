/**
 * The calendar library's WebAssembly, in JavaScript's words. The same for pages and for node.
 */

/** What the engine collects; the numbers are those of web/engine/Engine.cpp. */
export const stream = { output: 0, entries: 1, details: 2, dates: 3, report: 4, head: 5, answer: 6 };

/** The library's numbers for formats and choices (qelcalendar.h). */
export const format = { other: 0, icalendar: 1, vcalendar: 2 };
export const choiceNumber = { zone: 1, charset: 2, countMeans: 3, distinctUids: 4 };

/** What a file seems to be. */
export const fileKind = { text: 0, calendar: 1, contact: 2, empty: 3, zip: 4, html: 5, xml: 6, utf16: 7, binary: 8 };
/** What a conversion yields besides the calendar; the numbers may be added. */
export const wanted = { entries: 1, report: 2 };

/** @typedef {Partial<Record<keyof typeof choiceNumber, string>>} Choices */

/** The system's "no such function", for what a page does not have: files and processes. */
const noSystemCall = 52;

/** @param {WebAssembly.Module} module */
export async function loadEngine(module) {
    /** @type {Engine | undefined} */
    let engine;
    const view = () => new DataView(/** @type {Engine} */ (engine).memory.buffer);
    /** @type {Record<string, Record<string, Function>>} */
    const imports = {};
    for (const { module: from, name } of WebAssembly.Module.imports(module)) {
        imports[from] ??= {};
        imports[from][name] = () => noSystemCall;
    }
    Object.assign(imports.env, { emscripten_notify_memory_growth: () => undefined });
    Object.assign(imports.wasi_snapshot_preview1, {
        proc_exit: () => {
            throw new Error("the engine has stopped");
        },
        environ_sizes_get: (/** @type {number} */ count, /** @type {number} */ size) => {
            view().setUint32(count, 0, true);
            view().setUint32(size, 0, true);
            return 0;
        },
        clock_time_get: (/** @type {number} */ _clock, /** @type {bigint} */ _precision, /** @type {number} */ time) => {
            view().setBigUint64(time, BigInt(Date.now()) * 1000000n, true);
            return 0;
        },
    });
    const instance = await WebAssembly.instantiate(module, /** @type {WebAssembly.Imports} */ (imports));
    engine = new Engine(instance);
    engine.call("_initialize");
    return engine;
}

export class Engine {
    /** @param {WebAssembly.Instance} instance */
    constructor(instance) {
        this.functions = /** @type {Record<string, (...values: number[]) => number>} */ (
            /** @type {unknown} */ (instance.exports)
        );
        this.memory = /** @type {WebAssembly.Memory} */ (instance.exports.memory);
        this.room = 0;
        this.roomSize = 0;
    }

    /**
     * @param {string} name
     * @param {number[]} values
     */
    call(name, ...values) {
        return this.functions[name](...values);
    }

    /** The bytes of a stream, which is empty then. @param {number} which */
    take(which) {
        const start = this.call("engine_bytes", which) >>> 0;
        const bytes = new Uint8Array(this.memory.buffer, start, this.call("engine_size", which) >>> 0).slice();
        this.call("engine_drop", which);
        return /** @type {Uint8Array<ArrayBuffer>} */ (bytes);
    }

    /** @param {number} which */
    takeText(which) {
        return new TextDecoder().decode(this.take(which));
    }

    /** Copies bytes to where the engine can read them until the next call. @param {Uint8Array} bytes */
    put(bytes) {
        if (bytes.length > this.roomSize) {
            this.call("engine_free", this.room);
            this.roomSize = Math.max(bytes.length, 1 << 16);
            this.room = this.call("engine_allocate", this.roomSize) >>> 0;
            if (this.room === 0) throw new Error("memory is exhausted");
        }
        new Uint8Array(this.memory.buffer).set(bytes, this.room);
        return this.room;
    }

    /**
     * Runs `use` with the addresses of texts.
     * @template Result
     * @param {string[]} texts
     * @param {(...addresses: number[]) => Result} use
     */
    withTexts(texts, use) {
        const addresses = texts.map((text) => {
            const bytes = new TextEncoder().encode(text + "\0");
            const address = this.call("engine_allocate", bytes.length) >>> 0;
            if (address === 0) throw new Error("memory is exhausted");
            new Uint8Array(this.memory.buffer).set(bytes, address);
            return address;
        });
        try {
            return use(...addresses);
        } finally {
            for (const address of addresses) this.call("engine_free", address);
        }
    }

    /** Throws the library's own reason for a failure. @param {number} result */
    check(result) {
        if (result !== 0) throw new Error(this.takeText(stream.answer) || `result ${result}`);
    }

    /** The library's version. */
    version() {
        const bytes = new Uint8Array(this.memory.buffer, this.call("engine_version") >>> 0, 32);
        return new TextDecoder().decode(bytes.slice(0, bytes.indexOf(0)));
    }

    /** Every kind of note. @returns {NoteKind[]} */
    noteKinds() {
        this.call("engine_kinds");
        return JSON.parse(this.takeText(stream.answer));
    }

    /**
     * A rule in words and in both formats, with its first dates.
     * @param {string} text
     * @param {string} start a date or a time, "2005-06-15"
     * @param {number} most dates
     * @returns {(Rule & {dates: string[]})[]}
     */
    rule(text, start, most) {
        this.check(this.withTexts([text, start], (a, b) => this.call("engine_rule", a, b, most)));
        return JSON.parse(this.takeText(stream.answer));
    }

    /** What a file seems to be, a fileKind. @param {Uint8Array} head its first bytes */
    recognise(head) {
        return this.call("engine_recognise", this.put(head), head.length);
    }

    /**
     * The texts of a small calendar's entries, read with a character set.
     * @param {Uint8Array} calendar
     * @param {string} charset
     * @returns {string[]}
     */
    texts(calendar, charset) {
        const bytes = this.put(calendar);
        this.check(this.withTexts([charset], (name) => this.call("engine_texts", bytes, calendar.length, name)));
        return JSON.parse(this.takeText(stream.answer));
    }
}

/** A conversion of any number of files into one calendar. */
export class Conversion {
    /**
     * @param {Engine} engine
     * @param {{target?: number, choices?: Choices, horizon?: string, more?: number}} options
     */
    constructor(engine, { target = format.other, choices = {}, horizon = "", more = 0 } = {}) {
        this.engine = engine;
        for (const each of Object.values(stream)) engine.call("engine_drop", each);
        this.handle = engine.withTexts([horizon], (text) =>
            engine.call("engine_begin", target, text, more),
        );
        try {
            for (const name of /** @type {(keyof Choices)[]} */ (Object.keys(choices))) this.choose(choiceNumber[name], choices[name]);
        } catch (problem) {
            this.free();
            throw problem;
        }
    }

    /** @param {number} choice @param {string} [value] */
    choose(choice, value) {
        const choose = (/** @type {number} */ text) => this.engine.call("engine_choose", this.handle, choice, text);
        if (value) this.engine.check(this.engine.withTexts([value], choose));
    }

    /** @param {string} name */
    beginFile(name) {
        const begin = (/** @type {number} */ text) => this.engine.call("engine_begin_file", this.handle, text);
        this.engine.check(this.engine.withTexts([name], begin));
    }

    /** @param {Uint8Array} piece */
    scan(piece) {
        this.engine.check(this.engine.call("engine_scan", this.handle, this.engine.put(piece), piece.length));
    }

    /** @param {Uint8Array} piece */
    write(piece) {
        this.engine.check(this.engine.call("engine_write", this.handle, this.engine.put(piece), piece.length));
    }

    /** Ends the file; the number of entries so far. */
    endFile() {
        this.engine.check(this.engine.call("engine_end_file", this.handle));
        return Number(this.engine.takeText(stream.answer));
    }

    /** @param {string} [output] the result's name, for the report @returns {Summary} */
    finish(output = "") {
        const finish = (/** @type {number} */ text) => this.engine.call("engine_finish", this.handle, text);
        this.engine.check(this.engine.withTexts([output], finish));
        return JSON.parse(this.engine.takeText(stream.answer));
    }

    free() {
        this.engine.call("engine_end", this.handle);
        this.handle = 0;
    }
}

/**
 * @typedef {object} NoteKind
 * @property {number} code
 * @property {number} severity 0 note, 1 warning, 2 error
 * @property {number} fate 0 unchanged, 1 kept elsewhere, 2 lost
 * @property {string} name
 * @property {string} meaning
 * @property {string} advice
 *
 * @typedef {{code: number, line: number, file: string, text: string}} Note
 * @typedef {{words: string, icalendar: string[], vcalendar: string[]}} Rule
 *
 * @typedef {object} Summary
 * @property {number} target a format
 * @property {number} calendars
 * @property {number} entries
 * @property {number} alarms
 * @property {number} changed
 * @property {number} errors
 * @property {number} lost
 * @property {number} seriesCut series of which not all dates are listed
 * @property {{code: number, count: number, first: Note}[]} notes
 *
 * @typedef {object} Entry what a list shows
 * @property {number} kind 1 event, 2 to-do, 3 note
 * @property {number} file
 * @property {string} uid
 * @property {string} title
 * @property {string} place
 * @property {string} [about]
 * @property {number} [minute] of the start, since 1900 on its own clock
 * @property {number} [length] in minutes
 * @property {number} [clock] 0 local, 1 UTC, 2 of a zone
 * @property {number} [day] 1 for an all-day entry
 * @property {string} [zone]
 * @property {number} [dates] how many dates of the series are listed
 * @property {string} [words] the rule in words
 * @property {number} alarms
 * @property {number[]} notes codes
 *
 * @typedef {object} Details everything of an entry
 * @property {number} line
 * @property {string} uid
 * @property {number} allDay
 * @property {string} [start]
 * @property {string} [end]
 * @property {string} [due]
 * @property {string} [completed]
 * @property {string} [duration]
 * @property {string} [zone]
 * @property {{name: string, values: string[]}[]} properties
 * @property {Rule[]} rules
 * @property {{time?: string, minutes?: number, fromEnd: number, text: string}[]} alarms
 * @property {Note[]} notes
 * @property {string} source
 * @property {number} sourceCut
 * @property {string} written
 */
