/** ZIP archives: read with bounds, written with what the browser compresses itself. */

/** Limits that no archive of calendars comes near, against one that is made to fill the memory. */
const mostFiles = 20000;
const mostBytes = 1 << 30;

/** @typedef {{name: string, data: Blob}} NamedFile */

/** @param {Blob} blob */
export async function isZip(blob) {
    const head = new Uint8Array(await blob.slice(0, 4).arrayBuffer());
    return head[0] === 0x50 && head[1] === 0x4b && head[2] === 3 && head[3] === 4;
}

/**
 * The files of an archive. Throws an Error with the name of a text ("zipDamaged", "zipEncrypted",
 * "zipTooLarge") when it cannot be read.
 * @param {Blob} archive
 * @returns {Promise<NamedFile[]>}
 */
export async function readZip(archive) {
    const directory = await findDirectory(archive);
    const view = new DataView(await archive.slice(directory.offset, directory.offset + directory.size).arrayBuffer());
    const files = [];
    let total = 0;
    for (let at = 0, i = 0; i < directory.count; ++i) {
        if (at + 46 > view.byteLength || view.getUint32(at, true) !== 0x02014b50) throw new Error("zipDamaged");
        const flags = view.getUint16(at + 8, true);
        const method = view.getUint16(at + 10, true);
        const packed = view.getUint32(at + 20, true);
        const nameLength = view.getUint16(at + 28, true);
        const next = at + 46 + nameLength + view.getUint16(at + 30, true) + view.getUint16(at + 32, true);
        if (next > view.byteLength) throw new Error("zipDamaged");
        const name = fileName(new Uint8Array(view.buffer, at + 46, nameLength));
        const offset = view.getUint32(at + 42, true);
        at = next;
        if (name.endsWith("/")) continue;
        if (flags & 1) throw new Error("zipEncrypted");
        const data = await unpack(archive, offset, packed, method, mostBytes - total);
        total += data.size;
        files.push({ name, data });
    }
    return files;
}

/** @param {Uint8Array} bytes */
function fileName(bytes) {
    try {
        return new TextDecoder("utf-8", { fatal: true }).decode(bytes);
    } catch {
        return new TextDecoder("windows-1252").decode(bytes);
    }
}

/** @param {Blob} archive */
async function findDirectory(archive) {
    const view = new DataView(await archive.slice(Math.max(0, archive.size - 65557)).arrayBuffer());
    for (let at = view.byteLength - 22; at >= 0; --at) {
        if (view.getUint32(at, true) !== 0x06054b50) continue;
        const count = view.getUint16(at + 10, true);
        const offset = view.getUint32(at + 16, true);
        if (count > mostFiles || offset === 0xffffffff) throw new Error("zipTooLarge");
        return { count, offset, size: view.getUint32(at + 12, true) };
    }
    throw new Error("zipDamaged");
}

/**
 * @param {Blob} archive
 * @param {number} offset
 * @param {number} packed
 * @param {number} method
 * @param {number} most
 */
async function unpack(archive, offset, packed, method, most) {
    const head = new DataView(await archive.slice(offset, offset + 30).arrayBuffer());
    if (head.byteLength < 30 || head.getUint32(0, true) !== 0x04034b50) throw new Error("zipDamaged");
    const start = offset + 30 + head.getUint16(26, true) + head.getUint16(28, true);
    const bytes = archive.slice(start, start + packed);
    if (method === 0) return bytes;
    if (method !== 8) throw new Error("zipDamaged");
    const reader = bytes.stream().pipeThrough(new DecompressionStream("deflate-raw")).getReader();
    const parts = [];
    let size = 0;
    for (;;) {
        const { done, value } = await reader.read().catch(() => {
            throw new Error("zipDamaged");
        });
        if (done) break;
        size += value.length;
        if (size > most) throw new Error("zipTooLarge");
        parts.push(value);
    }
    return new Blob(parts);
}

const crcTable = Uint32Array.from({ length: 256 }, (_, byte) => {
    let c = byte;
    for (let bit = 0; bit < 8; ++bit) c = c & 1 ? 0xedb88320 ^ (c >>> 1) : c >>> 1;
    return c;
});

/** @param {Uint8Array} bytes */
function crc32(bytes) {
    let crc = 0xffffffff;
    for (const byte of bytes) crc = crcTable[(crc ^ byte) & 255] ^ (crc >>> 8);
    return (crc ^ 0xffffffff) >>> 0;
}

/**
 * An archive of the files, which all fit into memory. The same files give the same archive.
 * @param {NamedFile[]} files
 */
export async function writeZip(files) {
    /** @type {BlobPart[]} */
    const parts = [];
    /** @type {BlobPart[]} */
    const directory = [];
    let offset = 0;
    for (const { name, data } of files) {
        const bytes = new Uint8Array(await data.arrayBuffer());
        const packing = data.stream().pipeThrough(new CompressionStream("deflate-raw"));
        const packed = await new Response(packing).arrayBuffer();
        const encoded = new TextEncoder().encode(name);
        const common = new DataView(new ArrayBuffer(26));
        common.setUint16(0, 20, true);
        common.setUint16(2, 0x0800, true); // the name is UTF-8
        common.setUint16(4, 8, true);
        common.setUint16(8, 0x21, true); // 1 January 1980
        common.setUint32(10, crc32(bytes), true);
        common.setUint32(14, packed.byteLength, true);
        common.setUint32(18, bytes.length, true);
        common.setUint16(22, encoded.length, true);
        parts.push(Uint8Array.of(0x50, 0x4b, 3, 4), common.buffer, encoded, packed);
        const tail = new DataView(new ArrayBuffer(14));
        tail.setUint32(10, offset, true);
        directory.push(Uint8Array.of(0x50, 0x4b, 1, 2, 20, 0), common.buffer, tail.buffer, encoded);
        offset += 30 + encoded.length + packed.byteLength;
    }
    const listing = new Blob(directory);
    const end = new DataView(new ArrayBuffer(22));
    end.setUint32(0, 0x06054b50, true);
    end.setUint16(8, files.length, true);
    end.setUint16(10, files.length, true);
    end.setUint32(12, listing.size, true);
    end.setUint32(16, offset, true);
    return new Blob([...parts, listing, end.buffer], { type: "application/zip" });
}
