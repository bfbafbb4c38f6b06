/** The page: what is shown when, and what its buttons do. */
import { monthAndYear, sizeInWords, today } from "./dates.js";
import { Diary, horizonOf } from "./diary.js";
import { byId, drawing, element, fill, saveAs } from "./dom.js";
import { format } from "./engine.js";
import { showEntry } from "./entry.js";
import { example } from "./example.js";
import { calendarsAmong, chosenFiles, droppedFiles, Reason, unclearEntries } from "./input.js";
import { listView, printedList } from "./list.js";
import { monthView } from "./month.js";
import { language, languages, steps, text, useLanguage } from "./texts.js";
import { writeZip } from "./zip.js";

/**
 * @typedef {import("./zip.js").NamedFile} NamedFile
 * @typedef {import("./input.js").Refusal} Refusal
 * @typedef {import("./engine.js").Choices} Choices
 */

/** Messages that the summary shows at first. */
const fewNotes = 4;
/** Character sets that old phones wrote, by the standard's names. */
const charsets = [
    "windows-1252", "windows-1250", "windows-1251", "koi8-r", "windows-1253", "windows-1254", "windows-1255",
    "windows-1256", "windows-1257", "windows-1258", "windows-874", "shift_jis", "euc-jp", "gbk", "big5", "euc-kr",
    "iso-8859-2", "iso-8859-5", "iso-8859-7", "utf-8",
];

// --- The worker ------------------------------------------------------------------------------------

/** @type {WebAssembly.Module} */
let engineModule;
/** @type {Worker | undefined} */
let worker;
/** @type {Map<number, {resolve: (result: any) => void, reject: (problem: Error) => void, progress?: (done: number, entries: string) => void}>} */
const waiting = new Map();
let lastId = 0;
/** Counts what was begun, so that what is overtaken or cancelled shows nothing any more. */
let begun = 0;
/** @type {string | undefined} */
let workerUrl;

function startWorker() {
    const source = /** @type {any} */ (globalThis).qelWorkerSource;
    workerUrl ??= URL.createObjectURL(new Blob([source], { type: "text/javascript" }));
    worker = new Worker(workerUrl);
    worker.onmessage = ({ data }) => {
        const task = waiting.get(data.id);
        if (data.done !== undefined) return task?.progress?.(data.done, data.entries);
        waiting.delete(data.id);
        if (data.problem === undefined) task?.resolve(data.result);
        else task?.reject(new Error(data.problem));
    };
    worker.onerror = (event) => {
        for (const { reject } of waiting.values()) reject(new Error(event.message));
        waiting.clear();
    };
    return ask({ task: "load", module: engineModule });
}

/**
 * @param {object} message
 * @param {(done: number, entries: string) => void} [progress]
 * @returns {Promise<any>}
 */
function ask(message, progress) {
    const id = ++lastId;
    return new Promise((resolve, reject) => {
        waiting.set(id, { resolve, reject, progress });
        /** @type {Worker} */ (worker).postMessage({ ...message, id });
    });
}

/** What the person has cancelled ends with this. */
class Cancelled extends Error {}

function stopWorker() {
    worker?.terminate();
    for (const { reject } of waiting.values()) reject(new Cancelled());
    waiting.clear();
    void startWorker();
}

/**
 * Asks while the page stays as it is; what takes longer shows its progress and can be cancelled.
 * @param {{task: string, [more: string]: any}} message
 */
async function askBusily(message) {
    const dialog = /** @type {HTMLDialogElement} */ (byId("busy"));
    const total = open?.files.reduce((sum, { data }) => sum + data.size, 0) ?? 0;
    const bar = element("progress", { max: Math.max(total, 1), "aria-label": text("preparing") });
    fill(dialog,
        element("h2", { id: "busy-title" }, text("preparing")),
        element("p", {}, bar),
        element("button", { click: () => dialog.close() }, text("cancel")));
    let settled = false;
    dialog.onclose = () => { if (!settled) stopWorker(); };
    const timer = setTimeout(() => dialog.showModal(), 400);
    try {
        return await ask(message, (done) => { bar.value = done; });
    } finally {
        settled = true;
        clearTimeout(timer);
        dialog.close();
    }
}

// --- What is open ----------------------------------------------------------------------------------

