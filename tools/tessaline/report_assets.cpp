#include "report_assets.h"

namespace tessaline::cli {

const std::string_view kReportStyle = R"css(
:root { --error: #c8102e; --muted: #5f6368; --line: #dadce0; }
* { box-sizing: border-box; }
body { margin: 0; font: 14px/1.4 system-ui, -apple-system, "Segoe UI", sans-serif; color: #202124;
  background: #f8f9fa; }
header { position: sticky; top: 0; z-index: 1; padding: 12px 20px; background: #fff;
  border-bottom: 1px solid var(--line); }
h1 { margin: 0 0 4px; font-size: 18px; }
.summary { margin: 0 0 8px; color: var(--muted); }
.summary .error-count { color: var(--error); font-weight: 600; }
.controls { display: flex; flex-wrap: wrap; gap: 16px; align-items: center; }
#filter { width: 280px; padding: 6px 10px; font: inherit; border: 1px solid var(--line);
  border-radius: 6px; }
#shown { color: var(--muted); }
main { display: grid; grid-template-columns: repeat(auto-fill, minmax(176px, 1fr)); gap: 12px;
  align-items: start;
  padding: 16px 20px; }
.card { background: #fff; border: 1px solid var(--line); border-radius: 8px; padding: 12px;
  overflow-wrap: anywhere; }
.card[hidden] { display: none; }
.card.has-errors { border: 2px solid var(--error); }
.picture { display: block; width: 128px; height: 128px; margin: 0 auto 8px;
  background: repeating-conic-gradient(#e9e9e9 0 25%, #fff 0 50%) 0 0 / 16px 16px; }
.picture img { display: block; width: 128px; height: 128px; }
.no-image { display: flex; align-items: center; justify-content: center; color: var(--muted); }
.key { margin: 0; font: 600 13px/1.3 ui-monospace, "DejaVu Sans Mono", monospace;
  text-align: center; }
.errors { margin: 8px 0 0; padding-left: 18px; color: var(--error); font-size: 12px; }
.card.image-failed .picture { outline: 2px dashed var(--error); }
#no-match { padding: 0 20px; color: var(--muted); }
)css";

const std::string_view kReportScript = R"js(
"use strict";
// Called by each image's load and error handlers.
function tessalineImageDone(img, ok) {
  img.dataset.loaded = ok ? "1" : "0";
  if (!ok) img.closest(".card").classList.add("image-failed");
  tessalineCountImages();
}
function tessalineCountImages() {
  const images = document.querySelectorAll("img.symbol");
  let loaded = 0, failed = 0;
  images.forEach((img) => {
    if (img.dataset.loaded === "1") loaded++;
    else if (img.dataset.loaded === "0") failed++;
  });
  document.body.dataset.imagesTotal = images.length;
  document.body.dataset.imagesLoaded = loaded;
  document.body.dataset.imagesFailed = failed;
}
function tessalineApplyFilter() {
  const query = document.getElementById("filter").value.trim().toLowerCase();
  const onlyErrors = document.getElementById("only-errors").checked;
  const cards = document.querySelectorAll(".card");
  let shown = 0;
  cards.forEach((card) => {
    const visible = card.dataset.key.toLowerCase().includes(query) &&
        (!onlyErrors || Number(card.dataset.errors) > 0);
    card.hidden = !visible;
    if (visible) shown++;
  });
  document.getElementById("shown").textContent = shown + " of " + cards.length + " shown";
  document.getElementById("no-match").hidden = shown !== 0;
  document.body.dataset.visible = shown;
}
// The controls start from the query or the fragment, so a link such as
// index.html?filter=arrow&errors=1 opens the page already filtered.
function tessalineStart() {
  const params = new URLSearchParams(location.search);
  new URLSearchParams(location.hash.slice(1)).forEach((value, name) => params.set(name, value));
  const filter = document.getElementById("filter");
  const onlyErrors = document.getElementById("only-errors");
  if (params.has("filter")) filter.value = params.get("filter");
  onlyErrors.checked = params.get("errors") === "1";
  filter.addEventListener("input", tessalineApplyFilter);
  onlyErrors.addEventListener("change", tessalineApplyFilter);
  document.addEventListener("keydown", (event) => {
    if (event.key === "/" && document.activeElement !== filter) {
      event.preventDefault();
      filter.focus();
    }
  });
  tessalineApplyFilter();
  tessalineCountImages();
  document.body.dataset.ready = "1";
}
)js";

}  // namespace tessaline::cli
