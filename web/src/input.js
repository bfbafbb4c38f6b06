/** What a person gives the page: files, folders, archives and text, as a list of calendar files. */
import { isZip, readZip } from "./zip.js";

/**
 * @typedef {import("./zip.js").NamedFile} NamedFile
 * @typedef {{name: import("./texts.js").TextName, file: string}} Refusal
 */

/** The first bytes of a file, in which a calendar or an address book says what it is. */
const headSize = 1 << 16;
/** Folders have no more files than that; what is dropped by mistake may. */
const mostFiles = 20000;

/** @param {DataTransfer} transfer @returns {Promise<NamedFile[]>} */
export async function droppedFiles(transfer) {
    const items = [...transfer.items].filter((item) => item.kind === "file");
    const roots = items.map((item) => item.webkitGetAsEntry());
    if (roots.every((root) => root === null || root.isFile))
        return [...transfer.files].map((file) => ({ name: file.name, data: file }));
    /** @type {NamedFile[]} */
    const files = [];
    for (const root of roots) if (root !== null) await walk(root, files);
    return files;
}

/** @param {FileSystemEntry} entry @param {NamedFile[]} files */
async function walk(entry, files) {
    if (files.length >= mostFiles) return;
    if (entry.isFile) {
        const file = await new Promise((resolve, reject) => /** @type {FileSystemFileEntry} */ (entry).file(resolve, reject));
        files.push({ name: entry.fullPath.replace(/^\//, ""), data: file });
        return;
    }
    const reader = /** @type {FileSystemDirectoryEntry} */ (entry).createReader();
    for (;;) {
        /** @type {FileSystemEntry[]} */
        const some = await new Promise((resolve, reject) => reader.readEntries(resolve, reject));
        if (some.length === 0) return;
        for (const each of some) await walk(each, files);
    }
}

/** @param {FileList} list @returns {NamedFile[]} */
export const chosenFiles = (list) => [...list].map((file) => ({ name: file.webkitRelativePath || file.name, data: file }));

/**
 * The calendars among the files, with archives unpacked, and why the others are none.
 * @param {NamedFile[]} given
 */
export async function calendarsAmong(given) {
    /** @type {NamedFile[]} */
    const files = [];
    /** @type {Refusal[]} */
    const refused = [];
    for (const file of given) {
        if (!(await isZip(file.data))) {
            files.push(file);
            continue;
        }
        try {
            files.push(...(await readZip(file.data)));
        } catch (problem) {
            const known = /** @type {const} */ (["zipEncrypted", "zipTooLarge"]);
            const name = known.find((each) => problem instanceof Error && problem.message === each);
            refused.push({ name: name ?? "zipDamaged", file: file.name });
        }
    }
    const calendars = [];
    for (const file of files.sort((a, b) => (a.name < b.name ? -1 : 1))) {
        const reason = await whyNot(file.data);
        if (reason === undefined) calendars.push(file);
        else refused.push({ name: reason, file: file.name });
    }
    return { calendars, refused };
}

/** @param {Blob} data @returns {Promise<import("./texts.js").TextName | undefined>} */
async function whyNot(data) {
    if (data.size === 0) return "emptyFile";
    const bytes = new Uint8Array(await data.slice(0, headSize).arrayBuffer());
    // Of UTF-16 and UTF-32 every other byte is 0.
    const head = new TextDecoder("latin1").decode(bytes).replaceAll("\0", "").toUpperCase();
    if (/BEGIN\s*:\s*(VCALENDAR|VEVENT|VTODO|VJOURNAL|VNOTE)/.test(head)) return undefined;
    return /BEGIN\s*:\s*VCARD/.test(head) ? "addressBook" : "notCalendar";
}

/**
 * A small calendar of entries with letters that say little of their character set, as raw bytes; for
 * the preview of character sets.
 * @param {NamedFile[]} files
 */
export async function unclearEntries(files) {
    const found = [];
    for (const { data } of files.slice(0, 200)) {
        const bytes = new Uint8Array(await data.slice(0, 1 << 21).arrayBuffer());
        // Each byte as one character, and back below: latin1 as browsers know it would change some.
        const raw = Array.from({ length: Math.ceil(bytes.length / 8192) }, (_, i) =>
            String.fromCharCode(...bytes.subarray(i * 8192, (i + 1) * 8192))).join("");
        for (const [entry] of raw.matchAll(/BEGIN:(VEVENT|VTODO|VJOURNAL|VNOTE)\r?\n[^]*?END:\1\r?\n/g)) {
            const unclear = /[\x80-\xff]/.test(entry) || (/=[89A-F][0-9A-F]/.test(entry) && !/CHARSET/i.test(entry));
            if (unclear && entry.length < 20000) found.push(entry);
            if (found.length === 12) break;
        }
        if (found.length === 12) break;
    }
    if (found.length === 0) return undefined;
    const calendar = `BEGIN:VCALENDAR\r\nVERSION:1.0\r\n${found.join("")}END:VCALENDAR\r\n`;
    return Uint8Array.from(calendar, (character) => character.charCodeAt(0));
}