/** @type {import("./engine.js").NoteKind[]} */
let kinds = [];
/** @type {{files: NamedFile[], refused: Refusal[], skipped: Refusal[], choices: Choices, target: number, diary: Diary, unclear?: Uint8Array} | undefined} */
let open;
const view = { name: "month", words: "", noted: false, /** @type {number | undefined} */ code: undefined, /** @type {number | undefined} */ day: undefined };

/** @param {string} message */
function announce(message) {
    byId("announcement").textContent = message;
}

/** @param {"start" | "working" | "problem" | "opened"} state */
function showState(state) {
    for (const each of ["start", "working", "problem", "opened"]) byId(each).hidden = each !== state;
}

/** @param {NamedFile[] | Promise<NamedFile[]>} given */
async function openFiles(given) {
    const mine = ++begun;
    showWorking(0, 0);
    const { calendars, refused } = await calendarsAmong(await given, (files) => ask({ task: "recognise", files }));
    if (mine !== begun) return;
    if (calendars.length === 0) return showProblem(refused);
    const unclear = await unclearEntries(calendars);
    const isPhone = await Promise.all(calendars.map(async ({ data }) =>
        /VERSION\s*:\s*1\.0/i.test((await data.slice(0, 1 << 16).text()).replaceAll("\0", ""))));
    if (mine !== begun) return;
    const target = isPhone.some(Boolean) ? format.icalendar : format.other;
    Object.assign(view, { name: "month", words: "", noted: false, code: undefined, day: undefined });
    await convert(calendars, refused, {}, target, unclear);
}

/**
 * @param {NamedFile[]} files
 * @param {Refusal[]} refused
 * @param {Choices} choices
 * @param {number} target
 * @param {Uint8Array} [unclear]
 */
async function convert(files, refused, choices, target, unclear) {
    const mine = ++begun;
    const total = files.reduce((sum, { data }) => sum + data.size, 0);
    showWorking(0, total);
    const job = { files, target, choices, horizon: horizonOf(today()) };
    /** @type {import("./engine.js").Entry[]} */
    const entries = [];
    /** @type {import("./worker.js").Converted} */
    const converted = await ask({ task: "convert", job }, (done, lines) => {
        for (const line of lines.split("\n")) if (line !== "") entries.push(JSON.parse(line));
        showWorking(done, total);
    });
    // Other files were given in the meantime.
    if (mine !== begun) return;
    const empty = files.filter((_, i) => converted.entriesOfFile[i] === 0);
    const all = [...refused, ...empty.map(({ name }) => ({ name: /** @type {const} */ ("noEntries"), file: name }))];
    if (entries.length === 0) return showProblem(all);
    const diary = new Diary(converted, entries, files.map(({ name }) => name), kinds);
    open = { files, refused, skipped: all, choices, target: converted.summary.target, diary, unclear };
    showOpened();
}

/** @param {Choices} choices @param {number} [target] */
async function choose(choices, target) {
    if (open === undefined) return;
    const { files, refused, unclear, diary } = open;
    const before = document.activeElement?.id;
    try {
        await convert(files, refused, { ...open.choices, ...choices }, target ?? open.target, unclear);
    } catch (problem) {
        if (problem instanceof Cancelled) throw problem;
        open = { ...open, diary };
        showOpened();
        byId("choice-problem").textContent = text("choiceFailed", problem instanceof Error ? problem.message : "");
    }
    byId("choices").setAttribute("open", "");
    if (before) byId(before)?.focus();
}

// --- States ----------------------------------------------------------------------------------------

let shownAt = 0;

/** @param {number} done @param {number} total */
function showWorking(done, total) {
    if (done === 0) {
        showState("working");
        shownAt = 0;
    }
    if (done < total && performance.now() - shownAt < 80) return;
    shownAt = performance.now();
    const bar = /** @type {HTMLProgressElement} */ (byId("bar"));
    bar.max = Math.max(total, 1);
    bar.value = done;
    byId("done").textContent = total > 0 ? text("progress", sizeInWords(done), sizeInWords(total)) : "";
}

/** @param {Refusal[]} refused */
function showProblem(refused) {
    open = undefined;
    const reasons = refused.slice(0, 20).map(({ name, file }) => element("li", { dir: "auto" }, text(name, file)));
    fill(
        byId("problem"),
        element("div", { class: "card problem" },
            element("span", { class: "sign", "aria-hidden": "true" }, "!"),
            element("h1", { tabindex: -1 }, refused.length > 0 ? text("noCalendar") : text("wrong")),
            reasons.length > 0 ? element("ul", {}, reasons) : element("p", {}, text("nothingChosen")),
            element("button", { class: "primary", click: startAgain }, text("startAgain"))),
    );
    showState("problem");
    byId("problem").querySelector("h1")?.focus();
    announce(text("noCalendar"));
}

