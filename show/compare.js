// What happened, once or twice: the record with its filters, and beside it, if asked for, that of the
// same lines on another build or another version, with the first difference marked in both.
import { byId, el, fill } from "./dom.js";
import { Lanes } from "./lanes.js";
import { Device } from "./live.js";
import { kStartState, model, onChange, shownState, shownSteps } from "./model.js";
import { firstDifference, kOutcomes, lanesOf, recordOf } from "./rows.js";
import { onVersion } from "./setup.js";
import { appName, kVersions } from "./words.js";

const filter = { process: "", outcome: "", text: "", folded: true };
let main = null;   // the lanes
let other = null;  // {name, version, device, lanes, from: the lines that it was last played for, found}

function drawFilters(record) {
  const state = shownState();
  const choices = (name, first, all) => {
    fill(byId("by-" + name), el("option", { value: "" }, first), all.map(([value, shown]) => el("option", { value }, shown)));
    byId("by-" + name).value = filter[name];
  };
  const processes = new Set([...state.processes.map((process) => process.id), ...lanesOf(record), filter.process]);
  choices("process", "all processes", [...processes].filter(Boolean).map((id) => [id, appName(id, state)]));
  choices("outcome", "all kinds", Object.entries(kOutcomes));
}

function drawOther(record) {
  const { device, lanes, version, name } = other;
  if (other.from !== model.lines) {
    other.from = model.lines;
    device.play(version ? onVersion(model.lines, version) : model.lines);
  }
  const count = Math.max(0, Math.min(shownSteps() + device.lines.length - model.lines.length, device.valid));
  const theirs = recordOf(device.steps, count, filter);
  const settled = !model.busy && !device.busy;
  [main.marked, lanes.marked] = settled ? firstDifference(record, theirs) : [-1, -1];
  lanes.show(theirs, device.steps[count - 1]?.state ?? kStartState);
  const found = Math.max(main.marked, lanes.marked);
  main.draw();
  fill(byId("difference"), name + ": ", !settled ? "…" : found < 0 ? "no difference so far" : "first difference marked");
  if (!settled || found === other.found) return;
  other.found = found;
  for (const one of [main, lanes]) if (one.marked >= 0) one.scrollTo(one.marked, true);
}

function drawRecord() {
  const record = recordOf(model.steps, shownSteps(), filter);
  drawFilters(record);
  main.show(record, shownState());
  if (other) drawOther(record);
  fill(byId("count"), `${record.length} rows`);
  if (!model.busy) fill(byId("newest"), record.findLast((item) => !item.folded)?.text ?? "");
}

function compareWith(choice) {
  other?.device.close();
  other = null;
  byId("second").hidden = !choice;
  byId("happened").classList.toggle("two", Boolean(choice));
  fill(byId("difference"));
  main.marked = -1;
  if (choice) {
    const [name, version] = kVersions.find(([, number]) => "v" + number === choice) ?? [];
    const device = new Device(version ? byId("build").value : choice, () => other?.device === device && drawRecord());
    other = { name: name ? "iOS " + name : choice, version, device };
    other.lanes = new Lanes(byId("second"), "What happened on " + other.name);
  }
  drawRecord();
}

// `builds` are all there are.
export function startRecord(builds) {
  main = new Lanes(byId("first"), "What happened, a row an effect");
  fill(byId("compare"), el("option", { value: "" }, "nothing"),
    el("optgroup", { label: "another build" }, builds.map((name) => el("option", { value: name }, name))),
    el("optgroup", { label: "another version" },
      kVersions.map(([name, number]) => el("option", { value: "v" + number }, "iOS " + name))));
  byId("compare").addEventListener("change", (event) => compareWith(event.target.value));
  byId("build").addEventListener("change", () => other?.version && compareWith(byId("compare").value));
  byId("filters").addEventListener("input", () => {
    for (const name of ["process", "outcome", "text"]) filter[name] = byId("by-" + name).value.trim();
    filter.folded = byId("by-folded").checked;
    drawRecord();
  });
  byId("filters").addEventListener("submit", (event) => event.preventDefault());
  onChange(drawRecord);
}
