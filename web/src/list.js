/** The list of all entries: only the rows in sight are in the page, however many there are. */
import * as dates from "./dates.js";
import { element, fill } from "./dom.js";
import { concernMark, kindText } from "./entry.js";
import { text } from "./texts.js";

const rowHeight = 64;
const spare = 8;
/** Entries that paper has; some hundred pages. */
const mostPrinted = 10000;

/**
 * @param {import("./month.js").ViewOptions & {words: string}} options
 * @param {(count: number) => void} counted
 */
export function listView({ diary, fits, show, words }, counted) {
    const found = diary.search(words, fits);
    counted(found.length);
    if (found.length === 0) return element("p", { class: "faint nothing" }, text("nothingFound"));
    const room = element("div", { class: "room", role: "list", "aria-label": text("list") });
    // Browsers limit the height of elements; beyond it, rows are nearer together than they scroll.
    const height = Math.min(found.length * rowHeight, 8000000);
    room.style.height = `${height}px`;
    const scroller = element("div", { class: "list", tabindex: -1, scroll: () => draw() }, room);
    scroller.style.maxHeight = `${height + 2}px`;
    let active = 0;
    /** @type {string | undefined} */
    let drawn;

    const inSight = () => Math.ceil((scroller.clientHeight || 640) / rowHeight);

    function topRow() {
        const most = Math.max(1, height - (scroller.clientHeight || 640));
        const range = Math.max(0, found.length - inSight());
        return found.length * rowHeight <= 8000000
            ? Math.floor(scroller.scrollTop / rowHeight)
            : Math.floor((Math.min(scroller.scrollTop, most) / most) * range);
    }

    function draw() {
        const top = topRow();
        const from = Math.max(0, top - spare);
        const to = Math.min(found.length, top + inSight() + spare);
        const state = `${from} ${to} ${active}`;
        if (state === drawn) return;
        drawn = state;
        const hadFocus = room.contains(document.activeElement);
        const origin = found.length * rowHeight <= 8000000 ? 0 : scroller.scrollTop - top * rowHeight;
        if (active < from || active >= to) active = top;
        const rows = [];
        for (let i = from; i < to; ++i) {
            const made = row(i);
            made.style.top = `${origin + i * rowHeight}px`;
            rows.push(made);
        }
        fill(room, rows);
        if (hadFocus) focusActive();
    }

    function focusActive() {
        /** @type {HTMLElement | null} */ (room.querySelector("[tabindex='0']"))?.focus({ preventScroll: true });
    }

    /** @param {KeyboardEvent} event */
    function onKey(event) {
        const page = inSight() - 1;
        const step = { ArrowUp: -1, ArrowDown: 1, PageUp: -page, PageDown: page, Home: -found.length, End: found.length }[event.key];
        if (step === undefined) return;
        event.preventDefault();
        active = Math.min(found.length - 1, Math.max(0, active + step));
        const top = topRow();
        if (active < top || active >= top + inSight() - 1)
            scroller.scrollTop = ((active - (step < 0 ? 0 : inSight() - 2)) * rowHeight * height) / (found.length * rowHeight);
        draw();
        focusActive();
    }

    /** @param {number} i */
    function row(i) {
        const { date, month, facts, title, concern } = shown(diary, found[i]);
        return element(
            "div",
            { class: "row", role: "listitem", "aria-setsize": found.length, "aria-posinset": i + 1 },
            element(
                "button",
                { class: "row-button", tabindex: i === active ? 0 : -1, click: () => { active = i; show(found[i]); }, keydown: onKey },
                element(
                    "span",
                    { class: "date" },
                    element("b", {}, date),
                    element("small", {}, month),
                ),
                element(
                    "span",
                    { class: "what" },
                    element("span", { class: "name", dir: "auto" }, title),
                    element("small", { dir: "auto" }, facts),
                ),
                concernMark(concern),
            ),
        );
    }

    draw();
    // Its height is known once it is in the page.
    requestAnimationFrame(() => {
        drawn = undefined;
        draw();
    });
    return scroller;
}

/** What a row shows of an entry. @param {import("./diary.js").Diary} diary @param {number} index */
function shown(diary, index) {
    const entry = diary.entries[index];
    const key = diary.key(index);
    const dated = key !== Infinity;
    const day = dates.dayOf(key);
    const time = dated && (entry.day ? text("allDay") : dates.timeOfDay(key));
    return {
        date: dated ? String(dates.dateOfDay(day).getUTCDate()) : "–",
        month: dated ? dates.shortMonthAndYear(day) : text("undated"),
        title: entry.title || text("untitled"),
        facts: [kindText(entry.kind), time, entry.words, entry.place].filter(Boolean).join(" · "),
        concern: diary.concern(index),
    };
}

/**
 * All entries, for paper.
 * @param {import("./diary.js").Diary} diary
 * @param {(index: number) => boolean} fits
 * @param {string} words
 */
export function printedList(diary, fits, words) {
    const found = diary.search(words, fits);
    const rows = found.slice(0, mostPrinted).map((index) => {
        const { date, month, facts, title } = shown(diary, index);
        return element("li", {}, element("span", {}, `${date} ${month}`),
            element("span", {}, element("b", { dir: "auto" }, title), element("small", { dir: "auto" }, facts)));
    });
    const more = found.length - rows.length;
    return element("ul", { id: "printed" }, rows, more > 0 && element("li", {}, element("span"), text("moreInList", more)));
}
