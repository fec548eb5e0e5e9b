// The studio's one page: a payload editor with the examples preloaded, the collapsed notification
// as the phone shows it, the expanded preview in light and dark side by side, what inspect says and
// what became of each download. Plain HTML, with its script and style served as files of their own
// (the studio's Content-Security-Policy allows nothing inline) and nothing loaded from elsewhere,
// so it works offline. Edits re-render a moment after typing stops; a tap on a preview says what
// the tap would do.
#include "studio/Studio.h"

namespace zvpush {

const char* studioPage() {
  return R"HTML(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>zvpush studio</title>
<link rel="stylesheet" href="/studio.css">
</head>
<body>
<header>zvpush studio <span id="status"></span></header>
<main>
  <div>
    <section>
      <h2>Payload</h2>
      <div class="controls">
        <label>Example <select id="example"></select></label>
      </div>
      <textarea id="payload" spellcheck="false"></textarea>
      <div class="controls">
        <label>Width <select id="width"><option>320</option><option selected>375</option><option>414</option></select></label>
        <label>Platform <select id="version"><option>12.0</option><option>15.0</option><option selected>17.0</option></select></label>
        <label><input type="checkbox" id="hidden" checked> host hides the default content</label>
      </div>
    </section>
  </div>
  <div>
    <div id="error"></div>
    <section>
      <h2>Collapsed, as the phone shows it</h2>
      <div class="collapsed"><div class="texts"><b id="title"></b><span id="subtitle"></span><span id="body"></span></div><img id="thumbnail" alt="" hidden></div>
    </section>
    <section>
      <h2>Expanded (tap a preview to see what the tap does)</h2>
      <div class="previews">
        <div class="preview"><h2>Light</h2><img id="light" alt="light preview"></div>
        <div class="preview dark"><h2>Dark</h2><img id="dark" alt="dark preview"></div>
      </div>
      <p id="tap" class="none">No tap yet.</p>
    </section>
    <section><h2>Why (reasons)</h2><ul id="reasons"></ul></section>
    <section><h2>Warnings</h2><ul id="warnings"></ul></section>
    <section><h2>Downloads</h2><ul id="downloads"></ul></section>
  </div>
</main>
<script src="/studio.js"></script>
</body>
</html>
)HTML";
}