/** @param {unknown} problem */
function showFailure(problem) {
    const reason = problem instanceof Error ? problem.message : String(problem);
    const message = problem instanceof Reason ? reason : text("failure", reason);
    fill(
        byId("problem"),
        element("div", { class: "card problem" },
            element("span", { class: "sign", "aria-hidden": "true" }, "!"),
            element("h1", { tabindex: -1 }, text("wrong")),
            element("p", {}, message),
            element("button", { class: "primary", click: startAgain }, text("startAgain"))),
    );
    showState("problem");
    byId("problem").querySelector("h1")?.focus();
}

function startAgain() {
    open = undefined;
    showState("start");
    byId("choose").focus();
}

/** Runs what a button began; a failure becomes a state of the page. @param {Promise<unknown>} task */
function run(task) {
    task.catch((problem) => {
        if (!(problem instanceof Cancelled)) showFailure(problem);
    });
}

// --- The opened calendar ---------------------------------------------------------------------------

function showOpened() {
    if (open === undefined) return;
    const { diary, skipped } = open;
    const title = element("h1", { id: "found", tabindex: -1 }, foundText(diary));
    fill(
        byId("opened"),
        element("section", { class: "summary card", "aria-labelledby": "found" },
            title,
            element("p", { class: "verdict" }, verdict(diary)),
            notesList(diary),
            diary.summary.seriesCut > 0 && element("p", { class: "faint" }, text("seriesCut", diary.summary.seriesCut)),
            skipped.length > 0 && element("details", {},
                element("summary", {}, text("skippedFiles", skipped.length)),
                element("ul", {}, skipped.slice(0, 100).map(({ name, file }) => element("li", { dir: "auto" }, text(name, file)))))),
        takeAlong(),
        choicesPanel(),
        element("section", { class: "card diary", id: "diary", "aria-label": text("view") }),
    );
    showState("opened");
    drawView();
    title.focus({ preventScroll: true });
    announce(text("ready", foundText(diary)));
}

/** @param {Diary} diary */
function foundText(diary) {
    const entries = text("foundEntries", diary.entries.length);
    const span = diary.span();
    if (span === undefined) return entries;
    const [first, last] = [span.first, span.last].map((day) => monthAndYear(day).replace(" ", "\u00a0"));
    return first === last ? `${entries}, ${first}` : text("foundSpan", entries, first, last);
}

/** @param {Diary} diary */
function verdict(diary) {
    const concerned = diary.entries.filter((_, index) => diary.concern(index) > 0).length;
    const files = diary.names.length === 1 ? diary.names[0] : text("foundFiles", diary.names.length);
    return `${text("foundIn", files)} ${concerned === 0 && diary.summary.lost === 0 ? text("allWell") : text("changedSome", concerned)}`;
}

/** @param {Diary} diary */
function notesList(diary) {
    const notes = diary.summary.notes
        .filter(({ code }) => diary.concernOf(code) > 0)
        .sort((a, b) => diary.concernOf(b.code) - diary.concernOf(a.code) || b.count - a.count);
    if (notes.length === 0) return null;
    const item = (/** @type {typeof notes[number]} */ { code, count, first }) => {
        const kind = diary.kinds.get(code);
        const { advice, choice } = diary.advice(code);
        const mark = text(kind?.fate === 2 ? "lost" : kind?.fate === 1 ? "kept" : "changedMark");
        const inEntries = diary.entries.some((entry) => entry.notes.includes(code));
        return element("li", { class: `note concern-${diary.concernOf(code)}` },
            element("p", { class: "label" }, element("b", {}, mark), ` · ${text("times", count)}`),
            element("p", { lang: "en" }, kind?.meaning ?? first.text),
            element("p", { class: "faint", dir: "auto" },
                text("firstExample", first.text),
                first.line > 0 && ` (${text("exampleLine", first.file, String(first.line))})`),
            element("p", { class: "faint", lang: "en" }, advice),
            inEntries && element("button", { class: "quiet", click: () => showOnly(code) }, text("showEntries")),
            choice && element("button", { class: "quiet", click: showChoices }, text("readOtherwise")));
    };
    return element("div", { class: "notes" },
        element("h2", {}, text("lookFirst")),
        element("ul", {}, notes.slice(0, fewNotes).map(item)),
        notes.length > fewNotes && element("details", {},
            element("summary", {}, text("moreNotes", notes.length - fewNotes)),
            element("ul", {}, notes.slice(fewNotes).map(item))));
}

