// Time: stepping, playing at real pace, the next timer, dragging back. While time runs at real pace the
// clock on the screen runs by itself and the device is told only when a timer is due.
import { byId, fill, onPress, say } from "./dom.js";
import { canUndo, changed, comesBefore, failedStep, isLive, model, moveTo } from "./model.js";
import { onChange, play, shownState, shownSteps, undo } from "./model.js";
import { clock, exactSeconds } from "./words.js";

const kBetweenLines = 450;  // ms between recorded lines that take no time of their own
const kWait = /^advance ([\d.]+)$/;

let running = false;
let written = false;  // running time has written a line; undo takes all of them back
let since = 0;        // when the shown moment of the device was reached, in ms of the page
let wake = 0;

const atEnd = () => model.cursor >= model.lines.length;
const atPresent = () => running && atEnd() && isLive() && !model.busy && !failedStep();
// How long time has run, in microseconds. It stops short of the next timer: `tick` waits for that one.
function passed() {
  if (!atPresent()) return 0;
  const { time, nextTimer } = shownState();
  return Math.min((performance.now() - since) * 1000, (nextTimer ?? Infinity) - time);
}

// The lines with that much time more. What they end with becomes one line, if all of it is waiting.
function waited(lines, micros) {
  const end = lines.findLastIndex((line) => !kWait.test(line)) + 1;
  const sum = lines.slice(end).reduce((all, line) => all + kWait.exec(line)[1] * 1e6, Math.round(micros));
  return sum ? [...lines.slice(0, end), "advance " + exactSeconds(sum)] : lines;
}

// Time goes on to the next timer, in a line of its own: the device need not begin again.
function waitForTimer() {
  if (model.busy) return;
  const { time, nextTimer } = shownState();
  play([...model.lines, "advance " + exactSeconds(nextTimer - time)], undefined, !written);
  written = running;
}

function tick() {
  clearTimeout(wake);
  if (!running || model.busy) return;
  const { time, nextTimer, springBoard } = shownState();
  const next = model.steps[model.cursor];
  if (atPresent()) {
    const due = () => atPresent() && waitForTimer();
    if (nextTimer != null && springBoard) wake = setTimeout(due, (nextTimer - time) / 1000 + since - performance.now());
  } else if (!next) holdTime();
  else {
    const took = Math.max(next.line ? kBetweenLines : 0, (next.state.time - time) / 1000);
    wake = setTimeout(() => moveTo(model.cursor + 1), took);
  }
}

function run() {
  running = true;
  since = performance.now();
  if (atEnd() && !isLive()) moveTo(0);
  changed();
}

// Time stops where it is.
function stop() {
  const lines = atPresent() ? waited(model.lines, passed()) : model.lines;
  if (lines !== model.lines) play(lines, undefined, !written);
  holdTime();
}

// Time stops: something else is played.
export function holdTime() {
  running = written = false;
  clearTimeout(wake);
  changed();
}

const kTimeActions = {
  pace: () => (running ? stop() : run()),
  back: () => { stop(); moveTo(model.cursor - 1); },
  step: () => { stop(); moveTo(model.cursor + 1); },
  timer: waitForTimer,
  undo: () => { holdTime(); undo(); say("Undone."); },
};

function drawTime() {
  const { nextTimer, time } = shownState();
  const able = { back: model.cursor > 0, step: !atEnd(), undo: canUndo(),
    timer: isLive() && atEnd() && nextTimer != null && !failedStep() };
  const button = (name) => byId("time").querySelector(`[data-time="${name}"]`);
  for (const [name, can] of Object.entries(able)) button(name).disabled = !can;
  button("pace").textContent = running ? "Hold time" : "Let time pass";
  button("pace").setAttribute("aria-pressed", running);
  const slider = byId("moment");
  slider.max = model.lines.length;
  slider.value = model.cursor;
  slider.setAttribute("aria-valuetext", `line ${model.cursor} of ${model.lines.length}`);
  fill(byId("where"), `line ${shownSteps()} of ${model.lines.length} · `,
    nextTimer == null ? "no timer" : "next timer in " + exactSeconds(nextTimer - time) + " s");
}

function drawClocks() {
  const text = clock(shownState().time + passed());
  for (const shown of document.querySelectorAll(".virtual-clock")) if (shown.textContent !== text) shown.textContent = text;
  requestAnimationFrame(drawClocks);
}

export function startPace() {
  let seen = null;
  onPress(byId("time"), "time", (name) => kTimeActions[name]());
  byId("moment").addEventListener("input", (event) => { stop(); moveTo(+event.target.value); });
  comesBefore((lines) => (atPresent() ? waited(lines, passed()) : lines));
  onChange(() => {
    const shown = model.steps[shownSteps() - 1];
    if (shown !== seen) { seen = shown; since = performance.now(); }
    drawTime();
    tick();
  });
  drawClocks();
}