const char* studioScript() {
  return R"JS("use strict";
const $ = (id) => document.getElementById(id);
let examples = [], timer = null, generation = 0, last = null;
// The token of the URL the studio printed, sent back with every API request.
const token = new URLSearchParams(location.search).get("token") || "";
const apiHeaders = { "Content-Type": "application/json", "X-Studio-Token": token };

function list(id, items, show) {
  const ul = $(id);
  ul.textContent = "";
  if (!items.length) {
    const li = document.createElement("li");
    li.className = "none";
    li.textContent = "none";
    ul.appendChild(li);
  }
  for (const item of items) {
    const li = document.createElement("li");
    show(li, item);
    ul.appendChild(li);
  }
}

function pathAndMessage(li, item) {
  if (item.code) { const c = document.createElement("code"); c.textContent = item.code + " "; li.appendChild(c); }
  if (item.path) { const p = document.createElement("code"); p.textContent = item.path + ": "; li.appendChild(p); }
  li.appendChild(document.createTextNode(item.message));
}

async function request(tap) {
  const body = { payload: $("payload").value, width: Number($("width").value),
                 platformVersion: Number($("version").value), contentHidden: $("hidden").checked };
  if (tap) body.tap = tap;
  const mine = ++generation;
  $("status").textContent = "rendering…";
  let answer;
  try {
    const response = await fetch("/api/preview", { method: "POST", body: JSON.stringify(body),
                                                    headers: apiHeaders });
    answer = await response.json();
  } catch (e) {
    answer = { error: "the studio did not answer: " + e };
  }
  if (mine !== generation) return null;
  if (answer.error) {
    $("error").textContent = "zvpush: " + answer.error;
    $("error").style.display = "block";
    $("status").textContent = "";
    return null;
  }
  $("error").style.display = "none";
  last = answer;
  const d = answer.delivered;
  $("title").textContent = d.title;
  $("subtitle").textContent = d.subtitle;
  $("body").textContent = d.body;
  $("thumbnail").hidden = !answer.thumbnail;
  if (answer.thumbnail) $("thumbnail").src = answer.thumbnail;
  for (const style of ["light", "dark"]) {
    if (answer[style].png) $(style).src = answer[style].png;
    $(style).dataset.width = answer[style].size[0];
    $(style).dataset.height = answer[style].size[1];
  }
  list("reasons", answer.reasons, pathAndMessage);
  list("warnings", answer.warnings, pathAndMessage);
  list("downloads", answer.downloads, (li, line) => { li.textContent = line; });
  $("status").textContent = (answer.process ? "ours" : "not ours") + " · rendered in " + answer.millis + " ms";
  return answer;
}

function schedule() {
  clearTimeout(timer);
  timer = setTimeout(() => request(null), 250);
}

async function tapAt(event, dark) {
  const img = event.currentTarget;
  const x = event.offsetX / img.clientWidth * Number(img.dataset.width);
  const y = event.offsetY / img.clientHeight * Number(img.dataset.height);
  const answer = await request({ x, y, dark });
  if (!answer) return;
  const t = answer.tap;
  let what = "nothing";
  if (t && t.defaultAction) what = "the default action (the app opens)";
  if (t && t.cardClick) what = "a card click, stored for the app: " + JSON.stringify(t.cardClick);
  $("tap").className = "";
  $("tap").textContent = "Tap at (" + x.toFixed(0) + ", " + y.toFixed(0) + ") on " +
      (t && t.view ? t.view : "nothing") + ": " + what;
}

async function start() {
  try {
    examples = await (await fetch("/api/examples", { headers: apiHeaders })).json();
    if (!Array.isArray(examples)) throw new Error(examples.error);
  } catch (e) {
    examples = [];
  }
  for (const [i, e] of examples.entries()) $("example").add(new Option(e.name, i));
  const first = examples.findIndex((e) => e.name === "carousel");
  $("example").value = first >= 0 ? first : 0;
  $("payload").value = examples.length ? examples[$("example").value].payload : "{}";
  request(null);
}

$("example").addEventListener("change", () => { $("payload").value = examples[$("example").value].payload; request(null); });
$("payload").addEventListener("input", schedule);
for (const id of ["width", "version", "hidden"]) $(id).addEventListener("change", () => request(null));
$("light").addEventListener("click", (e) => tapAt(e, false));
$("dark").addEventListener("click", (e) => tapAt(e, true));
start();
)JS";
}

const char* studioStyle() {
  return R"CSS(body { font: 14px/1.4 system-ui, sans-serif; margin: 0; background: #eef0f3; color: #1c1e21; }
header { background: #1c1e21; color: #fff; padding: 10px 16px; font-weight: 600; }
main { display: grid; grid-template-columns: minmax(320px, 1fr) 2fr; gap: 16px; padding: 16px; }
section { background: #fff; border-radius: 10px; padding: 12px; margin-bottom: 16px; }
h2 { font-size: 13px; text-transform: uppercase; color: #65676b; margin: 0 0 8px; }
textarea { width: 100%; height: 480px; font: 12px/1.4 ui-monospace, monospace; box-sizing: border-box; }
.controls { display: flex; gap: 12px; flex-wrap: wrap; margin: 8px 0; align-items: center; }
#error { display: none; background: #fdecea; color: #a8071a; padding: 8px 12px; border-radius: 8px;
         font-family: ui-monospace, monospace; margin-bottom: 12px; }
.collapsed { display: flex; gap: 10px; align-items: center; background: #f5f5f7; border-radius: 14px;
             padding: 10px 12px; max-width: 420px; }
.collapsed .texts { flex: 1; min-width: 0; }
.collapsed b, .collapsed span { display: block; overflow: hidden; text-overflow: ellipsis; white-space: nowrap; }
.collapsed img { width: 40px; height: 40px; object-fit: cover; border-radius: 6px; }
.previews { display: flex; gap: 16px; flex-wrap: wrap; }
.preview { flex: 1; min-width: 240px; }
.preview img { width: 100%; border-radius: 12px; cursor: crosshair; background: repeating-conic-gradient(#ddd 0 25%, #fff 0 50%) 0 0 / 16px 16px; }
.preview.dark img { background-color: #000; }
ul { margin: 0; padding-left: 18px; }
li code { color: #6b2fb3; }
.none { color: #65676b; font-style: italic; }
#tap { font-family: ui-monospace, monospace; white-space: pre-wrap; }
#status { color: #65676b; font-size: 12px; }
)CSS";
}

}  // namespace zvpush
