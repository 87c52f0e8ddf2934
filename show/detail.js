// One row explained: a sentence, the hook that decided and what it looked at, and every call behind it.
import { byId, el, fill, onPress, span } from "./dom.js";
import { explainQuestion, explainRow } from "./explain.js";
import { isLive, model, moveTo, onChange, play } from "./model.js";
import { kOutcomes } from "./rows.js";
import { appName, clock } from "./words.js";

const kDecided = { hook: "Decided where the library stands in for", delivered: "Decided when this signal was heard:",
  timer: "Decided when a timer fired", callback: "Decided in code of the library that the system calls:" };

let shown = null;

// What decided: the outermost hook, delivery or timer of the same process that this row happened
// inside of; without any, whatever it happened inside of.
function rootOf(rows, index) {
  const around = [];
  for (let at = index; at >= 0; at = rows[at].parent) around.unshift(at);
  return around.find((at) => rows[at].process === rows[index].process && rows[at].kind in kDecided) ?? around[0];
}

// That row and all that happened inside of it: how deep each is.
function inside(rows, root) {
  const depth = new Map([[root, 0]]);
  for (let at = root + 1; at < rows.length; ++at)
    if (depth.has(rows[at].parent)) depth.set(at, depth.get(rows[at].parent) + 1);
  return [...depth];
}

// What was looked at before that, and what it was: each question once.
function answers(rows, behind, state) {
  const asked = new Map();
  for (const [at] of behind) {
    // A number says what it is when it is asked next.
    const number = rows[at].answer === "<NSNumber>" &&
      rows.slice(at + 1, at + 12).find((row) => row.call.endsWith(" boolValue]"));
    const question = explainQuestion(number ? { ...rows[at], answer: number.answer } : rows[at], state);
    if (question && !asked.has(question[0])) asked.set(...question);
  }
  return asked.size > 0 && el("dl", {}, [...asked].map(([question, answer]) =>
    el("div", {}, el("dt", {}, question), el("dd", {}, answer))));
}

function decision(root) {
  return kDecided[root.kind] && el("p", {}, kDecided[root.kind], " ", el("code", {}, root.call));
}

function calls(rows, behind, index) {
  const call = ({ call, kind, answer }, depth) =>
    el("code", {}, "  ".repeat(depth), call || kind, answer != null && " = " + answer);
  return el("details", { "data-key": "calls" }, el("summary", {}, `Every call behind it (${behind.length})`),
    el("ul", {}, behind.slice(0, 400).map(([at, depth]) =>
      el("li", { class: (at === index ? "here " : "") + rows[at].kind }, call(rows[at], depth))),
      behind.length > 400 && el("li", {}, `… and ${behind.length - 400} more`)));
}

// Whether it happened in the scenario that is shown: not on the device beside it, nor in one before.
const isOurs = ({ step }) => step.step < model.valid && model.steps[step.step] === step;

export function explain(item) {
  shown = item;
  const { rows } = item.step, row = rows[item.index];
  const root = row && rootOf(rows, item.index);
  const behind = row && inside(rows, root);
  fill(byId("detail"),
    el("h3", {}, row ? explainRow(row, item.step.state) : item.text),
    el("div", { class: "facts pair faint" }, el("b", { class: "tag " + item.outcome }, kOutcomes[item.outcome]),
      row && " in " + appName(row.process, item.step.state),
      ` at ${clock(item.time)}, line ${item.step.step + 1}`,
      isOurs(item) && span("pair",
        row?.kind === "effect" && isLive() && el("button", { type: "button", "data-row": "expect" }, "Expect this"),
        el("button", { type: "button", "data-row": "go" }, "Go there"))),
    row && answers(rows, behind, item.step.state),
    el("code", { class: "told" }, item.call),
    row && [decision(rows[root]), calls(rows, behind, item.index)]);
}

// An expectation of this row, behind its command: in the order of what came, as expectations are found.
function expectShown() {
  const rows = shown.step.rows;
  const lines = [...model.lines];
  const comesBefore = (expected) =>
    expected && rows.findIndex((row) => row.kind === "effect" && row.call === expected[1].trim()) <= shown.index;
  let at = shown.step.step + 1;
  while (comesBefore(/^\s*expect(?:-in \S+)? (.*)$/.exec(lines[at]))) ++at;
  lines.splice(at, 0, "expect " + rows[shown.index].call);
  play(lines, model.cursor + (at <= model.cursor ? 1 : 0));
}

export function startDetail() {
  fill(byId("detail"), el("h3", {}, "Choose a row to have it explained"),
    el("p", { class: "faint" }, "You will see what it means, which settings decided it, and every call behind it."));
  onPress(byId("detail"), "row", (what) => (what === "expect" ? expectShown() : moveTo(shown.step.step + 1)));
  onChange(() => {
    if (shown && !isOurs(shown)) byId("detail").querySelector(".facts .pair")?.remove();
  });
}
