// What happened, once or twice: the record with its filters, and beside it, if asked for, that of the
// same lines on another build or another version, with the first difference marked in both.
import { byId, el, fill, say } from "./dom.js";
import { explain } from "./detail.js";
import { Lanes } from "./lanes.js";
import { openSession } from "./live.js";
import { isLive, kStartState, model, onChange, shownState, shownSteps } from "./model.js";
import { firstDifference, kOutcomes, lanesOf, newestOf, recordOf } from "./rows.js";
import { onVersion } from "./setup.js";
import { appName, kVersions } from "./words.js";

const filter = { process: "", outcome: "", text: "", folded: true };
let main = null;
// The other device: what it is, its lanes, its session, the lines that it has and what they did.
let other = null;

function unfold() { filter.folded = false; drawRecord(); }

function drawFilters(record) {
  const state = shownState();
  const kept = (id, first, choices) => fill(byId(id), el("option", { value: "" }, first),
    choices.map(([value, name]) => el("option", { value, selected: value === filter[id.slice(3)] }, name)));
  const processes = new Set([...state.processes.map((process) => process.id), ...lanesOf(record)]);
  kept("by-process", "all processes", [...processes].map((id) => [id, appName(id, state)]));
  kept("by-outcome", "all kinds", Object.entries(kOutcomes));
  byId("by-folded").checked = filter.folded;
}

function drawOther(record) {
  const shift = other.lines.length - model.lines.length;
  const count = Math.max(0, Math.min(shownSteps() + shift, other.steps.length));
  const theirs = recordOf(other.steps, count, filter);
  const [mine, its] = firstDifference(record, theirs);
  const settled = !model.busy && !other.busy;
  main.marked = settled ? mine : -1;
  other.lanes.marked = settled ? its : -1;
  other.lanes.show(theirs, other.steps[count - 1]?.state ?? kStartState);
  const text = !settled ? "…" : mine < 0 && its < 0 ? "no difference so far" : "first difference marked";
  fill(byId("difference"), `${other.name}: ${text}`);
  if (!settled || other.found === `${mine} ${its}`) return;
  other.found = `${mine} ${its}`;
  if (mine >= 0) main.scrollTo(mine, true);
  if (its >= 0) other.lanes.scrollTo(its, true);
}

function drawRecord() {
  const record = recordOf(model.steps, shownSteps(), filter);
  drawFilters(record);
  if (!other) main.marked = -1;
  main.show(record, shownState());
  fill(byId("count"), `${record.length} rows`);
  if (other) { playOther(); drawOther(record); }
  if (!model.busy) fill(byId("newest"), newestOf(record)?.text ?? "");
}

// ---- The other device

function playOther() {
  if (other.from === model.lines || !other.session) return;
  other.from = model.lines;
  other.lines = other.version ? onVersion(model.lines, other.version) : model.lines;
  other.busy = true;
  other.session.play(++other.number, other.lines);
}

function hear(said) {
  if (!other) return;
  if (said.gone || said.wrong) other.busy = false;
  else if ("from" in said) other.steps.length = said.from;
  else if (said.done) other.busy = said.play !== other.number;
  else other.steps[said.step] = said;
  drawRecord();
}

async function compareWith(choice, build) {
  other?.session?.close();
  other = null;
  byId("second").hidden = !choice;
  byId("happened").classList.toggle("two", Boolean(choice));
  fill(byId("difference"), "");
  if (!choice) return drawRecord();
  const version = choice.startsWith("v") ? +choice.slice(1) : null;
  const name = version ? "iOS " + kVersions.find(([, number]) => number === version)[0] : choice;
  other = { name, version, steps: [], lines: [], number: 0, busy: true, from: null, found: "", session: null,
    lanes: new Lanes(byId("second"), "What happened on " + name, explain, unfold) };
  const asked = other;
  try {
    const session = await openSession(version ? build : choice, hear, say);
    if (other === asked) { other.session = session; drawRecord(); } else session.close();
  } catch (error) { say(error.message); }
}

// `build` answers the build that the page is on; `builds` are all there are.
export function startRecord(builds, build) {
  main = new Lanes(byId("first"), "What happened, a row an effect", explain, unfold);
  fill(byId("compare"), el("option", { value: "" }, "nothing"),
    el("optgroup", { label: "another build" }, builds.map((name) => el("option", { value: name }, name))),
    el("optgroup", { label: "another version" },
      kVersions.map(([name, number]) => el("option", { value: "v" + number }, "iOS " + name))));
  byId("compare").disabled = !isLive();
  byId("compare").addEventListener("change", (event) => compareWith(event.target.value, build()));
  byId("filters").addEventListener("input", () => {
    Object.assign(filter, { process: byId("by-process").value, outcome: byId("by-outcome").value,
      text: byId("by-text").value.trim().toLowerCase(), folded: byId("by-folded").checked });
    drawRecord();
  });
  byId("filters").addEventListener("submit", (event) => event.preventDefault());
  onChange(drawRecord);
}
