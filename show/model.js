// The one thing that is shown: lines (the scenario), steps (what each did) and a cursor (how many of
// them are looked at). Whoever draws listens; whoever plays the lines gives `connect` a way to.

export const kStartState = { time: 0, version: 1145.15, springBoard: false, locked: false, screenOn: true,
  passcode: false, inCall: false, headphones: false, network: 2, front: null, apps: [], track: null, titles: [],
  alerts: [], settings: null, processes: [], nextTimer: null, addOns: [], accounts: [], missing: [], frameworks: {},
  settingsFile: null };

export const model = {
  lines: [],
  cursor: 0,       // lines looked at; what is played by then may be fewer
  steps: [],       // as the device has them (or a beginning of them, while it plays)
  valid: 0,        // how many of them belong to `lines`
  busy: false,     // a play is under way
  wrong: null,     // {line, message}: the text that was refused, and why
  gone: null,      // why the device process ended
  note: "",        // to be told once
  name: "",
};

const listeners = [];
const past = [];
let send = null;  // plays the lines: (play number, lines); null: what is shown is a recording
let playNumber = 0;
const sent = new Map();  // by play number
let held = [];           // the lines that the device has
let drawing = 0;         // the frame at which everything is drawn
let drawingSoon = 0;     // the timer for that, while a play is under way
let before = () => [];

export const onChange = (listener) => listeners.push(listener);
export const isLive = () => send !== null;
export const kLooking = "a recording can only be looked at";
export const canUndo = () => past.length > 0;
export function connect(sender) { send = sender; }
// Lines that have to come before whatever is done next: time that has passed meanwhile.
export function comesBefore(lines) { before = lines; }

export function changed() {
  if (!drawing) drawing = requestAnimationFrame(drawNow);
}
function drawNow() {
  cancelAnimationFrame(drawing);
  clearTimeout(drawingSoon);
  drawing = drawingSoon = 0;
  listeners.forEach((listener) => listener());
}
// Not at each step of a play; its end is drawn at once.
function changedWhilePlaying() {
  if (!drawingSoon) drawingSoon = setTimeout(drawNow, 100);
}

export const shownSteps = () => Math.min(model.cursor, model.valid);
export const shownState = () => model.steps[shownSteps() - 1]?.state ?? kStartState;
export const failedStep = () => {
  const last = model.steps[model.valid - 1];
  return last?.error ? last : null;
};

// The device holds what it played last; of that, what `lines` begins with is valid.
function countValid() {
  let same = 0;
  if (held === model.lines) same = held.length;
  else while (same < held.length && held[same] === model.lines[same]) ++same;
  model.valid = Math.min(model.steps.length, same);
}

// Plays these lines and looks at what the first `cursor` of them lead to. Remembered: undo comes back.
export function play(lines, cursor = lines.length, remembered = true) {
  if (!send) return;
  if (remembered) past.push({ lines: model.lines, cursor: model.cursor, name: model.name });
  if (past.length > 200) past.shift();
  playAnew(lines, cursor);
}

function playAnew(lines, cursor) {
  Object.assign(model, { lines, cursor, busy: true, wrong: null });
  sent.set(++playNumber, lines);
  countValid();
  send(playNumber, lines);
  changedWhilePlaying();
}

// Another device plays what there is.
export function replay() {
  held = [];
  model.steps = [];
  playAnew(model.lines, model.cursor);
}

export function undo() {
  const last = past.pop();
  if (!last) return;
  model.name = last.name;
  playAnew(last.lines, last.cursor);
}

// Does something now: whatever came later is dropped, and so is a line that could not be carried out.
export function act(commands) {
  if (!send) return;
  const failed = failedStep();
  const at = failed && failed.step < model.cursor ? failed.step : model.cursor;
  const dropped = model.lines.length - at;
  if (dropped) model.note = `Going on from here: ${dropped} later line${dropped > 1 ? "s" : ""} dropped. Undo brings them back.`;
  const waited = at === model.lines.length ? before() : [];
  play([...model.lines.slice(0, at), ...waited, ...commands.split("\n")]);
}

export function moveTo(cursor) {
  const to = Math.max(0, Math.min(model.lines.length, cursor));
  if (to === model.cursor) return;
  model.cursor = to;
  changed();
}

// What the device process says, in order.
export function receive(said) {
  const mine = said.play === playNumber;
  if (said.gone) {
    Object.assign(model, { gone: said.gone, busy: false });
  } else if (said.wrong) {
    if (!mine) return;  // refused, and the lines are as they were before
    const refused = model.lines;
    Object.assign(model, past.pop(), { busy: false, wrong: { ...said.wrong, lines: refused } });
  } else if ("from" in said) {
    held = sent.get(said.play);
    for (const number of sent.keys()) if (number < said.play) sent.delete(number);
    model.steps.length = said.from;
    model.gone = null;
  } else if (said.done) {
    if (mine) model.busy = false;
  } else {
    model.steps[said.step] = said;
  }
  countValid();
  if (model.busy) changedWhilePlaying();
  else drawNow();
}

// Shows what was recorded; nothing can be done with it but look.
export function showRecording({ lines, steps, file }) {
  Object.assign(model, { lines, steps, valid: steps.length, cursor: lines.length, name: file });
  changed();
}
