// The scenario beside what it does: its lines with what became of them, an editor, files, and a link.
import { byId, el, fill, onPress, say, span } from "./dom.js";
import { readFile, saveFile } from "./live.js";
import { failedStep, model, moveTo, onChange, play, shownSteps } from "./model.js";
import { holdTime } from "./pace.js";

let editing = false;
let files = { scenarios: [], saved: [] };

const linesOf = (text) => text.replace(/\r/g, "").replace(/\n+$/, "").split("\n");

export function openText(text, name) {
  holdTime();
  play(linesOf(text));
  model.name = name;
}

export async function openFile(folder, name) {
  try {
    openText(await readFile(folder, name), name);
    say(`Opened ${name}.`);
  } catch (error) { say(error.message); }
}

// ---- Lines to look at

function line(text, at, current, before) {
  const step = at < model.valid ? model.steps[at] : null;
  const mark = step?.error || step?.holds === false ? "✗" : step?.holds ? "✓" : at === current ? "▸" : "";
  const kind = [at >= model.cursor && "later", at === current && "current", mark === "✗" && "bad",
    /^\s*(#|$)/.test(text) && "remark"].filter(Boolean).join(" ");
  const note = step?.error ?? (step?.holds === false ? "does not hold; came: " + (step.instead?.[0] ?? "nothing") : null);
  const key = [at, text, kind, mark, note].join();
  if (before?.dataset.key === key) return before;
  return el("li", { class: kind, "data-key": key },
    el("button", { type: "button", "data-line": at + 1, "aria-current": at === current && "step" },
      span("number", at + 1), span("done", mark), el("code", {}, text || " ")),
    note && el("p", { class: "note" }, note));
}

function drawScenario() {
  const current = shownSteps() - 1;
  byId("viewing").hidden = editing;
  byId("editing").hidden = !editing;
  fill(byId("name"), model.name || "untitled");
  if (model.wrong && !editing) edit(model.wrong.lines);
  if (editing) return drawWrong();
  const list = byId("lines");
  const before = list.querySelector("[aria-current]");
  fill(list, model.lines.map((text, at) => line(text, at, current, list.children[at])));
  const now = list.querySelector("[aria-current]");
  if (now && now !== before) list.scrollTop = Math.max(0, now.offsetTop - list.clientHeight / 2);
  const failed = failedStep();
  if (failed) say(`Line ${failed.step + 1}: ${failed.error}`);
}

// ---- The editor

function edit(lines = model.lines) {
  editing = true;
  byId("text").value = lines.join("\n") + "\n";
  drawScenario();
  byId("text").focus();
}

// The message stands below the line that it is about.
function drawWrong() {
  const note = byId("wrong");
  note.hidden = !model.wrong;
  if (!model.wrong) { if (!model.busy && applied) leave(); return; }
  applied = false;
  note.textContent = `Line ${model.wrong.line + 1}: ${model.wrong.message}`;
  const area = byId("text");
  area.setAttribute("aria-invalid", "true");
  const height = parseFloat(getComputedStyle(area).lineHeight);
  note.style.top = (model.wrong.line + 1) * height + 10 - area.scrollTop + "px";
}

let applied = false;
function apply() {
  model.wrong = null;
  byId("text").removeAttribute("aria-invalid");
  applied = true;
  holdTime();
  play(linesOf(byId("text").value));
}

function leave() {
  editing = applied = false;
  model.wrong = null;
  drawScenario();
}

// ---- Files and links

function drawFiles() {
  const folders = new Map();
  for (const path of files.scenarios) {
    const folder = path.includes("/") ? path.slice(0, path.lastIndexOf("/")) : "scenarios";
    folders.set(folder, [...(folders.get(folder) ?? []), path]);
  }
  const choice = (folder) => (path) => el("option", { value: folder + " " + path }, /([^/]*?)(\.txt)?$/.exec(path)[1]);
  fill(byId("open"), el("option", { value: "" }, "Open…"),
    files.saved.length > 0 && el("optgroup", { label: "saved by you" }, files.saved.map(choice("saved"))),
    [...folders].map(([folder, paths]) => el("optgroup", { label: folder }, paths.map(choice("scenarios")))));
}

async function save() {
  const name = byId("save-as").value.trim().replace(/(\.txt)?$/, ".txt");
  try {
    const { saved } = await saveFile(name, model.lines.join("\n") + "\n");
    if (!files.saved.includes(saved)) files.saved.push(saved);
    model.name = saved;
    drawFiles();
    drawScenario();
    say(`Saved as ${saved}.`);
  } catch (error) { say(error.message); }
}

const linkTo = (lines) => location.href.replace(/#.*/, "") + "#scenario=" + encodeURIComponent(lines.join("\n"));

async function copyLink() {
  const link = linkTo(model.lines);
  history.replaceState(null, "", link);
  try {
    await navigator.clipboard.writeText(link);
    say("The link is copied. It holds the whole scenario.");
  } catch { say("The link stands in the address bar."); }
}

const kFileActions = { edit: () => edit(), apply, cancel: leave, link: copyLink, save };

export function startScenario(told) {
  if (told) files = told;
  drawFiles();
  onPress(byId("scenario"), "file", (what) => kFileActions[what]());
  onPress(byId("lines"), "line", (cursor) => moveTo(+cursor));
  byId("open").addEventListener("change", (event) => {
    const [folder, ...path] = event.target.value.split(" ");
    event.target.value = "";
    if (path.length) { leave(); openFile(folder, path.join(" ")); }
  });
  byId("text").addEventListener("scroll", drawWrong);
  byId("text").addEventListener("keydown", (event) => {
    if (event.key === "Enter" && (event.ctrlKey || event.metaKey)) apply();
    if (event.key === "Escape") leave();
  });
  onChange(drawScenario);
}
