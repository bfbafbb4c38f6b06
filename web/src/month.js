/** The month view: a grid of days, and beneath it the entries of the chosen day. */
import * as dates from "./dates.js";
import { element, fill } from "./dom.js";
import { entryButton, timeText } from "./entry.js";
import { text } from "./texts.js";

/** Entries of a day that have room in its cell, and in the list below the month. */
const mostInCell = 3;
const mostBelow = 50;

/**
 * @typedef {import("./diary.js").Diary} Diary
 * @typedef {{diary: Diary, fits: (index: number) => boolean, show: (index: number) => void}} ViewOptions
 */

/**
 * @param {ViewOptions} options
 * @param {{day?: number}} kept the chosen day, from one drawing to the next
 */
export function monthView({ diary, fits, show }, kept) {
    const view = element("div", { class: "month" });
    const heading = element("h2", { class: "unseen", "aria-live": "polite" });
    const grid = element("table", { class: "grid" });
    const ofDay = element("div", { class: "of-day" });
    let chosen = (kept.day ??= startingDay(diary, fits));

    const span = diary.span() ?? { first: chosen, last: chosen };
    const thisYear = dates.dateOfDay(dates.today()).getUTCFullYear();
    const firstYear = dates.dateOfDay(span.first).getUTCFullYear();
    const lastYear = Math.max(dates.dateOfDay(span.last).getUTCFullYear(), firstYear, thisYear + 4);
    const years = Array.from({ length: Math.min(lastYear - firstYear + 1, 1000) }, (_, i) => firstYear + i);
    const monthSelect = element(
        "select",
        { "aria-label": text("monthLabel"), change: () => choose(dates.dayNumber(Number(yearSelect.value), Number(monthSelect.value), 1)) },
        Array.from({ length: 12 }, (_, i) => element("option", { value: i }, dates.monthName(i))),
    );
    const yearSelect = element(
        "select",
        { "aria-label": text("yearLabel"), change: () => choose(dates.dayNumber(Number(yearSelect.value), Number(monthSelect.value), 1)) },
        years.map((year) => element("option", { value: year }, String(year))),
    );
    /** @param {"previousUsed" | "previousMonth" | "nextMonth" | "nextUsed"} name @param {string} sign @param {() => void} go */
    const button = (name, sign, go) =>
        element("button", { class: "quiet icon", "aria-label": text(name), title: text(name), click: go }, sign);
    const bar = element(
        "div",
        { class: "month-bar" },
        heading,
        element("span", { class: "selects" }, monthSelect, yearSelect),
        element(
            "span",
            { class: "arrows" },
            button("previousUsed", "«", () => jump(-1)),
            button("previousMonth", "‹", () => turn(-1)),
            button("nextMonth", "›", () => turn(1)),
            button("nextUsed", "»", () => jump(1)),
        ),
    );

    /** @param {number} by */
    function turn(by) {
        const date = dates.dateOfDay(chosen);
        choose(dates.dayNumber(date.getUTCFullYear(), date.getUTCMonth() + by, 1));
    }

    /** @param {1 | -1} direction */
    function jump(direction) {
        const date = dates.dateOfDay(chosen);
        const edge = dates.dayNumber(date.getUTCFullYear(), date.getUTCMonth() + (direction > 0 ? 1 : 0), 1);
        const found = diary.nearest(direction > 0 ? edge - 1 : edge, direction, fits);
        if (found !== undefined) choose(found);
    }

    /** @param {number} day @param {boolean} [focus] */
    function choose(day, focus = false) {
        chosen = kept.day = day;
        draw();
        if (focus) /** @type {HTMLElement} */ (grid.querySelector("[tabindex='0']")).focus();
    }

    /** @param {KeyboardEvent} event */
    function onKey(event) {
        const step = { ArrowLeft: -1, ArrowRight: 1, ArrowUp: -7, ArrowDown: 7 }[event.key];
        if (step !== undefined) choose(chosen + step, true);
        else if (event.key === "PageUp" || event.key === "PageDown") {
            turn(event.key === "PageUp" ? -1 : 1);
            /** @type {HTMLElement} */ (grid.querySelector("[tabindex='0']")).focus();
        } else return;
        event.preventDefault();
    }

    function draw() {
        const date = dates.dateOfDay(chosen);
        const [year, month] = [date.getUTCFullYear(), date.getUTCMonth()];
        const first = dates.dayNumber(year, month, 1);
        const after = dates.dayNumber(year, month + 1, 1);
        const start = first - dates.weekdayOf(first);
        const weeks = Math.ceil((after - start) / 7);
        const days = diary.days(start, weeks * 7, fits);
        heading.textContent = dates.monthAndYear(chosen);
        monthSelect.value = String(month);
        yearSelect.value = String(year);
        const header = Array.from({ length: 7 }, (_, i) =>
            element("th", { scope: "col", abbr: dates.weekdayName(i, "long") }, dates.weekdayName(i, "short")),
        );
        const rows = Array.from({ length: weeks }, (_, week) =>
            element("tr", {}, Array.from({ length: 7 }, (_, i) => cell(start + week * 7 + i, days[week * 7 + i], first, after))),
        );
        fill(grid, element("thead", {}, element("tr", {}, header)), element("tbody", {}, rows));
        const entries = days[chosen - start];
        fill(
            ofDay,
            element("h3", {}, dates.longDay(chosen)),
            entries.length === 0
                ? element("p", { class: "faint" }, text("noneOnDay"))
                : element("ul", { class: "rows" }, entries.slice(0, mostBelow).map((each) =>
                      element("li", {}, entryButton(diary, each.entry, timeText(diary, each), show)))),
            entries.length > mostBelow && element("p", { class: "faint" }, text("moreInList", entries.length - mostBelow)),
        );
    }

    /**
     * @param {number} day
     * @param {import("./diary.js").Occurrence[]} entries
     * @param {number} first
     * @param {number} after
     */
    function cell(day, entries, first, after) {
        const outside = day < first || day >= after;
        const classes = [outside && "outside", dates.weekdayOf(day) > 4 && "weekend", day === chosen && "chosen", day === dates.today() && "today"];
        const shown = entries.length > mostInCell ? entries.slice(0, mostInCell - 1) : entries;
        const label = `${dates.longDay(day)}, ${text("matches", entries.length)}`;
        return element(
            "td",
            { class: classes.filter(Boolean).join(" ") || false },
            element(
                "button",
                {
                    class: "day",
                    "aria-pressed": day === chosen,
                    "aria-current": day === dates.today() ? "date" : false,
                    tabindex: day === chosen ? 0 : -1,
                    click: () => choose(day, true),
                    keydown: onKey,
                },
                element("span", { class: "unseen" }, label),
                element("span", { class: "number", "aria-hidden": true }, String(dates.dateOfDay(day).getUTCDate())),
                element(
                    "span",
                    { class: "chips", "aria-hidden": "true" },
                    shown.map((each) => chip(each, day)),
                    entries.length > shown.length &&
                        element("span", { class: "more" }, text("moreOfDay", entries.length - shown.length)),
                ),
            ),
        );
    }

    /** @param {import("./diary.js").Occurrence} occurrence @param {number} day */
    function chip(occurrence, day) {
        const { title, kind } = diary.entries[occurrence.entry];
        const allDay = diary.isAllDay(occurrence);
        const classes = [
            `chip kind-${kind} concern-${diary.concern(occurrence.entry)}`,
            allDay && "all-day",
            !occurrence.first && "from",
            !occurrence.last && "on",
        ];
        // A bar of several days has its title on the first, and on each Monday.
        const titled = occurrence.first || dates.weekdayOf(day) === 0;
        return element(
            "span",
            { class: classes.filter(Boolean).join(" ") },
            !allDay && element("b", {}, dates.timeOfDay(occurrence.minute)),
            element("span", { dir: "auto" }, titled ? title || text("untitled") : "\u00a0"),
        );
    }

    draw();
    fill(view, bar, grid, ofDay);
    return view;
}

/** Today where something is on near it, else the last entry of an old diary. @param {Diary} diary @param {(index: number) => boolean} fits */
function startingDay(diary, fits) {
    const today = dates.today();
    const single = (/** @type {number} */ index) => fits(index) && diary.entries[index].dates === undefined;
    const last = diary.nearest(today + 1, -1, single) ?? diary.nearest(today, 1, single);
    if (last !== undefined && Math.abs(last - today) > 62) return last;
    return diary.nearest(today - 1, 1, fits) ?? last ?? diary.nearest(today + 1, -1, fits) ?? today;
}
