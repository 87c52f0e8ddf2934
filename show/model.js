// The one thing that is shown: lines (the scenario), what they did on a device or in a recording, and
// a cursor (how many of them are looked at). Whoever draws listens.
import { say } from "./dom.js";
import { Device } from "./live.js";

export const kStartState = { time: 0, version: 1145.15, springBoard: false, locked: false, screenOn: true,
  passcode: false, inCall: false, headphones: false, network: 2, front: null, apps: [], track: null, titles: [],
  alerts: [], settings: null, processes: [], nextTimer: null, addOns: [] };

let played = { steps: [], valid: 0, busy: false };  // a device, or what was recorded of one

export const model = {
  lines: [],
  cursor: 0,    // lines looked at; what is played by then may be fewer
  wrong: null,  // {line, message, lines}: what was refused, and why (without `line`: for all of it)
  name: "",
  get steps() { return played.steps; },
  get valid() { return played.valid; },  // how many of the steps belong to `lines`
  get busy() { return played.busy; },
};

const listeners = [];
const past = [];
let frame = 0;  // at which everything is drawn
let timer = 0;  // that draws it, while a play is under way
let before = (lines) => lines;

export const onChange = (listener) => listeners.push(listener);
export const isLive = () => played instanceof Device;
export const canUndo = () => past.length > 0;
// Time that has passed meanwhile comes before whatever is done next: `wait` adds it to the lines.
export function comesBefore(wait) { before = wait; }

function drawNow() {
  cancelAnimationFrame(frame);
  clearTimeout(timer);
  frame = timer = 0;
  document.body.classList.toggle("busy", model.busy);
  listeners.forEach((listener) => listener());
}
export function changed() { frame ||= requestAnimationFrame(drawNow); }
// Not at each step of a play; its end is drawn at once.
function changedWhilePlaying() { timer ||= setTimeout(drawNow, 100); }

export const shownSteps = () => Math.min(model.cursor, model.valid);
export const shownState = () => model.steps[shownSteps() - 1]?.state ?? kStartState;
export const failedStep = () => {
  const last = model.steps[model.valid - 1];
  return last?.error ? last : null;
};

// Plays these lines and looks at what the first `cursor` of them lead to. Remembered: undo comes back.
export function play(lines, cursor = lines.length, remembered = true) {
  if (!isLive()) return;
  if (remembered) past.push({ lines: model.lines, cursor: model.cursor, name: model.name });
  if (past.length > 200) past.shift();
  Object.assign(model, { lines, cursor, wrong: null });
  played.play(lines);
  document.body.classList.add("busy");  // until what it leads to is drawn
  changedWhilePlaying();
}

// A device of this build plays what there is.
export function useBuild(build) {
  if (isLive()) played.close();
  const device = new Device(build, (said) => device === played && heard(said));
  played = device;
  if (model.lines.length) play(model.lines, model.cursor, false);
}

export function endDevice() { played.close(); }

// What was refused is undone, with all that was added to it before anyone knew.
function takeBack(wrong) {
  const { lines } = model, before = canUndo();
  do Object.assign(model, past.pop()); while (canUndo() && model.lines !== played.lines);
  if (before && model.lines !== played.lines) play(model.lines, model.cursor, false);
  model.wrong = { ...wrong, lines };
}

function heard(said) {
  if (said.gone) say(`The device process ended: ${said.gone}. Whatever you do next starts it anew.`);
  if (said.wrong) takeBack(said.wrong);
  if (model.busy) changedWhilePlaying();
  else drawNow();
}

export function undo() {
  if (!canUndo()) return;
  const { lines, cursor, name } = past.pop();
  model.name = name;
  play(lines, cursor, false);
}

// Does something now: whatever came later is dropped, and so is a line that could not be carried out.
export function act(commands) {
  const at = Math.min(model.cursor, failedStep()?.step ?? Infinity);
  const dropped = model.lines.length - at;
  if (dropped) say(`Going on from here: later lines (${dropped}) are dropped. Undo brings them back.`);
  play([...(dropped ? model.lines.slice(0, at) : before(model.lines)), ...commands.split("\n")]);
}

export function moveTo(cursor) {
  model.cursor = Math.max(0, Math.min(model.lines.length, cursor));
  changed();
}

// Shows what was recorded; nothing can be done with it but look.
export function showRecording({ lines, steps, file }) {
  played = { steps, valid: steps.length, busy: false };
  Object.assign(model, { lines, cursor: lines.length, name: file });
  changed();
}
