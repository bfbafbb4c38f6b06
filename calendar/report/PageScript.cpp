#include "calendar/report/PageScript.h"

namespace qel::calendar {

const char kPageScript[] = R"js(
(() => {
  const box = document.getElementById("find");
  const found = document.getElementById("found");
  const sections = [...document.querySelectorAll("#entries>section")];
  let entries;
  const plain = (text) => text.normalize("NFKD").replace(/\p{M}/gu, "").toLowerCase();
  const readEntries = () => sections.map((section) =>
    [...section.querySelectorAll("article,.one")].map((item) => [item, plain(item.textContent)]));
  const search = () => {
    entries ??= readEntries();
    const words = plain(box.value).split(/\s+/).filter(Boolean);
    let matches = 0;
    sections.forEach((section, number) => {
      let inSection = 0;
      for (const [item, text] of entries[number]) {
        item.hidden = !words.every((word) => text.includes(word));
        if (!item.hidden) ++inSection;
      }
      section.hidden = words.length > 0 && inSection === 0;
      matches += inSection;
    });
    found.value = words.length === 0 ? "" : matches === 1 ? "1 entry" : matches + " entries";
  };
  let waiting;
  box.addEventListener("input", () => {
    clearTimeout(waiting);
    waiting = setTimeout(search, 150);
  });
  box.parentElement.hidden = false;
  if (box.value) search();
})();
)js";

const char kPageScriptDigest[] = "sha256-VXhKP1NHffHu2VheuTKpdKUE3H5asd/SWlnUxvbOpVg=";

}  // namespace qel::calendar
