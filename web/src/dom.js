/** Elements in one call. */

/** @typedef {Node | string | null | undefined | false | any[]} Child */

/**
 * @template {keyof HTMLElementTagNameMap} Tag
 * @param {Tag} tag
 * @param {Record<string, unknown>} attributes functions become listeners, false leaves one out
 * @param {Child[]} children
 * @returns {HTMLElementTagNameMap[Tag]}
 */
export function element(tag, attributes = {}, ...children) {
    const made = document.createElement(tag);
    for (const [name, value] of Object.entries(attributes)) {
        if (typeof value === "function") made.addEventListener(name, /** @type {EventListener} */ (value));
        else if (name.startsWith("aria-") && value !== false) made.setAttribute(name, String(value));
        else if (name === "aria-pressed") made.setAttribute(name, "false");
        else if (value === true) made.setAttribute(name, "");
        else if (value !== false && value !== undefined && value !== null) made.setAttribute(name, String(value));
    }
    made.append(...nodes(children));
    return made;
}

/** @param {Child[]} children @returns {(Node | string)[]} */
function nodes(children) {
    return children.flatMap((child) => {
        if (Array.isArray(child)) return nodes(child);
        return child === null || child === undefined || child === false ? [] : [child];
    });
}

/** @param {string} id */
export const byId = (id) => /** @type {HTMLElement} */ (document.getElementById(id));

/** A drawing of page.html. @param {string} name its class */
export const drawing = (name) =>
    /** @type {Element} */ (/** @type {HTMLTemplateElement} */ (byId("drawings")).content.querySelector(`.${name}`)).cloneNode(true);

/** @param {Element} parent @param {Child[]} children */
export function fill(parent, ...children) {
    parent.replaceChildren(...nodes(children));
}

/** Hands a Blob to the person as a file. @param {Blob} blob @param {string} name */
export function saveAs(blob, name) {
    const link = element("a", { href: URL.createObjectURL(blob), download: name });
    document.body.append(link);
    link.click();
    link.remove();
    setTimeout(() => URL.revokeObjectURL(link.href), 60000);
}
