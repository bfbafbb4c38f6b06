/**
 * What runs beside the page: conversions, and the preview of character sets. Results leave as Blobs,
 * which the browser keeps, on disk where they are large; so memory holds no more than what a list
 * shows of the entries.
 */
import { Conversion, format, loadEngine, stream, wanted } from "./engine.js";
import { inPieces } from "./pieces.js";

/** The first bytes of a file, which show what it is. */
const headSize = 1 << 16;
/** Bytes that the engine is given at once, and those that one Blob collects. */
const pieceSize = 1 << 18;
const blobSize = 1 << 22;

/**
 * @typedef {import("./engine.js").Choices} Choices
 * @typedef {import("./engine.js").Engine} Engine
 * @typedef {import("./zip.js").NamedFile} NamedFile
 * @typedef {{files: NamedFile[], target: number, choices: Choices, horizon?: string, output?: string}} Job
 * @typedef {{blobs: Blob[], blob: number[], start: number[], size: number[]}} Places
 * @typedef {object} Converted
 * @property {import("./engine.js").Summary} summary
 * @property {Int32Array} dates
 * @property {Places} details
 * @property {Blob} output
 * @property {number[]} entriesOfFile
 */

/** Collects bytes in Blobs. */
class Collector {
    constructor() {
        /** @type {Blob[]} */
        this.blobs = [];
        /** @type {BlobPart[]} */
        this.parts = [];
        this.size = 0;
    }

    /** @param {Uint8Array<ArrayBuffer>} bytes */
    add(bytes) {
        if (bytes.length === 0) return;
        this.parts.push(bytes);
        this.size += bytes.length;
        if (this.size > blobSize) this.seal();
    }

    seal() {
        if (this.size > 0) this.blobs.push(new Blob(this.parts));
        this.parts = [];
        this.size = 0;
    }

    /** All of it. @param {string} type @param {BlobPart} before */
    whole(type = "", before = "") {
        this.seal();
        return new Blob([before, ...this.blobs], { type });
    }
}

/** Where each line of what a collector has can be found. */
class Lines {
    constructor() {
        this.collector = new Collector();
        /** @type {Places} */
        this.places = { blobs: this.collector.blobs, blob: [], start: [], size: [] };
    }

    /** @param {Uint8Array<ArrayBuffer>} bytes whole lines */
    add(bytes) {
        for (let start = 0; start < bytes.length; ) {
            const end = bytes.indexOf(10, start) + 1;
            this.places.blob.push(this.collector.blobs.length);
            this.places.start.push(this.collector.size + start);
            this.places.size.push(end - start);
            start = end;
        }
        this.collector.add(bytes);
    }
}

/**
 * @param {Blob} data
 * @param {(piece: Uint8Array) => void} use
 */
async function eachPiece(data, use) {
    for (let at = 0; at < data.size; at += 16 * pieceSize) {
        const bytes = new Uint8Array(await data.slice(at, at + 16 * pieceSize).arrayBuffer());
        for (let start = 0; start < bytes.length; start += pieceSize) use(bytes.subarray(start, start + pieceSize));
    }
}

/**
 * All files into one calendar. The entries leave as they come, a line of JSON each.
 * @param {Engine} engine
 * @param {Job} job
 * @param {(done: number, entries: string) => void} progress
 * @returns {Promise<Converted>}
 */
async function convertFiles(engine, job, progress) {
    const conversion = new Conversion(engine, { ...job, more: wanted.entries });
    const output = new Collector();
    const details = new Lines();
    /** @type {Uint8Array<ArrayBuffer>[]} */
    const dates = [];
    let done = 0;
    const takeAll = () => {
        output.add(engine.take(stream.output));
        details.add(engine.take(stream.details));
        dates.push(engine.take(stream.dates));
        progress(done, engine.takeText(stream.entries));
    };
    const entriesOfFile = [];
    let known = 0;
    try {
        for (const file of job.files) {
            const count = await convertFile(conversion, file, (size) => {
                done += size;
                takeAll();
            });
            takeAll();
            entriesOfFile.push(count - known);
            known = count;
        }
        const summary = conversion.finish();
        takeAll();
        details.collector.seal();
        return {
            summary,
            dates: new Int32Array(await new Blob(dates).arrayBuffer()),
            details: details.places,
            output: output.whole(summary.target === format.vcalendar ? "text/x-vcalendar" : "text/calendar"),
            entriesOfFile,
        };
    } finally {
        conversion.free();
    }
}

