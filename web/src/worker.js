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
 * @typedef {{files: NamedFile[], target: number, choices: Choices, horizon: string, output: string}} Job
 * @typedef {{blobs: Blob[], blob: number[], start: number[], size: number[]}} Places
 * @typedef {object} Converted
 * @property {import("./engine.js").Summary} summary
 * @property {import("./engine.js").Entry[]} entries
 * @property {Int32Array} dates
 * @property {Places} details
 * @property {Blob} output
 * @property {Blob} report
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
 * All files into one calendar.
 * @param {Engine} engine
 * @param {Job} job
 * @param {(done: number) => void} progress
 * @returns {Promise<Converted>}
 */
export async function convertFiles(engine, job, progress) {
    const conversion = new Conversion(engine, { ...job, more: wanted.entries + wanted.report });
    const output = new Collector();
    const report = new Collector();
    const details = new Lines();
    /** @type {import("./engine.js").Entry[]} */
    const entries = [];
    /** @type {Uint8Array<ArrayBuffer>[]} */
    const dates = [];
    const takeAll = () => {
        output.add(engine.take(stream.output));
        report.add(engine.take(stream.report));
        details.add(engine.take(stream.details));
        dates.push(engine.take(stream.dates));
        for (const line of engine.takeText(stream.entries).split("\n")) if (line !== "") entries.push(JSON.parse(line));
    };
    const entriesOfFile = [];
    let done = 0;
    let known = 0;
    try {
        for (const { name, data } of job.files) {
            conversion.beginFile(name);
            await eachPiece(data, (piece) => conversion.scan(piece));
            await eachPiece(data, (piece) => {
                conversion.write(piece);
                takeAll();
                done += piece.length;
                progress(done);
            });
            const count = conversion.endFile();
            takeAll();
            entriesOfFile.push(count - known);
            known = count;
        }
        const summary = conversion.finish(job.output);
        takeAll();
        details.collector.seal();
        return {
            summary,
            entries,
            dates: new Int32Array(await new Blob(dates).arrayBuffer()),
            details: details.places,
            output: output.whole(summary.target === format.vcalendar ? "text/x-vcalendar" : "text/calendar"),
            report: report.whole("text/html", engine.take(stream.head)),
            entriesOfFile,
        };
    } finally {
        conversion.free();
    }
}

/**
 * Each file as a calendar of its own.
 * @param {Engine} engine
 * @param {Job} job
 * @param {(done: number) => void} progress
 */
export async function convertEach(engine, job, progress) {
    const results = [];
    let done = 0;
    for (const { name, data } of job.files) {
        const conversion = new Conversion(engine, job);
        try {
            const output = new Collector();
            conversion.beginFile(name);
            await eachPiece(data, (piece) => conversion.scan(piece));
            await eachPiece(data, (piece) => {
                conversion.write(piece);
                output.add(engine.take(stream.output));
                done += piece.length;
                progress(done);
            });
            const entries = conversion.endFile();
            conversion.finish();
            output.add(engine.take(stream.output));
            if (entries > 0) results.push({ name, data: output.whole() });
        } finally {
            conversion.free();
        }
    }
    return results;
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
    const say = (/** @type {number} */ done) => self.postMessage({ id: message.id, done });
    engineComes ??= loadEngine(message.module);
    const engine = await engineComes;
    if (message.task === "load") return { kinds: engine.noteKinds(), version: engine.version() };
    if (message.task === "recognise") return recognise(engine, message.files);
    if (message.task === "pieces") return inPieces(message.calendar, message.name);
    if (message.task === "texts") return engine.texts(message.calendar, message.charset);
    return (message.task === "each" ? convertEach : convertFiles)(engine, message.job, say);
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
