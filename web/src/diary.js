/** A converted calendar as the views ask for it. */
import { compact, dayOf, minutesOfDay, shownMinute } from "./dates.js";

/** A multi-day entry is shown on so many of its days. */
const mostDays = 100;

/**
 * @typedef {import("./engine.js").Entry} Entry
 * @typedef {{entry: number, minute: number, begin: number, first: boolean, last: boolean}} Occurrence on one of its days
 */

export class Diary {
    /**
     * @param {import("./worker.js").Converted} converted
     * @param {Entry[]} entries
     * @param {string[]} names of the files
     * @param {import("./engine.js").NoteKind[]} kinds
     */
    constructor(converted, entries, names, kinds) {
        this.converted = converted;
        this.entries = entries;
        this.summary = converted.summary;
        this.names = names;
        this.kinds = new Map(kinds.map((kind) => [kind.code, kind]));
        /** Where each series' dates begin. */
        this.firstDate = new Uint32Array(this.entries.length + 1);
        this.entries.forEach((entry, i) => {
            this.firstDate[i + 1] = this.firstDate[i] + (entry.dates ?? 0);
        });
        /** The entries in the order of their first dates, those without a date at the end. */
        this.order = Array.from(this.entries.keys()).sort((a, b) => this.key(a) - this.key(b) || a - b);
        /** @type {string[] | undefined} */
        this.searched = undefined;
    }

    /** @param {number} index */
    key(index) {
        const { minute, clock, day } = this.entries[index];
        return minute === undefined ? Infinity : shownMinute(minute, clock, day);
    }

    /** The worst of an entry's notes: 0 nothing to look at, 1 changed, 2 lost. @param {number} index */
    concern(index) {
        let worst = 0;
        for (const code of this.entries[index].notes) worst = Math.max(worst, this.concernOf(code));
        return worst;
    }

    /**
     * What the library advises, and whether it is one of the page's choices; the sentence that names the
     * program's option for it is left out.
     * @param {number} code
     */
    advice(code) {
        const whole = this.kinds.get(code)?.advice ?? "";
        const advice = whole.replace(/\s*[^.]*--[a-z][^.]*\./g, "");
        return { advice, choice: advice !== whole };
    }

    /** Whether some note advises an option of the program. @param {string} option */
    advises(option) {
        return this.summary.notes.some(({ code }) => this.kinds.get(code)?.advice.includes(option));
    }

    /** @param {number} code */
    concernOf(code) {
        const kind = this.kinds.get(code);
        if (kind === undefined) return 0;
        if (kind.fate === 2) return 2;
        return kind.severity > 0 ? 1 : 0;
    }

    /**
     * Calls `use` with each minute on which the entry begins between two days.
     * @param {number} index
     * @param {number} from
     * @param {number} to the day after the last
     * @param {(minute: number) => void} use
     */
    eachStart(index, from, to, use) {
        const { minute, clock, day, dates } = this.entries[index];
        if (minute === undefined) return;
        if (dates === undefined) {
            const at = shownMinute(minute, clock, day);
            if (at >= from * minutesOfDay && at < to * minutesOfDay) use(at);
            return;
        }
        const all = this.converted.dates;
        const end = this.firstDate[index + 1];
        // A day more on both sides: times in UTC may move by most of one.
        let low = this.firstDate[index];
        for (let high = end; low < high; ) {
            const middle = (low + high) >> 1;
            if (all[middle] < (from - 1) * minutesOfDay) low = middle + 1;
            else high = middle;
        }
        for (; low < end && all[low] < (to + 1) * minutesOfDay; ++low) {
            const at = shownMinute(all[low], clock, day);
            if (at >= from * minutesOfDay && at < to * minutesOfDay) use(at);
        }
    }