function showChoices() {
    byId("choices").setAttribute("open", "");
    /** @type {HTMLElement} */ (byId("choices").querySelector("summary")).focus();
}

/** @param {number} code */
function showOnly(code) {
    Object.assign(view, { name: "list", code, words: "", noted: false });
    drawView();
    byId("diary").scrollIntoView({ block: "start" });
    byId("search").focus({ preventScroll: true });
}

function resultName() {
    const extension = open?.target === format.vcalendar ? "vcs" : "ics";
    const only = open?.files.length === 1 ? open.files[0].name.replace(/^.*[/\\]/, "").replace(/\.[^.]*$/, "") : "";
    return `${only || text("calendarName")}.${extension}`;
}

function takeAlong() {
    const { converted } = /** @type {NonNullable<typeof open>} */ (open).diary;
    const name = resultName();
    const several = converted.entriesOfFile.filter((count) => count > 0).length > 1;
    return element("section", { class: "card take", "aria-labelledby": "take-title" },
        element("h2", { id: "take-title" }, text("takeAlong")),
        element("div", { class: "buttons" },
            element("button", { class: "primary", id: "download", click: () => saveAs(converted.output, name) },
                text("download", name), element("small", {}, ` ${sizeInWords(converted.output.size)}`)),
            converted.output.size > 1e6 && open?.target === format.icalendar &&
                element("button", { id: "pieces", click: () => run(downloadPieces()) }, text("inPieces")),
            several && element("button", { id: "each", click: () => run(downloadEach()) }, text("eachFile")),
            element("button", { id: "report", click: () => run(downloadReport()) }, text("showReport"))),
        open?.target === format.icalendar && stepsPanel(),
        element("button", { id: "again", class: "quiet", click: startAgain }, text("startAgain")));
}

/** What to do with the download, one program at a time. */
function stepsPanel() {
    return element("div", { class: "programs", id: "steps" },
        element("h3", {}, text("intoCalendar")),
        element("p", { class: "faint" }, text("stepsHint")),
        Object.entries(steps()).map(([program, list]) => element("details", { name: "program" },
            element("summary", {}, program),
            element("ol", {}, list.map((step) => element("li", {}, step))))));
}

async function downloadPieces() {
    if (open === undefined) return;
    const name = resultName();
    const archive = await askBusily({ task: "pieces", calendar: open.diary.converted.output, name });
    saveAs(archive, name.replace(/\.ics$/, ".zip"));
}

async function downloadReport() {
    if (open === undefined) return;
    const { files, choices, target } = open;
    const output = resultName();
    const report = await askBusily({ task: "report", job: { files, choices, target, output } });
    saveAs(report, `${output}.html`);
}

async function downloadEach() {
    if (open === undefined) return;
    const { files, choices, target } = open;
    const extension = target === format.vcalendar ? ".vcs" : ".ics";
    const job = { files, choices, target };
    /** @type {NamedFile[]} */
    const results = await askBusily({ task: "each", job });
    const used = new Set();
    for (const result of results) {
        const stem = result.name.replace(/\.[^./\\]*$/, "");
        let name = stem + extension;
        for (let i = 2; used.has(name); ++i) name = `${stem}-${i}${extension}`;
        used.add(name);
        result.name = name;
    }
    saveAs(await writeZip(results), `${text("calendarName")}.zip`);
}

// --- Choices ---------------------------------------------------------------------------------------

