// bundle.mjs ENGINE.wasm RESULT.html: the page as one file, with engine, script and style inside.
import { createHash } from "node:crypto";
import { mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";
import { deflateRawSync } from "node:zlib";

const folder = join(dirname(fileURLToPath(import.meta.url)), "..");
const [engine, result] = process.argv.slice(2);

/** The module and all that it imports, in an order in which each stands after what it needs. */
function modules(path, known = new Map()) {
    if (known.has(path)) return known;
    const source = readFileSync(path, "utf8");
    known.set(path, undefined);
    for (const [, from] of source.matchAll(/^import [^;]*? from "(\.[^"]*)";/gm)) modules(resolve(dirname(path), from), known);
    known.delete(path);
    return known.set(path, source);
}

/** All modules as one script: imports go, exports become plain names, each module a scope of its own. */
function joined(entry) {
    const path = join(folder, "src", entry);
    const parts = [...modules(path)].map(([name, source]) => {
        const exported = [...source.matchAll(/^export (?:async )?(?:function|const|let|class) (\w+)/gm)].map((match) => match[1]);
        const body = source
            .replace(/^import (?:\* as )?([^;]*?) from "(\.[^"]*)";/gm, (_, names, from) =>
                `const ${names} = modules[${JSON.stringify(idOf(resolve(dirname(name), from)))}];`)
            .replace(/^export /gm, "");
        return `modules[${JSON.stringify(idOf(name))}] = (() => {\n${body}\nreturn { ${exported.join(", ")} };\n})();`;
    });
    return `(() => {\n"use strict";\nconst modules = {};\n${parts.join("\n")}\n})();`;
}

const idOf = (path) => path.slice(join(folder, "src").length + 1);
// Comments that begin a line, and the indentation, are for readers of the sources.
const lean = (script) => script.replace(/^[ \t]*\/\*\*(?:(?!\*\/)[^])*\*\/[ \t]*$/gm, "").replace(/^\s*\/\/.*$/gm, "").replace(/^\s+/gm, "");

const worker = lean(joined("worker.js"));
const script = `globalThis.qelWorkerSource = ${JSON.stringify(worker)};\n${lean(joined("page.js"))}`.replaceAll("</script", "<\\/script");
const style = readFileSync(join(folder, "page.css"), "utf8").replace(/\/\*[^]*?\*\//g, "").replace(/^\s+/gm, "");
const hash = createHash("sha256").update(script).digest("base64");
const policy = [
    "default-src 'none'",
    `script-src 'sha256-${hash}' 'wasm-unsafe-eval' blob:`,
    // Rows of the list are placed by style attributes, and the report, which inherits this, has its own style.
    "style-src 'unsafe-inline'",
    "img-src data:",
    "worker-src blob:",
    "connect-src 'none'",
    "form-action 'none'",
    "base-uri 'none'",
].join("; ");

const licences = readFileSync(join(folder, "../docs/licences.md"), "utf8").replaceAll("&", "&amp;").replaceAll("<", "&lt;");
const parts = { POLICY: policy, STYLE: style, SCRIPT: script, LICENCES: licences, ENGINE: deflateRawSync(readFileSync(engine), { level: 9 }).toString("base64") };
const page = readFileSync(join(folder, "page.html"), "utf8").replace(/%([A-Z]+)%/g, (whole, name) => parts[name] ?? whole);
mkdirSync(dirname(resolve(result)), { recursive: true });
writeFileSync(result, page);
