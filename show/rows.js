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

function outcomeOf(row) {
  if (row.kind === "hook") return "taken";
  if (row.kind === "delivered") return "arrives";
  if (row.kind === "timer") return "timer";
  if (row.kind === "started" || row.kind === "ended") return "life";
  if (row.call.startsWith("crash:")) return "crash";
  if (row.call.startsWith("notify_post(")) return "signal";
  return { library: "own", passed: "passed" }[row.by] ?? "system";
}

const kShown = new Set(["effect", "delivered", "timer", "started", "ended"]);
const isShown = (row) => kShown.has(row.kind) || (row.kind === "hook" && row.taken);
const isStartUp = (step, row) => !row.call.startsWith("crash:") && row.kind !== "started" && row.kind !== "ended" &&
  (step.line === "boot" || /^(MSHook|CFNotificationCenterAdd)/.test(row.call));

const kept = new WeakMap();

// All items of a step; made once, since a step never changes.
function itemsOf(step, before) {
  const known = kept.get(step);
  if (known) return known;
  const items = [];
  const line = step.line.startsWith("#") ? "" : step.line;
  const expectation = line.startsWith("expect");
  const setUp = !before.springBoard && line !== "boot" && !step.error && !expectation;
  if (step.error || (line && !expectation) || step.holds === false) {
    const text = step.error ? "This could not be done: " + step.error
      : step.holds === false ? "Expected, but it was not so. What came: " + (step.instead?.join(" · ") || "nothing")
      : explainCommand(line, before);
    const answer = step.answer == null ? "" : step.answer ? " = YES" : " = NO";
    items.push({ step, index: -1, process: "", time: before.time, call: line + answer, text, startUp: setUp,
      outcome: step.error || expectation ? "failed" : "command" });
  }
  step.rows.forEach((row, index) => {
    if (!isShown(row)) return;
    const called = row.kind === "effect" || row.kind === "hook";
    const call = row.kind === "delivered" ? `“${row.call}”` : called ? row.call : row.kind + " " + row.call;
    items.push({ step, index, process: row.process, time: row.time, outcome: outcomeOf(row), call,
      startUp: isStartUp(step, row), get text() { return (this.said ??= explainRow(row, step.state)); } });
  });
  kept.set(step, items);
  return items;
}

const matching = (item, filter) => (!filter.process || item.process === filter.process || !item.process) &&
  (!filter.outcome || item.outcome === filter.outcome) &&
  (!filter.text || (item.call + " " + item.text + " " + item.process).toLowerCase().includes(filter.text));

// What stands for all the start-up rows of a process, or for all the lines of the set-up.
function foldedItem(item) {
  return { ...item, folded: 1, outcome: item.process ? "own" : "command", get text() {
    const things = (item.process ? " row" : " line") + (this.folded === 1 ? "" : "s");
    return `${item.process ? "Starting up" : "Setting up the phone"}: ${this.folded}${things}, press to show`;
  } };
}

// The record of these steps. `filter`: {process, outcome, text, folded}.
export function recordOf(steps, count, filter) {
  const record = [];
  const take = (item) => {
    if (!filter.folded || !item.startUp) {
      if (matching(item, filter)) record.push(item);
      return;
    }
    const last = record.at(-1);
    if (last?.folded && last.process === item.process && (last.step === item.step || !item.process)) {
      ++last.folded;
      last.call += "\n" + item.call;
    } else if (!filter.outcome && !filter.text && matching(item, filter)) record.push(foldedItem(item));
  };
  for (let at = 0; at < count; ++at) itemsOf(steps[at], steps[at - 1]?.state ?? kStartState).forEach(take);
  return record;
}

const kTelling = [/^crash/, /UIAlertView show/, /launchApplicationWith|openURL|setPasscode/, /setPaused:NO|MTPlayer play/, /./];

// The row that says best what the last command of the record led to.
export function newestOf(record) {
  const last = record.filter((item) => item.step === record.at(-1)?.step);
  const found = kTelling.map((pattern) => last.find((item) => item.process && !item.folded && pattern.test(item.call))).find(Boolean);
  return found ?? last.at(-1);
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
  const rows = (record) => record.map((item, at) => [item, at]).filter(([item]) => item.process);
  const mine = rows(some), theirs = rows(others);
  const same = (one, other) => one && other && one.process === other.process && one.time === other.time &&
    one.outcome === other.outcome && one.call === other.call && one.folded === other.folded;
  for (let at = 0; at < Math.max(mine.length, theirs.length); ++at)
    if (!same(mine[at]?.[0], theirs[at]?.[0])) return [mine[at]?.[1] ?? -1, theirs[at]?.[1] ?? -1];
  return [-1, -1];
}
