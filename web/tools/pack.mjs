// pack.mjs ENGINE.wasm TYPES FOLDER VERSION: the npm package's files in FOLDER, for `npm pack`.
import { copyFileSync, mkdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

const web = join(dirname(fileURLToPath(import.meta.url)), "..");
const [engine, types, folder, version] = process.argv.slice(2);

rmSync(folder, { recursive: true, force: true });
mkdirSync(folder, { recursive: true });
const files = {
    "index.js": join(web, "npm/index.js"),
    "engine.js": join(web, "src/engine.js"),
    "index.d.ts": join(types, "npm/index.d.ts"),
    "engine.d.ts": join(types, "src/engine.d.ts"),
    "engine.wasm": engine,
    "README.md": join(web, "../docs/javascript.md"),
    LICENSE: join(web, "../LICENSE"),
    "licences.md": join(web, "../docs/licences.md"),
};
for (const [name, from] of Object.entries(files)) copyFileSync(from, join(folder, name));
const description = { ...JSON.parse(readFileSync(join(web, "npm/package.json"), "utf8")), version };
writeFileSync(join(folder, "package.json"), `${JSON.stringify(description, null, 4)}\n`);