    /**
     * What happens on each of some days, in the order of the time of day.
     * @param {number} from
     * @param {number} count
     * @param {(index: number) => boolean} fits
     */
    days(from, count, fits) {
        /** @type {Occurrence[][]} */
        const days = Array.from({ length: count }, () => []);
        for (let index = 0; index < this.entries.length; ++index) {
            const { length = 0, minute } = this.entries[index];
            if (minute === undefined || !fits(index)) continue;
            const span = Math.min(mostDays, Math.floor(length / minutesOfDay) + 1);
            this.eachStart(index, from - span, from + count, (at) => {
                const first = dayOf(at);
                const last = Math.min(first + mostDays, dayOf(at + Math.max(length, 1) - 1));
                for (let day = Math.max(first, from); day <= last && day < from + count; ++day)
                    days[day - from].push({
                        entry: index, minute: day === first ? at : day * minutesOfDay, begin: at, first: day === first, last: day === last,
                    });
            });
        }
        for (const day of days)
            day.sort((a, b) => Number(this.isAllDay(b)) - Number(this.isAllDay(a)) || a.begin - b.begin || a.entry - b.entry);
        return days;
    }

    /** @param {Occurrence} occurrence */
    isAllDay({ entry, first }) {
        return Boolean(this.entries[entry].day) || !first;
    }

    /** The first and the last day of entries, series by their starts alone. */
    span() {
        let first = Infinity;
        let last = -Infinity;
        for (const index of this.order) {
            const key = this.key(index);
            if (key === Infinity) break;
            first = Math.min(first, key);
            last = Math.max(last, key);
        }
        return first === Infinity ? undefined : { first: dayOf(first), last: dayOf(last) };
    }

    /**
     * The day of the next start after a day, or of the last one before it.
     * @param {number} day
     * @param {1 | -1} direction
     * @param {(index: number) => boolean} fits
     */
    nearest(day, direction, fits) {
        let best = direction > 0 ? Infinity : -Infinity;
        const all = this.converted.dates;
        const consider = (/** @type {number} */ at) => {
            const found = dayOf(at);
            if (direction > 0 ? found > day && found < best : found < day && found > best) best = found;
        };
        this.entries.forEach(({ minute, clock, day: allDay, dates }, index) => {
            if (minute === undefined || !fits(index)) return;
            if (dates === undefined) consider(shownMinute(minute, clock, allDay));
            for (let i = this.firstDate[index]; i < this.firstDate[index + 1]; ++i) consider(all[i]);
        });
        return Number.isFinite(best) ? best : undefined;
    }

    /**
     * @param {string} words
     * @param {(index: number) => boolean} fits
     * @returns {number[]} entries in order that have all the words
     */
    search(words, fits) {
        const wanted = folded(words).split(/\s+/).filter(Boolean);
        if (wanted.length === 0) return this.order.filter(fits);
        this.searched ??= this.entries.map(({ title, place, about }) => folded(`${title}\n${place}\n${about ?? ""}`));
        const searched = this.searched;
        return this.order.filter((index) => wanted.every((word) => searched[index].includes(word)) && fits(index));
    }

    /**
     * The first dates of a series from a day on; at most so many.
     * @param {number} index
     * @param {number} from
     * @param {number} most
     */
    starts(index, from, most) {
        /** @type {number[]} */
        const found = [];
        this.eachStart(index, from, Number.MAX_SAFE_INTEGER / minutesOfDay - 1, (at) => {
            if (found.length < most) found.push(at);
        });
        return found;
    }

    /** @param {number} index @returns {Promise<import("./engine.js").Details>} */
    async details(index) {
        const { blobs, blob, start, size } = this.converted.details;
        return JSON.parse(await blobs[blob[index]].slice(start[index], start[index] + size[index]).text());
    }
}

/** @param {string} words */
const folded = (words) => words.normalize("NFD").replace(/\p{M}/gu, "").toLocaleLowerCase();

/** The last day that the month view knows series on. @param {number} today */
export const horizonOf = (today) => compact(today + 366 * 5);
