// The packed package as its users meet it: installed from the tarball into a folder of its own.
import assert from "node:assert/strict";
import { execFileSync, spawnSync } from "node:child_process";
import { createReadStream, existsSync, mkdtempSync, readdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { dirname, join } from "node:path";
import { after, before, test } from "node:test";
import { fileURLToPath, pathToFileURL } from "node:url";

const root = join(dirname(fileURLToPath(import.meta.url)), "../..");
const built = join(root, "build/npm");
const work = mkdtempSync(join(tmpdir(), "qel-npm-"));
const installed = join(work, "node_modules/qelcalendar");
const phone = join(root, "examples/phone.vcs");
const native = (...options) =>
    spawnSync(join(root, "build/release/bin/qelutil"), ["convert", ...options], { maxBuffer: 1 << 28 }).stdout;

let qelcalendar;

before(async () => {
    const [tarball] = readdirSync(built).filter((name) => name.endsWith(".tgz"));
    writeFileSync(join(work, "package.json"), "{}");
    execFileSync("npm", ["install", "--offline", "--no-audit", "--no-fund", join(built, tarball)], { cwd: work, stdio: "pipe" });
    qelcalendar = await import(pathToFileURL(join(installed, "index.js")).href);
});

after(() => rmSync(work, { recursive: true }));

test("converts to the native program's bytes, in both directions, by a string, bytes and streams", async () => {
    const { convert, convertPieces, convertStream } = qelcalendar;
    const golden = join(root, "tests/calendar/golden");
    for (const name of readdirSync(golden)) {
        const path = join(golden, name);
        const { bytes } = await convert(readFileSync(path), { to: name.endsWith(".ics") ? "vcs" : "ics" });
        assert.deepEqual(Buffer.from(bytes).toString(), native("--to", name.endsWith(".ics") ? "vcs" : "ics", path).toString(), name);
    }
    const expected = native("--to", "ics", phone).toString();
    assert.equal((await convert(readFileSync(phone, "utf8"))).calendar, expected);
    const joined = async (parts) => {
        const all = [];
        for await (const part of parts) all.push(part);
        return Buffer.concat(all).toString();
    };
    assert.equal(await joined(convertPieces(createReadStream(phone, { highWaterMark: 7 }), { to: "ics" })), expected);
    const { writable, readable, summary } = convertStream({ onePass: true });
    assert.equal(await joined(new Blob([readFileSync(phone)]).stream().pipeThrough({ writable, readable })), expected);
    assert.equal((await summary).format, "ics");
});

test("reads entries and rules", async () => {
    const { entries, rule, version } = qelcalendar;
    const all = [];
    for await (const entry of entries(createReadStream(phone))) all.push(entry);
    const [meeting] = all;
    assert.equal(all.length, readFileSync(phone, "latin1").match(/^BEGIN:V(EVENT|TODO)/gm).length);
    assert.equal(meeting.title, "Team meeting");
    assert.equal(meeting.place, "Café Zürich");
    assert.equal(meeting.kind, "event");
    assert.match(meeting.rules[0].words, /^every 2 weeks on Monday, Wednesday and Friday, 10 times$/);
    assert.match(meeting.source, /^BEGIN:VEVENT/);
    assert.match(meeting.written, /FREQ=WEEKLY;COUNT=10/);
    assert.equal(meeting.alarms.length, 1);
    const [found] = await rule("FREQ=MONTHLY;BYDAY=1MO;COUNT=5", { start: "2005-06-06", dates: 2 });
    assert.deepEqual(found.vcalendar, ["MP1 1+ MO #5"]);
    assert.deepEqual(found.dates, ["20050606", "20050704"]);
    assert.match(await version(), /^\d+\.\d+\.\d+$/);
    assert.equal(await version(), JSON.parse(readFileSync(join(installed, "package.json"))).version);
});

test("says what is wrong", async () => {
    const { convert, convertStream, rule } = qelcalendar;
    const { entries, notes } = await convert("BEGIN:VCARD\nEND:VCARD\n");
    assert.equal(entries, 0);
    assert.ok(notes.some(({ severity, first }) => severity === "error" && first.text !== ""));
    await assert.rejects(convert("", { zone: "Nowhere/Land" }), /Nowhere\/Land/);
    await assert.rejects(convert("", { to: "pdf" }), TypeError);
    await assert.rejects(convert([1, 2]), TypeError);
    await assert.rejects(rule("FREQ=SOMETIMES", { start: "2005-06-06" }), Error);
    // Who stops reading stops the writing, and a source that fails fails the result.
    const stopped = convertStream();
    await stopped.readable.cancel("enough");
    await assert.rejects(stopped.summary);
    await assert.rejects(convert((async function* () {
        yield "BEGIN:VCALENDAR\n";
        throw new Error("the disk is gone");
    })()), /the disk is gone/);
});

test("keeps what its README says", () => {
    const readme = readFileSync(join(installed, "README.md"), "utf8");
    const [script, printed, streamed] = [...readme.matchAll(/```(?:js)?\n([^]*?)```/g)].map((match) => match[1]);
    writeFileSync(join(work, "example.mjs"), script);
    assert.equal(execFileSync(process.execPath, ["example.mjs"], { cwd: work, encoding: "utf8" }), printed);
    writeFileSync(join(work, "phone.vcs"), readFileSync(phone));
    writeFileSync(join(work, "stream.mjs"), streamed);
    execFileSync(process.execPath, ["stream.mjs"], { cwd: work });
    assert.deepEqual(readFileSync(join(work, "phone.ics")).toString(),
        native("--to", "ics", "--zone", "Europe/Berlin", phone).toString());
});

test("has types that fit", () => {
    writeFileSync(join(work, "use.mts"), `import { convert, entries, rule, type Converted, type Entry } from "qelcalendar";
const converted: Converted = await convert("", { to: "ics" });
const text: string = converted.calendar;
for await (const entry of entries(new Uint8Array())) { const each: Entry = entry; console.log(each.title, text); }
const words: string = (await rule("W1", { start: "2005-06-06" }))[0].words;
// @ts-expect-error
await convert(words, { to: "pdf" });
`);
    const tsc = join(root, "build/web/npm/node_modules/.bin/tsc");
    const { stdout, status } = spawnSync(tsc, ["--noEmit", "--strict", "--skipLibCheck", "--target", "es2022", "--module", "nodenext", "--types", "node",
        "--typeRoots", join(root, "build/web/npm/node_modules/@types"), "use.mts"], { cwd: work, encoding: "utf8" });
    assert.equal(stdout, "");
    assert.equal(status, 0);
    assert.ok(existsSync(join(installed, "LICENSE")));
});
