// The page's texts: whole in each language, and the same steps as in the document.
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";
import { languages } from "../src/texts.js";

const places = (text) => [...new Set(text.match(/\{\d\}/g))].sort();

test("says in each language what it says in English", () => {
    const { en, ...others } = languages;
    for (const [language, texts] of Object.entries(others)) {
        assert.deepEqual(Object.keys(texts).sort(), Object.keys(en).sort());
        for (const name of Object.keys(en).filter((each) => each !== "steps")) {
            assert.deepEqual(places(texts[name]), places(en[name]), `${language}: ${name}`);
            assert.equal(texts[name].split("|").length, en[name].split("|").length, `${language}: ${name}`);
        }
        assert.deepEqual(Object.keys(texts.steps), Object.keys(en.steps));
    }
    for (const texts of Object.values(languages))
        for (const steps of Object.values(texts.steps)) assert.equal(steps.length, 3);
});

test("has the steps of docs/into-your-calendar.md", () => {
    const document = readFileSync(new URL("../../docs/into-your-calendar.md", import.meta.url), "utf8");
    const sections = document.split(/^## /m).slice(1).map((section) => {
        const [program, ...lines] = section.split("\n");
        return [program, lines.filter((line) => /^\d\. /.test(line)).map((line) => line.slice(3))];
    });
    assert.deepEqual(sections, Object.entries(languages.en.steps));
});
