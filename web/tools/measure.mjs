// measure.mjs PACKAGES FILE...: how long the page takes for each file, what memory the browser's processes
// have at most, and how long the page does not answer at worst; beside it the native program.
import { execFileSync, spawnSync } from "node:child_process";
import { readFileSync, statSync } from "node:fs";
import { createRequire } from "node:module";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath, pathToFileURL } from "node:url";

const root = join(dirname(fileURLToPath(import.meta.url)), "../..");
const [packages, ...files] = process.argv.slice(2).map((path) => resolve(path));
const puppeteer = createRequire(join(packages, "here.js"))("puppeteer-core");
const megabytes = (bytes) => `${Math.round(bytes / 1e6)} MB`;

/** The memory, in bytes, and the processor's seconds of the page and its worker: the browser's processes that draw. */
function costsOf(browser) {
    const ours = new Set([browser.process().pid]);
    const costs = { memory: 0, seconds: 0 };
    // A process comes after the one that has started it.
    for (const line of execFileSync("ps", ["-A", "-o", "pid=,ppid=,args=", "--sort=pid"], { encoding: "utf8" }).split("\n")) {
        const [, pid, parent, command] = /^\s*(\d+)\s+(\d+) (.*)$/.exec(line) ?? [];
        if (!ours.has(Number(parent))) continue;
        ours.add(Number(pid));
        if (!command.includes("--type=renderer")) continue;
        try {
            costs.memory += Number(/^RssAnon:\s*(\d+)/m.exec(readFileSync(`/proc/${pid}/status`, "utf8"))?.[1] ?? 0) * 1024;
            const [user, system] = readFileSync(`/proc/${pid}/stat`, "utf8").replace(/^.*\) /, "").split(" ").slice(11, 13);
            costs.seconds += (Number(user) + Number(system)) / 100;
        } catch {
            // It has ended.
        }
    }
    return costs;
}

for (const file of files) {
    const browser = await puppeteer.launch({
        executablePath: "/usr/bin/chromium", args: ["--no-sandbox", "--disable-gpu", "--lang=en"], protocolTimeout: 900000,
    });
    const page = await browser.newPage();
    await page.goto(pathToFileURL(join(root, "build/web/qelutility.html")).href);
    await page.waitForSelector("body[data-ready]");
    const ready = await page.$eval("body", (body) => body.dataset.ready);
    let most = 0;
    const watch = setInterval(() => { most = Math.max(most, costsOf(browser).memory); }, 300);
    await page.evaluate(() => {
        let last = performance.now();
        globalThis.worst = 0;
        setInterval(() => {
            const now = performance.now();
            globalThis.worst = Math.max(globalThis.worst, now - last);
            last = now;
        }, 20);
        const started = performance.now();
        new MutationObserver(() => {
            if (!document.getElementById("opened").hidden) globalThis.took ??= performance.now() - started;
        }).observe(document.body, { attributes: true, subtree: true });
    });
    const before = costsOf(browser).seconds;
    await (await page.$("#files")).uploadFile(file);
    await page.waitForSelector("#opened:not([hidden]), #problem:not([hidden])", { timeout: 900000 });
    const seconds = costsOf(browser).seconds - before;
    const found = await page.$eval("#opened h1, #problem h1", (title) => title.textContent);
    await new Promise((done) => setTimeout(done, 1000));
    clearInterval(watch);
    const { took, worst, heap } = await page.evaluate(() =>
        ({ took: globalThis.took, worst: globalThis.worst, heap: performance.memory.usedJSHeapSize }));
    await browser.close();
    const started = performance.now();
    const { stderr } = spawnSync("/usr/bin/time", ["-f", "%U %S %M", join(root, "build/release/bin/qelutil"), "convert", "--to", "ics", file, "-o", "/dev/null"],
        { encoding: "utf8", maxBuffer: 1 << 30 });
    const native = performance.now() - started;
    const [user, system, memory] = stderr.trim().split("\n").pop().split(" ").map(Number);
    console.log(`${file}: ${megabytes(statSync(file).size)}, ${found}
  page: ready in ${ready} ms, opened in ${Math.round(took)} ms (${seconds.toFixed(1)} s of the processor), silent for ${Math.round(worst)} ms at most,
        ${megabytes(most)} in the renderer at most, ${megabytes(heap)} of it the page's objects at the end
  program: ${Math.round(native)} ms (${(user + system).toFixed(1)} s of the processor), ${megabytes(memory * 1024)} at most`);
}
