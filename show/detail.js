// One row explained: a sentence, the hook that decided and what it looked at, and every call behind it.
import { byId, el, fill, onPress, span } from "./dom.js";
import { explainQuestion, explainRow } from "./explain.js";
import { isLive, model, moveTo, play } from "./model.js";
import { kOutcomes } from "./rows.js";
import { appName, clock } from "./words.js";

const kDecided = { hook: "Decided where the library stands in for", delivered: "Decided when this signal was heard:",
  timer: "Decided when a timer fired", callback: "Decided in code of the library that the system calls:" };

let shown = null;

// What decided: the outermost hook, delivery or timer of the same process that this row happened
// inside of; without any, whatever it happened inside of.
function rootOf(rows, index) {
  let decided = -1;
  let outermost = index;
  for (let at = index; at >= 0; at = rows[at].parent) {
    outermost = at;
    if (rows[at].process === rows[index].process && rows[at].kind in kDecided) decided = at;
  }
  return decided < 0 ? outermost : decided;
}

function inside(rows, root) {
  const depth = new Map([[root, 0]]);
  const found = [];
  for (let at = root; at < rows.length; ++at) {
    if (at !== root && !depth.has(rows[at].parent)) continue;
    if (at !== root) depth.set(at, depth.get(rows[at].parent) + 1);
    found.push([at, depth.get(at)]);
  }
  return found;
}

// What was looked at before that, and what it was: each question once.
function answers(rows, index, state) {
  const asked = new Map();
  for (const [at] of inside(rows, rootOf(rows, index))) {
    // A number says what it is when it is asked next.
    const number = rows[at].answer === "<NSNumber>" &&
      rows.slice(at + 1, at + 12).find((row) => row.call.endsWith(" boolValue]"));
    const question = explainQuestion(number ? { ...rows[at], answer: number.answer } : rows[at], state);
    if (question && !asked.has(question[0])) asked.set(...question);
  }
  return asked.size > 0 && el("dl", {}, [...asked].map(([question, answer]) =>
    el("div", {}, el("dt", {}, question), el("dd", {}, answer))));
}

function decision(rows, index) {
  const root = rootOf(rows, index);
  const behind = inside(rows, root);
  return [
    kDecided[rows[root].kind] && el("p", {}, kDecided[rows[root].kind], " ", el("code", {}, rows[root].call)),
    el("details", { "data-key": "calls" }, el("summary", {}, `Every call behind it (${behind.length})`),
      el("ol", { class: "calls" }, behind.slice(0, 400).map(([at, depth]) =>
        el("li", { class: `${at === index ? "here " : ""}${rows[at].kind} deep-${Math.min(depth, 8)}` },
          el("code", {}, rows[at].call || rows[at].kind),
          rows[at].answer != null && span("answer", " = " + rows[at].answer))),
        behind.length > 400 && el("li", {}, `… and ${behind.length - 400} more`))),
  ];
}

export function explain(item) {
  shown = item;
  const row = item.step.rows[item.index];
  fill(byId("detail"),
    el("h3", {}, row ? explainRow(row, item.step.state) : item.text),
    el("p", { class: "facts" }, el("b", { class: "tag " + item.outcome }, kOutcomes[item.outcome]),
      row && " in " + appName(row.process, item.step.state),
      ` at ${clock(item.time)}, line ${item.step.step + 1}`,
      span("pair",
        row?.kind === "effect" && isLive() && el("button", { type: "button", "data-row": "expect" }, "Expect this"),
        el("button", { type: "button", "data-row": "go" }, "Go there"))),
    row && answers(item.step.rows, item.index, item.step.state),
    el("code", { class: "call" }, item.call),
    row && decision(item.step.rows, item.index));
}

// An expectation of this row, behind its command: in the order of what came, as expectations are found.
function expectShown() {
  const rows = shown.step.rows;
  const lines = [...model.lines];
  let at = shown.step.step + 1;
  for (; at < lines.length; ++at) {
    const before = /^\s*expect(?:-in \S+)? (.*)$/.exec(lines[at]);
    if (!before) break;
    if (rows.findIndex((row) => row.kind === "effect" && row.call === before[1].trim()) > shown.index) break;
  }
  lines.splice(at, 0, "expect " + rows[shown.index].call);
  play(lines, model.cursor + (at <= model.cursor ? 1 : 0));
}

export function startDetail() {
  fill(byId("detail"), el("h3", {}, "Choose a row to have it explained"),
    el("p", { class: "faint" }, "You will see what it means, which settings decided it, and every call behind it."));
  onPress(byId("detail"), "row", (what) => (what === "expect" ? expectShown() : moveTo(shown.step.step + 1)));
}
