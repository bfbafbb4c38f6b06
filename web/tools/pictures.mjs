// pictures.mjs PACKAGES [FILE...]: pictures of the page's states in build/web/pictures, of the example
// and of files; docs/images/page.png is one of them.
import { copyFileSync, mkdirSync, rmSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { basename, dirname, join, resolve } from "node:path";
import { fileURLToPath, pathToFileURL } from "node:url";

const root = join(dirname(fileURLToPath(import.meta.url)), "../..");
const [packages, ...files] = process.argv.slice(2).map((path) => resolve(path));
const puppeteer = createRequire(join(packages, "here.js"))("puppeteer-core");
const folder = join(root, "build/web/pictures");
rmSync(folder, { recursive: true, force: true });
mkdirSync(folder, { recursive: true });
mkdirSync(join(root, "docs/images"), { recursive: true });

const browser = await puppeteer.launch({
    executablePath: "/usr/bin/chromium", args: ["--no-sandbox", "--disable-gpu", "--lang=en", "--hide-scrollbars"],
});

/** A picture of the page after `make`; `whole` below the window's edge too. */
async function picture(name, { width = 1280, height = 900, dark = false, german = false, print = false, whole = false, scale = 1 }, make) {
    const page = await browser.newPage();
    await page.setViewport({ width, height, deviceScaleFactor: scale });
    await page.emulateMediaFeatures([
        { name: "prefers-color-scheme", value: dark ? "dark" : "light" }, { name: "prefers-reduced-motion", value: "reduce" },
    ]);
    await page.goto(pathToFileURL(join(root, "build/web/qelutility.html")).href);
    await page.waitForSelector("body[data-ready]");
    await page.click(german ? "#languages [lang=de]" : "#languages [lang=en]");
    await page.evaluate(() => /** @type {HTMLElement} */ (document.activeElement).blur());
    await make?.(page);
    await new Promise((done) => setTimeout(done, 250));
    const path = join(folder, `${name}.png`);
    if (print) {
        await page.emulateMediaType("print");
        await page.evaluate(() => dispatchEvent(new Event("beforeprint")));
    }
    await page.screenshot({ path, fullPage: whole });
    await page.close();
    return path;
}

const settled = (page) => page.waitForSelector("#opened:not([hidden]), #problem:not([hidden])", { timeout: 600000 });
const example = async (page) => {
    await page.click("#example");
    await settled(page);
};
const given = (...paths) => async (page) => {
    await (await page.$("#files")).uploadFile(...paths);
    await settled(page);
};
const list = (first) => async (page) => {
    await first(page);
    await page.click("#view-list");
};
const entry = async (page) => {
    await example(page);
    await page.click(".of-day .line");
    await page.waitForSelector("#entry[open]");
};
const other = (name, content) => {
    writeFileSync(join(folder, name), content);
    return join(folder, name);
};

const phone = { width: 400, height: 800 };
const narrow = { width: 320, height: 640 };
await picture("start", {});
await picture("start-phone", { ...phone, whole: true });
await picture("start-dark", { dark: true });
await picture("start-german", { german: true });
const shown = await picture("example", { width: 1160, whole: true, scale: 0.8 }, example);
await picture("example-whole", { whole: true }, example);
await picture("example-phone", { ...phone, whole: true }, example);
await picture("example-narrow", { ...narrow, whole: true, german: true }, example);
await picture("example-dark", { dark: true, whole: true }, example);
await picture("example-german", { german: true, whole: true }, example);
await picture("example-list", { whole: true }, list(example));
await picture("example-print", { width: 794, whole: true, print: true }, example);
await picture("entry", {}, entry);
await picture("entry-phone", phone, entry);
await picture("entry-dark", { dark: true }, entry);
await picture("error", {}, given(other("contacts.vcf", "BEGIN:VCARD\r\nEND:VCARD\r\n"), other("empty.vcs", "")));
for (const file of files) {
    const name = basename(file).replace(/\.[^.]*$/, "");
    await picture(name, { whole: true }, given(file));
    await picture(`${name}-phone`, { ...phone, whole: true }, given(file));
    await picture(`${name}-list`, { whole: true }, list(given(file)));
    await picture(`${name}-choices`, { whole: true }, async (page) => {
        await given(file)(page);
        await page.click("#choices > summary");
        await new Promise((done) => setTimeout(done, 1500));
    });
}
await browser.close();
copyFileSync(shown, join(root, "docs/images/page.png"));
