// What stands in the record: the steps up to the cursor as a flat list of items of one height each.
// Calls that are only listed when a row is chosen are left out; so is what belongs to starting up, if
// it is folded.
import { explainCommand, explainRow } from "./explain.js";
import { kStartState } from "./model.js";

// What became of a call: its word, and the shape on its lane.
export const kOutcomes = {
  command: "you", taken: "taken over", passed: "passed on", own: "library", signal: "signal", arrives: "heard",
  system: "system", timer: "timer", life: "process", crash: "crash", failed: "failed",
};

const kOfKind = { hook: "taken", delivered: "arrives", timer: "timer", started: "life", ended: "life" };
const kOfMaker = { library: "own", passed: "passed", system: "system" };

function outcomeOf({ kind, call, by }) {
  if (kind !== "effect") return kOfKind[kind];
  return call.startsWith("crash:") ? "crash" : call.startsWith("notify_post(") ? "signal" : kOfMaker[by];
}

const isShown = (row) => (row.kind === "hook" ? row.taken : row.kind === "effect" || row.kind in kOfKind);
const isStartUp = (line, call, outcome) => outcome !== "crash" && outcome !== "life" &&
  (line === "boot" || /^(MSHook|CFNotificationCenterAdd)/.test(call));

const kept = new WeakMap();

// All items of a step; made once, since a step never changes.
function itemsOf(step, before) {
  const known = kept.get(step);
  if (known) return known;
  const items = [];
  const { line } = step;
  const expectation = line.startsWith("expect");
  const setUp = !before.springBoard && line !== "boot" && !step.error && !expectation;
  if (step.error || (line && !expectation) || step.holds === false) {
    const text = step.error ? "This could not be done: " + step.error
      : step.holds === false ? "Expected, but it was not so. What came: " + (step.instead.join(" · ") || "nothing")
      : explainCommand(line, before);
    const answer = step.answer == null ? "" : step.answer ? " = YES" : " = NO";
    items.push({ step, index: -1, process: "", time: before.time, call: line + answer, text, startUp: setUp,
      outcome: step.error || expectation ? "failed" : "command" });
  }
  step.rows.forEach((row, index) => {
    if (!isShown(row)) return;
    const { process, time, kind } = row, outcome = outcomeOf(row);
    const named = { delivered: `“${row.call}”`, effect: row.call, hook: row.call };
    const call = named[kind] ?? `${kind} ${row.call}`;
    items.push({ step, index, process, time, outcome, call, startUp: isStartUp(line, row.call, outcome),
      get text() { return (this.said ??= explainRow(row, step.state)); } });
  });
  kept.set(step, items);
  return items;
}

const matching = (item, filter) => (!filter.process || item.process === filter.process || !item.process) &&
  (!filter.outcome || item.outcome === filter.outcome) &&
  (!filter.text || (item.call + " " + item.text + " " + item.process).toLowerCase().includes(filter.text.toLowerCase()));

// What stands for all the start-up rows of a process, or for all the lines of the set-up.
const foldedItem = (item) => ({ ...item, folded: 1, outcome: item.process ? "own" : "command", get text() {
  return `${item.process ? "Starting up" : "Setting up the phone"} (${this.folded}), press to show`;
} });

// The record of these steps. `filter`: {process, outcome, text, folded}.
export function recordOf(steps, count, filter) {
  const record = [];
  const take = (item) => {
    if (!matching(item, filter)) return;
    const folded = filter.folded && item.startUp;
    const last = record.at(-1);
    if (folded && last?.folded && last.process === item.process && (last.step === item.step || !item.process)) {
      ++last.folded;
      last.call += "\n" + item.call;
    } else record.push(folded ? foldedItem(item) : item);
  };
  for (let at = 0; at < count; ++at) itemsOf(steps[at], steps[at - 1]?.state ?? kStartState).forEach(take);
  return record;
}

// The processes of a record, in the order in which they appear.
export const lanesOf = (record) => [...new Set(record.map((item) => item.process).filter(Boolean))];

// Which posts reach which deliveries: [from, to], indices of the record.
export function arrowsOf(record) {
  const arrows = [];
  const posted = new Map();
  record.forEach((item, at) => {
    const name = () => /["“](.+)["”]/.exec(item.call)[1];
    if (item.outcome === "signal") posted.set(name(), at);
    else if (item.outcome === "arrives" && posted.has(name())) arrows.push([posted.get(name()), at]);
  });
  return arrows;
}

// Where two records begin to differ: an index in each, -1 where there is none. Lines and their wording
// do not count, times do.
export function firstDifference(some, others) {
  const rows = (record) => record.filter((item) => item.process);
  const mine = rows(some), theirs = rows(others);
  const differs = (one, other) => ["process", "time", "outcome", "call", "folded"].some((name) => one?.[name] !== other?.[name]);
  let at = 0;
  while (at < mine.length && !differs(mine[at], theirs[at])) ++at;
  return [some.indexOf(mine[at]), others.indexOf(theirs[at])];
}
