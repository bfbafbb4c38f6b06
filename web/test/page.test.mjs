// The page in a real browser, opened from the disk. What it hands out is compared with the native
// program's bytes.
import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { existsSync, mkdirSync, mkdtempSync, readdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { dirname, join } from "node:path";
import { after, before, beforeEach, test } from "node:test";
import { fileURLToPath, pathToFileURL } from "node:url";

const root = join(dirname(fileURLToPath(import.meta.url)), "../..");
const packages = createRequire(join(root, "build/web/npm/here.js"));
const puppeteer = packages("puppeteer-core");
const axe = readFileSync(packages.resolve("axe-core/axe.min.js"), "utf8");
const work = mkdtempSync(join(tmpdir(), "qel-page-"));
const downloads = join(work, "downloads");

const phoneFile = (entries) => `BEGIN:VCALENDAR\r\nVERSION:1.0\r\n${entries}END:VCALENDAR\r\n`;
const dentist = "BEGIN:VEVENT\r\nSUMMARY:Dentist\r\nDTSTART:20050615T103000\r\nDTEND:20050615T113000\r\nEND:VEVENT\r\n";

let browser;
let page;
let requests;

before(async () => {
    mkdirSync(downloads);
    browser = await puppeteer.launch({ executablePath: "/usr/bin/chromium", args: ["--no-sandbox", "--disable-gpu", "--lang=en"] });
    const session = await browser.target().createCDPSession();
    await session.send("Browser.setDownloadBehavior", { behavior: "allow", downloadPath: downloads });
});

after(async () => {
    await browser?.close();
    rmSync(work, { recursive: true });
});

beforeEach(async () => {
    await page?.close();
    page = await browser.newPage();
    requests = [];
    page.on("request", (request) => requests.push(request.url()));
    page.on("pageerror", (problem) => assert.fail(problem.message));
    // axe is put into the page from outside, which its policy forbids everybody else.
    await page.setBypassCSP(true);
    await page.setViewport({ width: 1280, height: 900 });
    await page.goto(pathToFileURL(join(root, "build/web/qelutility.html")).href);
    await page.waitForSelector("body[data-ready]");
    await page.click("#languages [lang=en]");
});

/** Writes files, gives them to the page and waits for what it makes of them. */
async function give(files) {
    const paths = Object.entries(files).map(([name, content]) => {
        const path = join(work, name);
        writeFileSync(path, content);
        return path;
    });
    await (await page.$("#files")).uploadFile(...paths);
    await settled();
}

const settled = () => page.waitForSelector("#opened:not([hidden]), #problem:not([hidden])", { timeout: 120000 });
const textOf = (selector) => page.$eval(selector, (element) => element.textContent);

async function download(selector) {
    for (const name of readdirSync(downloads)) rmSync(join(downloads, name));
    await page.click(selector);
    for (let tries = 0; tries < 600; ++tries) {
        const [name] = readdirSync(downloads).filter((each) => !each.endsWith(".crdownload"));
        if (name !== undefined) return { name, bytes: readFileSync(join(downloads, name)) };
        await new Promise((done) => setTimeout(done, 50));
    }
    assert.fail("nothing was downloaded");
}

async function accessible(state) {
    await page.evaluate(axe);
    const { violations } = await page.evaluate(() => globalThis.axe.run());
    assert.deepEqual(violations.map(({ id, nodes }) => `${state}: ${id}: ${nodes[0].html}`), []);
}

function native(path, ...options) {
    try {
        return execFileSync(join(root, "build/release/bin/qelutil"), ["convert", ...options, path], {
            stdio: ["ignore", "pipe", "ignore"], maxBuffer: 1 << 28,
        });
    } catch (problem) {
        return problem.stdout;
    }
}

test("gives the native program's bytes, in both directions", async () => {
    const folders = ["../shared/data/vcs", "../shared/data/ics"].map((each) => join(root, each)).filter(existsSync);
    if (folders.length === 0) folders.push(join(root, "tests/calendar/golden"));
    const different = [];
    for (const folder of folders)
        for (const name of readdirSync(folder).filter((each) => /\.(vcs|ics)$/.test(each))) {
            const path = join(folder, name);
            await (await page.$("#files")).uploadFile(path);
            await settled();
            if (!(await page.$("#opened:not([hidden])"))) continue;
            const to = (await textOf("#download")).includes(".vcs") ? "vcs" : "ics";
            const { bytes } = await download("#download");
            if (!bytes.equals(native(path, "--to", to))) different.push(name);
            await page.evaluate(() => { document.getElementById("opened").hidden = true; });
        }
    assert.deepEqual(different, []);
});

test("sends nothing, and its policy forbids it", async () => {
    await page.click("#example");
    await settled();
    assert.deepEqual(requests.filter((url) => !/^(file|blob|data):/.test(url)), []);
    const policy = await page.$eval("meta[http-equiv]", (meta) => meta.content);
    assert.match(policy, /default-src 'none'.*connect-src 'none'/);
});

test("opens what is dropped and what is pasted", async () => {
    await page.evaluate((content) => {
        const transfer = new DataTransfer();
        transfer.items.add(new File([content], "phone.vcs"));
        document.body.dispatchEvent(new DragEvent("drop", { dataTransfer: transfer, bubbles: true, cancelable: true }));
    }, phoneFile(dentist));
    await settled();
    assert.match(await textOf("#found"), /1 entry, June 2005/);
    await page.reload();
    await page.waitForSelector("body[data-ready]");
    await page.click("#paste");
    await page.$eval("#pasted", (area, content) => { area.value = content; }, phoneFile(dentist));
    await accessible("paste");
    await page.click("#open-pasted");
    await settled();
    assert.match(await textOf("#found"), /1 entry/);
});

test("opens archives and hands out one for each file, or pieces", async () => {
    await give({ "a.vcs": phoneFile(dentist), "b.vcs": phoneFile(dentist.replace("Dentist", "Choir")) });
    const archive = await download("#each");
    assert.deepEqual([...archive.bytes.subarray(0, 4)], [0x50, 0x4b, 3, 4]);
    await page.reload();
    await page.waitForSelector("body[data-ready]");
    await give({ "calendars.zip": archive.bytes });
    assert.match(await textOf("#found"), /2 entries/);
    await give({ "broken.zip": archive.bytes.subarray(0, 100) });
    assert.match(await textOf("#problem"), /the archive is damaged/);
});

test("says why a file is no calendar", async () => {
    await give({
        "contacts.vcf": "BEGIN:VCARD\r\nN:Doe\r\nEND:VCARD\r\n", "empty.vcs": "", "photo.jpg": "\xff\xd8",
        "hollow.vcs": phoneFile(""),
    });
    const said = await textOf("#problem");
    for (const each of [/contacts.vcf is an address book/, /empty.vcs is empty/, /photo.jpg is not a calendar/])
        assert.match(said, each);
    await accessible("problem");
    await give({ "hollow.vcs": phoneFile("") });
    assert.match(await textOf("#problem"), /hollow.vcs is a calendar without any entry/);
});

test("shows what a broken file lost, entry by entry", async () => {
    await give({ "broken.vcs": phoneFile(`${dentist}BEGIN:VEVENT\r\nSUMMARY:Choir\r\nDTSTART:20050631\r\nthis is no line\r\n`) });
    assert.ok(await page.$(".notes .note"));
    await accessible("broken");
});

test("applies choices at once", async () => {
    // "Мама" in windows-1251.
    const russian = Buffer.from(phoneFile(dentist.replace("Dentist", "\xcc\xe0\xec\xe0")), "latin1");
    await give({ "russian.vcs": russian });
    await page.click("#choices > summary");
    await page.waitForFunction(() => document.querySelector("#charset-windows-1251")?.closest("label").textContent.includes("Мама"));
    await accessible("choices");
    const chosen = async (change) => {
        await page.evaluate(() => { document.getElementById("found").dataset.old = "1"; });
        await change();
        await page.waitForSelector("#found:not([data-old])");
        return (await download("#download")).bytes;
    };
    const path = join(work, "russian.vcs");
    const read = await chosen(() => page.$eval("#charset-windows-1251", (input) => input.click()));
    assert.deepEqual(read, native(path, "--to", "ics", "--charset", "windows-1251"));
    const zoned = await chosen(() => page.select("#zone", "Europe/Berlin"));
    assert.deepEqual(zoned, native(path, "--to", "ics", "--charset", "windows-1251", "--zone", "Europe/Berlin"));
});

test("stays alive with a large file, and can be cancelled", async () => {
    const entry = (i) => dentist.replace("Dentist", `Entry ${i}`);
    const large = phoneFile(Array.from({ length: 30000 }, (_, i) => entry(i)).join(""));
    const path = join(work, "large.vcs");
    writeFileSync(path, large);
    await (await page.$("#files")).uploadFile(path);
    await page.waitForFunction(() => document.getElementById("bar").value > 0, { polling: 20 });
    await page.click("#cancel");
    await page.waitForSelector("#start:not([hidden])");
    await (await page.$("#files")).uploadFile(path);
    await settled();
    await page.click("#view-list");
    await page.waitForSelector(".row");
    assert.ok((await page.$$(".row")).length < 60);
    await page.focus(".row-button[tabindex='0']");
    await page.keyboard.press("End");
    await page.waitForFunction(() => document.activeElement.closest(".row")?.getAttribute("aria-posinset") === "30000");
    await accessible("list");
    await page.type("#search", "entry 29999");
    await page.waitForFunction(() => document.querySelectorAll(".row").length === 1);
    const { bytes } = await download("#pieces");
    assert.deepEqual([...bytes.subarray(0, 2)], [0x50, 0x4b]);
});

test("goes from a file to its download by keyboard, in German and on a phone", async () => {
    await page.setViewport({ width: 320, height: 640 });
    await page.focus("#languages [lang=de]");
    await page.keyboard.press("Enter");
    await accessible("start");
    const tabTo = async (id) => {
        for (let i = 0; i < 60; ++i) {
            if (await page.evaluate((wanted) => document.activeElement.id === wanted, id)) return;
            await page.keyboard.press("Tab");
        }
        assert.fail(`${id} is out of the keyboard's reach`);
    };
    await tabTo("example");
    await page.keyboard.press("Enter");
    await settled();
    assert.match(await textOf("#found"), /6 Einträge von Juni 2005/);
    assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), 320);
    await accessible("opened");
    await tabTo("download");
    await page.keyboard.press("Tab");
    await page.click(".of-day .line");
    await page.waitForSelector("#entry[open]");
    await accessible("entry");
    await page.keyboard.press("Escape");
    const { name } = await download("#download");
    assert.equal(name, "example.ics");
});