function choicesPanel() {
    const { diary, choices, target, unclear } = /** @type {NonNullable<typeof open>} */ (open);
    const local = diary.entries.filter((entry) => entry.clock === 0 && !entry.day).length;
    const shared = choices.distinctUids || new Set(diary.entries.map(({ uid }) => uid)).size < diary.entries.length;
    const radio = (/** @type {number} */ value, /** @type {string} */ label) =>
        element("label", {}, element("input", {
            type: "radio", name: "target", id: `target-${value}`, value, checked: target === value, change: () => run(choose({}, value)),
        }), label);
    return element("details", { class: "card choices", id: "choices" },
        element("summary", {}, text("choices")),
        element("p", { class: "faint" }, text("choicesIntro")),
        element("p", { id: "choice-problem", class: "concern-2", role: "alert" }),
        (local > 0 || choices.zone) && zoneChoice(local, choices.zone ?? ""),
        unclear !== undefined && charsetChoice(unclear, choices.charset ?? ""),
        element("fieldset", {},
            element("legend", {}, text("direction")),
            radio(format.icalendar, text("toIcs")),
            radio(format.vcalendar, text("toVcs"))),
        (diary.advises("--count-means") || choices.countMeans) && element("label", { class: "block" },
            text("countMeans"),
            element("select", { id: "count", change: (/** @type {Event} */ event) =>
                run(choose({ countMeans: /** @type {HTMLSelectElement} */ (event.target).value })) },
                element("option", { value: "dates" }, text("countDates")),
                element("option", { value: "periods", selected: choices.countMeans === "periods" }, text("countPeriods")))),
        shared && element("label", {}, element("input", {
            type: "checkbox", id: "distinct", checked: choices.distinctUids === "yes",
            change: (/** @type {Event} */ event) =>
                run(choose({ distinctUids: /** @type {HTMLInputElement} */ (event.target).checked ? "yes" : "no" })),
        }), text("distinctUids")));
}

/** @param {number} count @param {string} chosen */
function zoneChoice(count, chosen) {
    const own = Intl.DateTimeFormat().resolvedOptions().timeZone;
    const names = Intl.supportedValuesOf("timeZone");
    return element("label", { class: "block" },
        element("b", {}, text("zone")), text("zoneLocal", count),
        element("select", { id: "zone", change: (/** @type {Event} */ event) =>
            run(choose({ zone: /** @type {HTMLSelectElement} */ (event.target).value })) },
            element("option", { value: "" }, text("zoneNone")),
            own && element("option", { value: own, selected: chosen === own }, text("zoneYours", own)),
            names.filter((name) => name !== own).map((name) =>
                element("option", { value: name, selected: chosen === name }, name.replaceAll("_", " ")))));
}

/** @param {Uint8Array} unclear @param {string} chosen */
function charsetChoice(unclear, chosen) {
    const option = (/** @type {string} */ name) => {
        const preview = element("span", { class: "preview", dir: "auto" }, "…");
        ask({ task: "texts", calendar: unclear, charset: name }).then(
            (/** @type {string[]} */ texts) => {
                const words = texts.flatMap((each) => each.split(/\s+/)).filter((word) => /[^\x00-\x7f]/.test(word));
                preview.textContent = [...new Set(words)].slice(0, 6).join(" · ");
            },
            () => preview.closest("label")?.remove());
        return element("label", { class: "charset" },
            element("input", { type: "radio", name: "charset", id: `charset-${name || "auto"}`, value: name,
                checked: chosen === name, change: () => run(choose({ charset: name })) }),
            element("span", { class: "charset-name" }, name || text("charsetNone")), preview);
    };
    return element("fieldset", { class: "charsets" },
        element("legend", {}, text("charset")),
        element("p", { class: "faint" }, text("charsetWhy")),
        option(""), charsets.map(option));
}

// --- The views -------------------------------------------------------------------------------------

/** Whether the views show an entry, as the person wants. @param {Diary} diary */
const fitting = (diary) => (/** @type {number} */ index) =>
    (!view.noted || diary.concern(index) > 0) &&
    (view.code === undefined || diary.entries[index].notes.includes(view.code));

