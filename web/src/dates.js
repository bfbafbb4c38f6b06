/** Times as the engine gives them, in the words of the page's language. */
import { language, text } from "./texts.js";

/** Minutes between 1900 and 1970. */
const minutesTo1970 = -Date.UTC(1900, 0, 1) / 60000;
export const minutesOfDay = 1440;

/** @typedef {{minute: number, clock: number}} Instant */

/**
 * The minute on the clock that the page shows: the entry's own, and for times in UTC the computer's,
 * as calendar programs do.
 * @param {number} minute
 * @param {number | undefined} clock
 * @param {number | undefined} day
 */
export function shownMinute(minute, clock, day) {
    if (clock !== 1 || day) return minute;
    const moment = new Date((minute - minutesTo1970) * 60000);
    return minute - moment.getTimezoneOffset();
}

/** The day number of a minute. @param {number} minute */
export const dayOf = (minute) => Math.floor(minute / minutesOfDay);

/** @param {number} year @param {number} month 0 for January @param {number} day */
export const dayNumber = (year, month, day) => {
    const date = new Date(0);
    date.setUTCFullYear(year, month, day);
    return Math.floor((date.getTime() / 60000 + minutesTo1970) / minutesOfDay);
};

/** Midnight of a day, as a Date whose UTC fields are the wall clock's. @param {number} day */
export const dateOfDay = (day) => new Date((day * minutesOfDay - minutesTo1970) * 60000);

export const today = () => {
    const now = new Date();
    return dayNumber(now.getFullYear(), now.getMonth(), now.getDate());
};

/** "20261122". @param {number} day */
export const compact = (day) => dateOfDay(day).toISOString().slice(0, 10).replaceAll("-", "");

/** @type {Map<string, Intl.DateTimeFormat>} */
const formats = new Map();

/** @param {Date} date @param {Intl.DateTimeFormatOptions} options */
function formatted(date, options) {
    const name = language() + JSON.stringify(options);
    let known = formats.get(name);
    if (known === undefined) {
        // English is written with 24 hours too: the phones' files are.
        known = new Intl.DateTimeFormat(language() === "en" ? "en-GB" : language(), { timeZone: "UTC", ...options });
        formats.set(name, known);
    }
    return known.format(date);
}

/** @param {number} day */
export const longDay = (day) =>
    formatted(dateOfDay(day), { weekday: "long", day: "numeric", month: "long", year: "numeric" });
/** @param {number} day */
export const mediumDay = (day) =>
    formatted(dateOfDay(day), { weekday: "short", day: "numeric", month: "short", year: "numeric" });
/** @param {number} day */
export const monthAndYear = (day) => formatted(dateOfDay(day), { month: "long", year: "numeric" });
/** @param {number} day */
export const shortMonthAndYear = (day) => formatted(dateOfDay(day), { month: "short", year: "numeric" });
/** @param {number} month 0 for January */
export const monthName = (month) => formatted(new Date(Date.UTC(2001, month, 1)), { month: "long" });
/** @param {number} weekday 0 for Monday @param {"short" | "long"} width */
export const weekdayName = (weekday, width) =>
    formatted(new Date(Date.UTC(2001, 0, 1 + weekday)), { weekday: width });
/** @param {number} minute */
export const timeOfDay = (minute) =>
    formatted(new Date((minute - minutesTo1970) * 60000), { hour: "2-digit", minute: "2-digit" });

/** 0 for Monday. @param {number} day */
export const weekdayOf = (day) => (((day % 7) + 7) % 7);

/**
 * A time of the engine's JSON, "20050615T103000Z", as the page shows it.
 * @param {string} written
 */
export function writtenTime(written) {
    const [, year, month, day, hour, minute, utc] =
        /^(\d{4})(\d\d)(\d\d)(?:T(\d\d)(\d\d)\d\d(Z?))?$/.exec(written) ?? [];
    if (year === undefined) return written;
    const start = dayNumber(Number(year), Number(month) - 1, Number(day));
    if (hour === undefined) return mediumDay(start);
    const at = shownMinute(start * minutesOfDay + Number(hour) * 60 + Number(minute), utc ? 1 : 0, 0);
    return dayAndTime(at, 0);
}

/** @param {number} minute @param {number | undefined} allDay */
export const dayAndTime = (minute, allDay) =>
    allDay ? mediumDay(dayOf(minute)) : `${mediumDay(dayOf(minute))}, ${timeOfDay(minute)}`;

/** A length in words. @param {number} minutes */
export function lengthInWords(minutes) {
    if (minutes % minutesOfDay === 0) return text("days", minutes / minutesOfDay);
    if (minutes % 60 === 0) return text("hours", minutes / 60);
    return text("minutes", minutes);
}

/** @param {number} bytes */
export function sizeInWords(bytes) {
    const [unit, size] = bytes < 1e6 ? ["kB", bytes / 1e3] : ["MB", bytes / 1e6];
    const digits = size < 10 ? 1 : 0;
    return `${size.toLocaleString(language(), { maximumFractionDigits: digits })} ${unit}`;
}
