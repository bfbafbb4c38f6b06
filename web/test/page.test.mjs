// The page in a real browser, opened from the disk. What it hands out is compared with the native
// program's bytes.
import assert from "node:assert/strict";
import { execFileSync, spawnSync } from "node:child_process";
import { existsSync, mkdirSync, mkdtempSync, readdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { createServer } from "node:http";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { basename, dirname, join } from "node:path";
import { after, afterEach, before, beforeEach, test } from "node:test";
import { fileURLToPath, pathToFileURL } from "node:url";

const root = join(dirname(fileURLToPath(import.meta.url)), "../..");
const packages = createRequire(join(root, "build/web/npm/here.js"));
const puppeteer = packages("puppeteer-core");
const axe = readFileSync(packages.resolve("axe-core/axe.min.js"), "utf8");
const address = pathToFileURL(join(root, "build/web/qelutility.html")).href;
const work = mkdtempSync(join(tmpdir(), "qel-page-"));
const downloads = join(work, "downloads");

const phoneFile = (entries) => `BEGIN:VCALENDAR\r\nVERSION:1.0\r\n${entries}END:VCALENDAR\r\n`;
const dentist = "BEGIN:VEVENT\r\nSUMMARY:Dentist\r\nDTSTART:20050615T103000\r\nDTEND:20050615T113000\r\nEND:VEVENT\r\n";

let browser;
let page;
let requests;
let faults;

before(async () => {
    mkdirSync(downloads);
    // A container's root has no sandbox.
    browser = await puppeteer.launch({
        executablePath: "/usr/bin/chromium", args: ["--no-sandbox", "--disable-gpu", "--lang=en"], protocolTimeout: 600000,
    });
    const session = await browser.target().createCDPSession();
    await session.send("Browser.setDownloadBehavior", { behavior: "allow", downloadPath: downloads });
});

after(async () => {
    await browser?.close();
    rmSync(work, { recursive: true });
});

async function openPage() {
    await page.goto(address);
    await page.waitForSelector("body[data-ready]");
}

beforeEach(async () => {
    await page?.close();
    page = await browser.newPage();
    requests = [];
    faults = [];
    page.on("request", (request) => requests.push(request.url()));
    page.on("pageerror", (problem) => faults.push(problem.message));
    await page.setViewport({ width: 1280, height: 900 });
    // axe is put into the page from outside, which its policy forbids everybody else.
    await page.setBypassCSP(true);
    await openPage();
});

afterEach(() => {
    assert.deepEqual(faults, []);
    assert.deepEqual(requests.filter((url) => !/^(file|blob|data):/.test(url)), []);
});

const textOf = (selector) => page.$eval(selector, (element) => element.textContent);
const settled = () => page.waitForSelector("#opened:not([hidden]), #problem:not([hidden])", { timeout: 300000 });

/** Does what gives the page something to open, and waits for what it makes of it. */
async function opens(give) {
    await page.evaluate(() => ["opened", "problem"].forEach((id) => { document.getElementById(id).hidden = true; }));
    await give();
    await settled();
}

function written(files) {
    return Object.entries(files).map(([name, content]) => {
        mkdirSync(dirname(join(work, name)), { recursive: true });
        writeFileSync(join(work, name), content);
        return join(work, name);
    });
}

async function choose(paths) {
    // The same file once more is a choice too; the page's button takes care of that.
    await page.$eval("#files", (input) => { input.value = ""; });
    await (await page.$("#files")).uploadFile(...paths);
}

const openPaths = (paths) => opens(() => choose(paths));
const openFiles = (files) => openPaths(written(files));

async function dropPaths(...files) {
    const session = await page.createCDPSession();
    for (const type of ["dragEnter", "dragOver", "drop"])
        await session.send("Input.dispatchDragEvent", { type, x: 300, y: 300, data: { items: [], files, dragOperationsMask: 1 } });
}

/** What a button, or what is done, downloads. */
async function download(press) {
    for (const name of readdirSync(downloads)) rmSync(join(downloads, name));
    if (typeof press === "string") await page.$eval(press, (button) => button.click());
    else await press();
    for (let tries = 0; tries < 1200; ++tries) {
        const [name] = readdirSync(downloads).filter((each) => !/\.crdownload$|^\./.test(each));
        if (name !== undefined) return { name, bytes: readFileSync(join(downloads, name)) };
        await new Promise((done) => setTimeout(done, 50));
    }
    assert.fail("nothing was downloaded");
}

/** The files of a folder by their names. */
const filesIn = (folder) => new Map(readdirSync(folder).sort().map((name) => [name, readFileSync(join(folder, name))]));

function unpacked(bytes) {
    const [archive] = written({ "unpacked.zip": bytes });
    const folder = mkdtempSync(join(work, "unpacked-"));
    execFileSync("python3", ["-m", "zipfile", "-e", archive, folder]);
    return filesIn(folder);
}

/** qelutil convert; it exits with 1 where input is bad, and writes what can be read all the same. */
function native(...options) {
    const { stdout, status } = spawnSync(join(root, "build/release/bin/qelutil"), ["convert", ...options], { maxBuffer: 1 << 30 });
    assert.ok(status === 0 || status === 1, `qelutil ended with ${status}`);
    return stdout;
}

async function accessible(state) {
    await page.evaluate(axe);
    const { violations } = await page.evaluate(() => globalThis.axe.run());
    // axe asks no name of a dialog element.
    const unnamed = await page.$$eval("dialog[open]", (all) =>
        all.filter((each) => !document.getElementById(each.getAttribute("aria-labelledby"))?.textContent).length);
    assert.equal(unnamed, 0, state);
    assert.deepEqual(violations.map(({ id, nodes }) => `${state}: ${id}: ${nodes[0].html}`), []);
}

test("gives the native program's bytes, in both directions", async () => {
    const shared = ["vcs", "ics"].map((each) => join(root, "../shared/data", each)).filter(existsSync);
    for (const folder of [join(root, "tests/calendar/golden"), ...shared])
        for (const [from, to, format] of [["vcs", "ics", 1], ["ics", "vcs", 2]]) {
            const names = readdirSync(folder).filter((name) => name.endsWith(`.${from}`)).sort();
            if (names.length === 0) continue;
            const paths = names.map((name) => join(folder, name));
            await openPaths(paths);
            if (!(await page.$eval(`#target-${format}`, ({ checked }) => checked)))
                await opens(() => page.$eval(`#target-${format}`, (input) => input.click()));
            const whole = await download("#download");
            assert.ok(whole.bytes.equals(native("--to", to, ...paths)), `all of ${folder} as .${to}`);
            const expected = mkdtempSync(join(work, "native-"));
            native("--to", to, "-d", expected, ...paths);
            const each = unpacked((await download("#each")).bytes);
            const wanted = filesIn(expected);
            assert.deepEqual([...each.keys()], [...wanted.keys()]);
            assert.deepEqual([...wanted.keys()].filter((name) => !each.get(name).equals(wanted.get(name))), []);
        }
});

test("has a policy that lets nothing out", async () => {
    let asked = 0;
    const server = createServer((_, response) => { ++asked; response.end(); });
    await new Promise((done) => server.listen(0, "127.0.0.1", done));
    const outside = `http://127.0.0.1:${server.address().port}/`;
    await page.setBypassCSP(false);
    await openPage();
    await opens(() => page.click("#example"));
    const refused = await page.evaluate(async (url) => {
        const image = new Image();
        const picture = new Promise((done) => { image.onload = image.onerror = () => done(undefined); });
        image.src = url;
        const form = document.createElement("form");
        form.action = url;
        document.body.append(form);
        form.submit();
        const frame = document.createElement("iframe");
        frame.src = url;
        document.body.append(frame);
        await picture;
        return fetch(url).then(() => false, () => true);
    }, outside);
    server.close();
    assert.ok(refused);
    assert.equal(asked, 0);
    requests = requests.filter((url) => !url.startsWith(outside));
});

test("opens what is dropped and what is pasted", async () => {
    const [one, two] = written({ "phone/a.vcs": phoneFile(dentist), "phone/old/b.vcs": phoneFile(dentist.replace("Dentist", "Choir")) });
    await opens(() => dropPaths(one));
    assert.match(await textOf("#found"), /^1 entry, June\s2005/);
    await opens(() => dropPaths(dirname(one), two));
    assert.match(await textOf("#found"), /^3 entries, June\s2005/);
    await opens(() => page.evaluate((content) => {
        const clipboardData = new DataTransfer();
        clipboardData.setData("text/plain", content);
        document.body.dispatchEvent(new ClipboardEvent("paste", { clipboardData, bubbles: true }));
    }, phoneFile(dentist)));
    assert.match(await textOf("#found"), /^1 entry/);
    await page.click("#again");
    await page.click("#paste");
    await page.$eval("#pasted", (area, content) => { area.value = content; }, phoneFile(dentist + dentist));
    await accessible("paste");
    await opens(() => page.click("#open-pasted"));
    assert.match(await textOf("#found"), /^2 entries/);
});

test("opens archives, and says what is wrong with one", async () => {
    await openFiles({ "a.vcs": phoneFile(dentist), "b.vcs": phoneFile(dentist.replace("Dentist", "Choir")) });
    const { name, bytes } = await download("#each");
    assert.equal(name, "calendar.zip");
    await openFiles({ "calendars.zip": bytes });
    assert.match(await textOf("#found"), /^2 entries/);
    await openFiles({ "cut.zip": bytes.subarray(0, 100) });
    assert.match(await textOf("#problem"), /cut\.zip cannot be opened: the archive is damaged/);
    const locked = Buffer.from(bytes);
    for (let at = 0; (at = locked.indexOf("PK\x01\x02", at)) >= 0; ++at) locked[at + 8] |= 1;
    await openFiles({ "locked.zip": locked });
    assert.match(await textOf("#problem"), /locked\.zip cannot be opened: it is protected by a password/);
});

test("says why a file is not a calendar", async () => {
    const others = {
        "contacts.vcf": "BEGIN:VCARD\r\nN:Doe\r\nEND:VCARD\r\n", "empty.vcs": "", "photo.jpg": Buffer.from("ffd8ffe000104a464946", "hex"),
        "page.ics": "<!DOCTYPE html><html><body>Sign in</body></html>", "hollow.vcs": phoneFile(""),
    };
    await openFiles(others);
    const said = await textOf("#problem");
    for (const each of [/contacts\.vcf is an address book/, /empty\.vcs is empty/, /photo\.jpg is not a calendar/,
        /page\.ics is a web page/, /hollow\.vcs is a calendar without any entry/])
        assert.match(said, each);
    await accessible("problem");
    await openFiles({ ...others, "phone.vcs": phoneFile(dentist) });
    assert.match(await textOf(".summary"), /5 files without entries were left out/);
    assert.deepEqual((await download("#download")).bytes, native("--to", "ics", join(work, "phone.vcs")));
});

test("shows what a broken file lost, the source beside the result", async () => {
    await openFiles({ "broken.vcs": phoneFile(`${dentist}BEGIN:VEVENT\r\nSUMMARY:Choir\r\nDTSTART:20050631\r\nthis is no line\r\n`) });
    assert.match(await textOf("#found"), /^2 entries/);
    const notes = await page.$$(".notes .note");
    assert.ok(notes.length > 0);
    await accessible("broken");
    await page.click(".notes .note button");
    await page.waitForSelector(".row-button");
    await page.click(".row-button");
    await page.waitForSelector("#entry[open]");
    await page.click(".sides summary");
    const [source, result] = await page.$$eval("#entry pre", (all) => all.map((each) => each.textContent));
    assert.match(source, /^BEGIN:VEVENT\r?\nSUMMARY:Choir/);
    assert.match(result, /^BEGIN:VTODO[^]*SUMMARY:Choir/);
    await accessible("entry");
    const report = (await download("#report")).bytes.toString();
    assert.match(report, /^<!DOCTYPE html>[^]*Choir[^]*<\/html>\s*$/);
});

test("applies choices at once", async () => {
    // "Мама" in windows-1251.
    const series = dentist.replace("Dentist", "Choir").replace("END:VEVENT", "RRULE:W1 MO WE #4\r\nEND:VEVENT");
    const russian = Buffer.from(phoneFile(dentist.replace("Dentist", "\xcc\xe0\xec\xe0") + series), "latin1");
    await openFiles({ "russian.vcs": russian });
    await page.click("#choices > summary");
    await page.waitForFunction(() => document.getElementById("charset-windows-1251")?.closest("label").textContent.includes("Мама"));
    await accessible("choices");
    const path = join(work, "russian.vcs");
    const chosen = async (change, ...options) => {
        await opens(change);
        assert.deepEqual((await download("#download")).bytes.toString(), native(...options, path).toString());
    };
    await chosen(() => page.$eval("#charset-windows-1251", (input) => input.click()), "--to", "ics", "--charset", "windows-1251");
    assert.match(await textOf(".of-day"), /Мама/);
    await chosen(() => page.select("#zone", "Europe/Berlin"), "--to", "ics", "--charset", "windows-1251", "--zone", "Europe/Berlin");
    await chosen(() => page.select("#count", "periods"), "--to", "ics", "--charset", "windows-1251", "--zone", "Europe/Berlin",
        "--count-means", "periods");
    await chosen(() => page.$eval("#target-2", (input) => input.click()),
        "--to", "vcs", "--charset", "windows-1251", "--zone", "Europe/Berlin", "--count-means", "periods");
});

test("stays alive with a large file, can be cancelled, and hands it out in pieces", async () => {
    const count = 30000;
    const entries = Array.from({ length: count }, (_, i) => dentist.replace("Dentist", `UID:${i}\r\nSUMMARY:Entry ${i}`).replace("SUMMARY:UID", "UID"));
    const paths = written({ "large.vcs": phoneFile(entries.join("")) });
    const [busy] = page.workers();
    await choose(paths);
    await page.waitForFunction(() => {
        const begun = document.getElementById("bar").value > 0;
        if (begun) document.getElementById("cancel").click();
        return begun;
    }, { polling: 10 });
    await page.waitForSelector("#start:not([hidden])");
    for (let tries = 0; page.workers().includes(busy); ++tries) {
        assert.ok(tries < 100, "the conversion goes on after it was cancelled");
        await new Promise((done) => setTimeout(done, 20));
    }
    await page.evaluate(() => ["start", "working"].forEach((id) => { document.getElementById(id).hidden = id === "start"; }));
    await accessible("working");
    await openPaths(paths);
    await page.click("#view-list");
    await page.waitForSelector(".row");
    assert.ok((await page.$$(".row")).length < 60);
    await page.focus(".row-button[tabindex='0']");
    await page.keyboard.press("End");
    await page.waitForFunction((last) => document.activeElement.closest(".row")?.getAttribute("aria-posinset") === last, {}, String(count));
    await accessible("list");
    await page.type("#search", `entry ${count - 1}`);
    await page.waitForFunction(() => document.querySelectorAll(".row").length === 1);
    await page.evaluate(() => dispatchEvent(new Event("beforeprint")));
    assert.equal((await page.$$("#printed li")).length, 1);
    await page.evaluate(() => dispatchEvent(new Event("afterprint")));
    // The dialog comes at once: the report is done before somebody would need it.
    await page.evaluate(() => {
        const later = globalThis.setTimeout;
        globalThis.setTimeout = (call) => later(call);
    });
    await page.$eval("#report", (button) => button.click());
    await page.waitForFunction(() => {
        const dialog = document.getElementById("busy");
        const { open } = dialog;
        if (open) dialog.querySelector("button").click();
        return open;
    }, { polling: 10 });
    // The dialog again, for as long as it takes to look at them.
    await page.evaluate(() => document.getElementById("busy").showModal());
    await accessible("busy");
    await page.keyboard.press("Escape");
    const pieces = unpacked((await download("#pieces")).bytes);
    assert.deepEqual([...pieces.values()].filter(({ length }) => length > 1e6).length, 0);
    const uids = [...pieces.values()].flatMap((piece) => piece.toString().match(/^UID:.*$/gm));
    assert.equal(new Set(uids).size, count);
    assert.equal(uids.length, count);
});

test("goes from a file to its download by keyboard, in German, in the dark and on a phone", async () => {
    await page.setViewport({ width: 320, height: 640 });
    await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: "dark" }]);
    const tabTo = async (wanted) => {
        for (let i = 0; i < 80; ++i) {
            if (await page.evaluate((selector) => document.activeElement.matches(selector), wanted)) return;
            await page.keyboard.press("Tab");
        }
        assert.fail(`${wanted} is out of the keyboard's reach`);
    };
    const fits = async () => assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), 320);
    await tabTo("[lang=de]");
    await page.keyboard.press("Enter");
    await fits();
    await accessible("start");
    await page.click("#licences-button");
    assert.match(await textOf("#licences pre"), /Apache License 2\.0[^]*Unicode, Inc/);
    await accessible("licences");
    await page.keyboard.press("Escape");
    await page.focus("[lang=de]");
    await tabTo("#example");
    await opens(() => page.keyboard.press("Enter"));
    assert.match(await textOf("#found"), /^11 Einträge von Mai\s2005/);
    await fits();
    await accessible("opened");
    await tabTo(".day");
    await page.keyboard.press("Home");
    await tabTo(".of-day .line");
    await page.keyboard.press("Enter");
    await page.waitForSelector("#entry[open]");
    await fits();
    await accessible("entry");
    await page.keyboard.press("Escape");
    await page.waitForSelector("#entry:not([open])");
    // Focus is back where it came from.
    assert.ok(await page.evaluate(() => document.activeElement.matches(".of-day .line")));
    await page.focus("#found");
    await tabTo("#download");
    const { name } = await download(() => page.keyboard.press("Enter"));
    assert.equal(name, "example.ics");
    // The month with the longest name.
    await page.select(".selects select", "8");
    await fits();
});