function drawView() {
    if (open === undefined) return;
    const { diary } = open;
    const fits = fitting(diary);
    const show = (/** @type {number} */ index) => run(showEntry(diary, index));
    const room = element("div", { class: "view" });
    const count = element("span", { class: "faint", "aria-live": "polite" });
    const draw = () => {
        const list = view.name === "list" || view.words !== "";
        for (const name of ["month", "list"]) byId(`view-${name}`)?.setAttribute("aria-pressed", String((name === "list") === list));
        count.textContent = "";
        fill(room, list
            ? listView({ diary, fits, show, words: view.words }, (found) => { count.textContent = text("matches", found); })
            : monthView({ diary, fits, show }, view));
    };
    const tab = (/** @type {"month" | "list"} */ name) => element("button", {
        id: `view-${name}`, click: () => { view.name = name; view.words = ""; input.value = ""; draw(); },
    }, text(name));
    const input = element("input", { type: "search", id: "search", placeholder: text("searchHint"), "aria-label": text("search"),
        value: view.words, input: () => { view.words = input.value.trim(); draw(); } });
    const concerned = diary.entries.some((_, index) => diary.concern(index) > 0);
    fill(byId("diary"),
        element("div", { class: "toolbar" },
            element("div", { class: "tabs", role: "group", "aria-label": text("view") }, tab("month"), tab("list")),
            input,
            concerned && view.code === undefined && element("label", { class: "check" },
                element("input", { type: "checkbox", id: "noted", checked: view.noted, change: (/** @type {Event} */ event) => {
                    view.noted = /** @type {HTMLInputElement} */ (event.target).checked;
                    draw();
                } }), text("onlyNoted")),
            count),
        view.code !== undefined && element("p", { class: "filter" },
            element("span", {}, text("showingKind", diary.kinds.get(view.code)?.meaning ?? "")),
            element("button", { class: "quiet", click: () => { view.code = undefined; drawView(); } }, text("showAll"))),
        room);
    draw();
}

// --- The start -------------------------------------------------------------------------------------

function drawStart() {
    document.documentElement.lang = language();
    document.title = text("pageTitle");
    const files = element("input", { type: "file", multiple: true, hidden: true, id: "files", "aria-hidden": "true",
        change: () => { run(openFiles(chosenFiles(/** @type {FileList} */ (files.files)))); } });
    const folder = element("input", { type: "file", webkitdirectory: true, hidden: true, id: "folder", "aria-hidden": "true",
        change: () => { run(openFiles(chosenFiles(/** @type {FileList} */ (folder.files)))); } });
    const pick = (/** @type {HTMLInputElement} */ input) => () => { input.value = ""; input.click(); };
    fill(byId("languages"), Object.keys(languages).map((name) => element("button", {
        class: "quiet", lang: name, "aria-pressed": name === language(),
        click: () => changeLanguage(/** @type {import("./texts.js").Language} */ (name)),
    }, name === "de" ? "Deutsch" : "English")));
    byId("languages").setAttribute("aria-label", text("language"));
    const promise = (/** @type {string} */ picture, /** @type {import("./texts.js").TextName} */ name, /** @type {import("./texts.js").TextName} */ more) =>
        element("li", {}, drawing(picture), element("div", {}, element("h2", {}, text(name)), element("p", {}, text(more))));
    fill(byId("start"),
        element("h1", {}, text("title")),
        element("p", { class: "intro" }, text("intro")),
        element("div", { class: "drop", id: "drop" },
            drawing("hero"),
            element("p", { class: "big" }, text("dropHere")),
            element("p", { class: "faint" }, text("dropKinds")),
            element("div", { class: "buttons" },
                element("button", { class: "primary", id: "choose", click: pick(files) }, text("chooseFiles")),
                element("button", { id: "choose-folder", click: pick(folder) }, text("chooseFolder")),
                element("button", { id: "paste", click: showPaste }, text("pasteText"))),
            files, folder,
            element("button", { class: "quiet", id: "example", click: () =>
                run(openFiles([{ name: "example.vcs", data: new Blob([example]) }])) }, text("example"))),
        element("ul", { class: "promises" },
            promise("home", "promisePrivate", "promisePrivateMore"),
            promise("checked", "promiseWhole", "promiseWholeMore"),
            promise("fit", "promiseFits", "promiseFitsMore")));
    byId("licences-button").textContent = text("licences");
    byId("licences-button").onclick = showLicences;
    fill(byId("working"), element("div", { class: "card working" },
        element("h1", {}, text("working")),
        element("progress", { id: "bar", "aria-label": text("working"), max: 1, value: 0 }),
        element("p", { id: "done", class: "faint" }),
        element("button", { id: "cancel", click: cancel }, text("cancel"))));
}

/** The licences of what is in the page, which travels alone. */
function showLicences() {
    const dialog = /** @type {HTMLDialogElement} */ (byId("licences"));
    const whole = /** @type {HTMLTemplateElement} */ (byId("licences-text")).content.textContent ?? "";
    fill(dialog,
        element("header", {}, element("h2", { id: "licences-title" }, text("licences")),
            element("button", { class: "quiet icon", "aria-label": text("close"), title: text("close"), click: () => dialog.close() }, "×")),
        element("pre", { lang: "en", tabindex: 0, "aria-label": text("licences") }, whole));
    dialog.showModal();
}