/**
 * One file of a job, and what the conversion yields after each piece of it.
 * @param {Conversion} conversion
 * @param {NamedFile} file
 * @param {(size: number) => void} taken
 */
async function convertFile(conversion, { name, data }, taken) {
    conversion.beginFile(name);
    await eachPiece(data, (piece) => conversion.scan(piece));
    await eachPiece(data, (piece) => {
        conversion.write(piece);
        taken(piece.length);
    });
    return conversion.endFile();
}

/**
 * Each file as a calendar of its own.
 * @param {Engine} engine
 * @param {Job} job
 * @param {(done: number) => void} progress
 */
async function convertEach(engine, job, progress) {
    const results = [];
    let done = 0;
    for (const file of job.files) {
        const conversion = new Conversion(engine, job);
        try {
            const output = new Collector();
            const entries = await convertFile(conversion, file, (size) => {
                output.add(engine.take(stream.output));
                progress((done += size));
            });
            conversion.finish();
            output.add(engine.take(stream.output));
            if (entries > 0) results.push({ name: file.name, data: output.whole() });
        } finally {
            conversion.free();
        }
    }
    return results;
}

/**
 * The report, which costs more than the conversion and is made when it is wanted.
 * @param {Engine} engine
 * @param {Job} job
 * @param {(done: number) => void} progress
 */
async function reportOf(engine, job, progress) {
    const conversion = new Conversion(engine, { ...job, more: wanted.report });
    try {
        const report = new Collector();
        let done = 0;
        const take = (/** @type {number} */ size) => {
            engine.call("engine_drop", stream.output);
            report.add(engine.take(stream.report));
            progress((done += size));
        };
        for (const file of job.files) await convertFile(conversion, file, take);
        conversion.finish(job.output);
        take(0);
        return report.whole("text/html", engine.take(stream.head));
    } finally {
        conversion.free();
    }
}

/**
 * What each file seems to be.
 * @param {Engine} engine
 * @param {NamedFile[]} files
 */
async function recognise(engine, files) {
    const kinds = [];
    for (const { data } of files) kinds.push(engine.recognise(new Uint8Array(await data.slice(0, headSize).arrayBuffer())));
    return kinds;
}

/** @type {Promise<Engine> | undefined} */
let engineComes;

/** @param {{id: number, task: string, [more: string]: any}} message */
async function perform(message) {
    const say = (/** @type {number} */ done, entries = "") => self.postMessage({ id: message.id, done, entries });
    engineComes ??= loadEngine(message.module);
    const engine = await engineComes;
    if (message.task === "load") return { kinds: engine.noteKinds(), version: engine.version() };
    if (message.task === "recognise") return recognise(engine, message.files);
    if (message.task === "pieces") return inPieces(message.calendar, message.name);
    if (message.task === "texts") return engine.texts(message.calendar, message.charset);
    if (message.task === "report") return reportOf(engine, message.job, say);
    if (message.task === "each") return convertEach(engine, message.job, say);
    return convertFiles(engine, message.job, say);
}

/** The engine has one conversion at a time: tasks wait for those before them. @type {Promise<void>} */
let before = Promise.resolve();

if (typeof self !== "undefined")
    self.onmessage = ({ data }) => {
        before = before
            .then(() => perform(data))
            .then(
                (result) => self.postMessage({ id: data.id, result }),
                (problem) => self.postMessage({ id: data.id, problem: String(problem?.message ?? problem) }),
            );
    };
