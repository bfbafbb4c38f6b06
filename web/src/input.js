/** What a person gives the page: files, folders, archives and text, as a list of calendar files. */
import { fileKind } from "./engine.js";
import { text } from "./texts.js";
import { isZip, readZip } from "./zip.js";

/**
 * @typedef {import("./zip.js").NamedFile} NamedFile
 * @typedef {{name: import("./texts.js").TextName, file: string}} Refusal
 */

/** Why files of a kind are left out. @type {Record<number, import("./texts.js").TextName>} */
const refusals = {
    [fileKind.contact]: "addressBook", [fileKind.empty]: "emptyFile", [fileKind.zip]: "zipInside",
    [fileKind.html]: "webPage", [fileKind.utf16]: "unmarkedUtf16",
};
/** Folders have no more files than that; what is dropped by mistake may. */
const mostFiles = 20000;

/** What went wrong, in words for the person. */
export class Reason extends Error {}

/** @param {DataTransfer} transfer @returns {Promise<NamedFile[]>} */
export async function droppedFiles(transfer) {
    // All that the transfer has is asked for at once: it is empty after the event.
    const roots = [...transfer.items].filter((item) => item.kind === "file").map((item) => ({
        file: item.getAsFile(),
        entry: item.webkitGetAsEntry(),
        handle: /** @type {any} */ (item).getAsFileSystemHandle?.(),
    }));
    /** @type {NamedFile[]} */
    const files = [];
    for (const { file, entry, handle } of roots)
        if (!entry?.isDirectory) {
            if (file !== null) add(files, file.name, file);
        } else if (handle !== undefined) await walkHandle(await handle, entry.name, files);
        else await walk(entry, files);
    return files;
}

/** @param {NamedFile[]} files @param {string} name @param {File} data */
function add(files, name, data) {
    if (files.length >= mostFiles) throw new Reason(text("tooManyFiles", mostFiles));
    files.push({ name, data });
}

/**
 * A folder in the way that Chromium wants for pages from a disk; other browsers do not know it.
 * @param {any} folder a FileSystemDirectoryHandle
 * @param {string} path
 * @param {NamedFile[]} files
 */
async function walkHandle(folder, path, files) {
    for await (const each of folder.values()) {
        const name = `${path}/${each.name}`;
        if (each.kind === "directory") await walkHandle(each, name, files);
        else add(files, name, await each.getFile());
    }
}

/** @param {FileSystemEntry} entry @param {NamedFile[]} files */
async function walk(entry, files) {
    if (entry.isFile) {
        const file = await new Promise((resolve, reject) => /** @type {FileSystemFileEntry} */ (entry).file(resolve, reject));
        return add(files, entry.fullPath.replace(/^\//, ""), file);
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
 * @param {(files: NamedFile[]) => Promise<number[]>} kindsOf a fileKind for each
 */
export async function calendarsAmong(given, kindsOf) {
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
    files.sort((a, b) => (a.name < b.name ? -1 : 1));
    const kinds = await kindsOf(files);
    const calendars = files.filter((_, i) => kinds[i] === fileKind.calendar);
    files.forEach(({ name }, i) => {
        if (kinds[i] !== fileKind.calendar) refused.push({ name: refusals[kinds[i]] ?? "notCalendar", file: name });
    });
    return { calendars, refused };
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