function cancel() {
    ++begun;
    stopWorker();
    if (open === undefined) startAgain();
    else showOpened();
    announce(text("cancelled"));
}

function showPaste() {
    const dialog = /** @type {HTMLDialogElement} */ (byId("paste-dialog"));
    const area = element("textarea", { id: "pasted", rows: 12, spellcheck: "false", "aria-label": text("pasteLabel") });
    fill(dialog,
        element("header", {}, element("h2", { id: "paste-title" }, text("pasteTitle")),
            element("button", { class: "quiet icon", "aria-label": text("close"), title: text("close"), click: () => dialog.close() }, "×")),
        element("p", { class: "faint" }, text("pasteHelp")),
        area,
        element("div", { class: "buttons" }, element("button", { class: "primary", id: "open-pasted", click: () => {
            dialog.close();
            openText(area.value);
        } }, text("open"))));
    dialog.showModal();
    area.focus();
}

/** @param {string} pasted */
function openText(pasted) {
    // A browser's text has its own ends of lines.
    const lines = pasted.replace(/\r?\n/g, "\r\n");
    run(openFiles([{ name: `${text("calendarName")}.txt`, data: new Blob([lines]) }]));
}

/** @param {import("./texts.js").Language} name */
function changeLanguage(name) {
    useLanguage(name);
    try {
        localStorage.setItem("language", name);
    } catch {
        // Remembering it is a convenience.
    }
    drawStart();
    if (open !== undefined) showOpened();
    else if (!byId("problem").hidden) startAgain();
    /** @type {HTMLElement | null} */ (byId("languages").querySelector("[aria-pressed=true]"))?.focus();
}

/** @returns {import("./texts.js").Language} */
function firstLanguage() {
    try {
        const known = localStorage.getItem("language");
        if (known === "en" || known === "de") return known;
    } catch {
        // A page from a disk may have no storage.
    }
    return navigator.language.startsWith("de") ? "de" : "en";
}

function listenForDrops() {
    let inside = 0;
    const mark = () => document.body.classList.toggle("dragging", inside > 0);
    addEventListener("dragenter", (event) => { event.preventDefault(); ++inside; mark(); });
    addEventListener("dragleave", () => { inside = Math.max(0, inside - 1); mark(); });
    addEventListener("dragover", (event) => event.preventDefault());
    addEventListener("drop", (event) => {
        event.preventDefault();
        inside = 0;
        mark();
        if (event.dataTransfer) run(openFiles(droppedFiles(event.dataTransfer)));
    });
    addEventListener("paste", (event) => {
        if (event.target instanceof HTMLInputElement || event.target instanceof HTMLTextAreaElement) return;
        const { files } = event.clipboardData ?? { files: undefined };
        const pasted = event.clipboardData?.getData("text/plain") ?? "";
        if (files && files.length > 0) run(openFiles(chosenFiles(files)));
        else if (pasted.trim() !== "") openText(pasted);
    });
}

/** Paper has all entries, where the page draws those in sight. */
function listenForPrinting() {
    addEventListener("beforeprint", () => {
        if (open !== undefined) byId("diary").append(printedList(open.diary, fitting(open.diary), view.words));
    });
    addEventListener("afterprint", () => byId("printed")?.remove());
}

/** The engine's bytes, which stand packed in the page. */
async function engineBytes() {
    const packed = Uint8Array.from(atob(byId("engine").textContent ?? ""), (character) => character.charCodeAt(0));
    return new Response(new Blob([packed]).stream().pipeThrough(new DecompressionStream("deflate-raw"))).arrayBuffer();
}

async function start() {
    useLanguage(firstLanguage());
    drawStart();
    showState("start");
    if (typeof DecompressionStream === "undefined" || typeof Intl.supportedValuesOf === "undefined")
        return showFailure(new Reason(text("tooOld")));
    engineModule = await WebAssembly.compile(await engineBytes());
    let version;
    ({ kinds, version } = await startWorker());
    byId("version").textContent = `QelUtility ${version}`;
    listenForDrops();
    listenForPrinting();
    document.body.dataset.ready = String(Math.round(performance.now()));
}

run(start());
