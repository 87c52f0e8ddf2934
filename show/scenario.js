// The scenario beside what it does: its lines with what became of them, an editor, files, and a link.
import { byId, el, fill, onPress, say, span } from "./dom.js";
import { about, readFile, saveFile } from "./live.js";
import { model, moveTo, onChange, play, shownSteps } from "./model.js";
import { holdTime } from "./pace.js";

let editing = false;
let applied = false;  // what is edited was played, and nothing refused it yet
let mine = "";        // of those saved: what is saved under this name takes its place unasked

const linesOf = (text) => text.replace(/\r/g, "").replace(/\n+$/, "").split("\n");
const textOf = (lines) => lines.join("\n") + "\n";
const shownLines = () => (editing ? linesOf(byId("text").value) : model.lines);

// Does what may fail, and says what became of it.
async function attempt(work) {
  try { say(await work()); } catch (error) { say(error.message); }
}

export function openText(text, name) {
  leave();
  holdTime();
  play(linesOf(text));
  model.name = name;
  mine = "";
}

// `path` begins with the folder: scenarios/ or saved/.
export const openFile = (path) => attempt(async () => {
  const [, folder, name] = /^(scenarios|saved)\/(.+)$/.exec(path) ?? [];
  if (!name) throw new Error("there is no such file");
  openText(await readFile(folder, name), name);
  if (folder === "saved") byId("save-as").value = mine = name;
  return `Opened ${name}.`;
});

// ---- Lines to look at

function line(text, at, current, before) {
  const step = at < model.valid ? model.steps[at] : null;
  const note = step?.error ?? (step?.holds === false ? "does not hold; came: " + (step.instead[0] ?? "nothing") : "");
  const mark = note ? "✗" : step?.holds ? "✓" : at === current ? "▸" : "";
  const kind = [at >= model.cursor && "later", at === current && "current", note && "bad",
    /^\s*(#|$)/.test(text) && "remark"].filter(Boolean).join(" ");
  const key = [at, text, kind, mark, note].join();
  if (before?.dataset.drawn === key) return before;
  return el("li", { class: kind, "data-drawn": key },
    el("button", { type: "button", "data-line": at + 1, "aria-current": at === current && "step" },
      span("number", at + 1), span("done", mark), el("code", {}, text || " ")),
    note && el("p", { class: "note" }, note));
}

function drawScenario() {
  fill(byId("name"), model.name || "untitled");
  if (model.wrong && !editing) {
    applied = true;
    edit(model.wrong.lines);
  }
  if (applied && !model.busy && !model.wrong) leave();
  byId("viewing").hidden = editing;
  byId("editing").hidden = !editing;
  if (editing) drawWrong();
  const list = byId("lines"), current = shownSteps() - 1;
  const before = list.querySelector("[aria-current]");
  fill(list, model.lines.map((text, at) => line(text, at, current, list.children[at])));
  const now = list.querySelector("[aria-current]");
  if (now && now !== before) list.scrollTop = Math.max(0, now.offsetTop - list.clientHeight / 2);
}

// ---- The editor

function edit(lines) {
  editing = true;
  byId("text").value = textOf(lines);
  byId("text").focus();
  drawScenario();
}

// The line that was refused is selected, and thereby in view.
function drawWrong() {
  const { wrong } = model, area = byId("text");
  area.setAttribute("aria-invalid", Boolean(wrong));
  const at = wrong?.line;
  fill(byId("wrong"), wrong && (at == null ? "" : `Line ${at + 1}: `) + wrong.message);
  if (!wrong || !applied) return;
  applied = false;
  area.focus();
  if (at == null) return;
  const start = textOf(["", ...wrong.lines.slice(0, at)]).length - 1;
  area.setSelectionRange(start, start + wrong.lines[at].length);
}

function apply() {
  applied = true;
  holdTime();
  play(linesOf(byId("text").value));
}

function leave() {
  editing = applied = false;
  model.wrong = null;
}

// ---- Files and links

function drawFiles(files) {
  const folders = { "saved by you": files.saved.map((name) => "saved/" + name) };
  for (const path of files.scenarios) {
    const folder = path.split("/").slice(0, -1).join("/") || "scenarios";
    (folders[folder] ??= []).push("scenarios/" + path);
  }
  fill(byId("open"), el("option", { value: "" }, "Open…"), Object.entries(folders).map(([folder, paths]) =>
    paths.length > 0 && el("optgroup", { label: folder },
      paths.map((path) => el("option", { value: path }, /([^/]*?)(\.txt)?$/.exec(path)[1])))));
}

const save = () => attempt(async () => {
  const name = byId("save-as").value.trim().replace(/(\.txt)?$/, ".txt"), asked = mine;
  mine = name;
  if (name !== asked && (await about()).saved.includes(name)) return `There is a ${name} already: Save again replaces it.`;
  await saveFile(name, textOf(shownLines()));
  model.name = name;
  drawFiles(await about());
  drawScenario();
  return `Saved as ${name}.`;
});

const link = () => attempt(async () => {
  history.replaceState(null, "", "#scenario=" + encodeURIComponent(shownLines().join("\n")));
  const copied = await navigator.clipboard?.writeText(location.href).then(() => true, () => false);
  return copied ? "The link is copied. It holds the whole scenario." : "The link stands in the address bar.";
});

function cancel() {
  leave();
  drawScenario();
}

const kFileActions = { edit: () => editing || edit(model.lines), apply, cancel, link, save };

export function startScenario(files) {
  drawFiles(files);
  onPress(byId("scenario"), "file", (what) => kFileActions[what]());
  onPress(byId("lines"), "line", moveTo);
  byId("open").addEventListener("change", ({ target }) => {
    if (target.value) openFile(target.value);
    target.value = "";
  });
  onChange(drawScenario);
}
