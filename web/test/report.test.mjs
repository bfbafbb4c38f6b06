// The report of a conversion in a real browser, opened from the disk under its own policy.
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { mkdtempSync, readFileSync, readdirSync, rmSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { tmpdir } from "node:os";
import { dirname, join } from "node:path";
import { after, before, test } from "node:test";
import { fileURLToPath, pathToFileURL } from "node:url";

const root = join(dirname(fileURLToPath(import.meta.url)), "../..");
const packages = createRequire(join(root, "build/web/npm/here.js"));
const puppeteer = packages("puppeteer-core");
const axe = readFileSync(packages.resolve("axe-core/axe.min.js"), "utf8");
const golden = join(root, "tests/calendar/golden");
const work = mkdtempSync(join(tmpdir(), "qel-report-"));
const report = join(work, "report.html");

let browser;

before(async () => {
    const hostile = join(work, "<script>document.title='run'<!--.vcs".replaceAll("/", "_"));
    writeFileSync(hostile, "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\nDTSTART:20050615T103000\r\n" +
        "SUMMARY:</script></pre><script>document.title='run'</script><img src=x onerror=\"document.title='run'\"> Café\r\n" +
        "END:VEVENT\r\nEND:VCALENDAR\r\n");
    const files = readdirSync(golden).filter((name) => name.endsWith(".vcs")).map((name) => join(golden, name));
    const run = spawnSync(join(root, "build/release/bin/qelutil"),
        ["convert", hostile, ...files, "-d", join(work, "out"), "--report", report], { encoding: "utf8" });
    assert.equal(run.error, undefined);
    browser = await puppeteer.launch({ executablePath: "/usr/bin/chromium", args: ["--no-sandbox", "--disable-gpu"] });
});

after(async () => {
    await browser?.close();
    rmSync(work, { recursive: true });
});

async function open(width, bypassPolicy = false) {
    const page = await browser.newPage();
    page.problems = [];
    page.on("pageerror", (problem) => page.problems.push(problem.message));
    page.on("console", (message) => page.problems.push(message.text()));
    await page.setBypassCSP(bypassPolicy);
    await page.setViewport({ width, height: 900 });
    await page.goto(pathToFileURL(report).href);
    return page;
}

const shown = (page) => page.$$eval("#entries article,#entries .one", (items) =>
    items.filter((item) => item.checkVisibility()).map((item) => item.querySelector("h3,bdi").textContent));

test("the search finds entries by words, without regard to case and accents", async () => {
    const page = await open(1280);
    const all = await shown(page);
    assert.ok(all.length > 30);
    await page.type("#find", "cafe ONERROR");
    await page.waitForFunction(() => document.getElementById("found").value !== "");
    assert.equal(await page.$eval("#found", (output) => output.value), "1 entry");
    assert.match((await shown(page)).join(), /^<\/script>.*Café$/);
    await page.$eval("#find", (box) => {
        box.value = "";
        box.dispatchEvent(new Event("input"));
    });
    await page.waitForFunction(() => document.getElementById("found").value === "");
    assert.deepEqual(await shown(page), all);
    assert.equal(await page.title(), "Conversion report");
    assert.deepEqual(page.problems, []);
    await page.close();
});

test("no script of a calendar runs, even where the page's own marks do not stop it", async () => {
    const page = await open(1280);
    await page.evaluate(() => {
        const script = document.createElement("script");
        script.textContent = "document.title = 'run'";
        document.body.append(script);
    });
    assert.equal(await page.title(), "Conversion report");
    assert.match(page.problems.join(), /Content Security Policy/);
    await page.close();
});

test("nothing is cut off on a narrow screen, and everybody can read it", async () => {
    for (const width of [320, 1280]) {
        const page = await open(width, true);
        assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), width);
        await page.evaluate(axe);
        const { violations } = await page.evaluate(() => globalThis.axe.run());
        assert.deepEqual(violations.map((each) => `${each.id}: ${each.nodes[0].html}`), []);
        await page.close();
    }
});
