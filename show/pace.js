// Time: stepping, playing at real pace, the next timer, dragging back. While time runs at real pace the
// clock on the screen runs by itself and the device is told only when a timer is due.
import { byId, fill, onPress, say } from "./dom.js";
import { canUndo, changed, comesBefore, failedStep, isLive, model, moveTo } from "./model.js";
import { onChange, play, shownState, shownSteps, undo } from "./model.js";
import { clock, exactSeconds } from "./words.js";

const kBetweenLines = 450;  // ms between recorded lines that take no time of their own

let running = false;
let since = 0;          // when the shown moment of the device was reached, in ms of the page
let firstWaited = -1;   // the first line that running time has written
let wake = 0;

const atEnd = () => model.cursor >= model.lines.length;
const elapsed = () => Math.round((performance.now() - since) * 1000);
// Time stops short of the next timer: that one is waited for by `tick`.
function passed() {
  const { time, nextTimer } = shownState();
  return Math.min(elapsed(), nextTimer == null ? Infinity : Math.max(0, nextTimer - time));
}
const shownTime = () => shownState().time + (running && atEnd() && !model.busy ? passed() : 0);

function wait(micros) {
  if (micros <= 0 || failedStep()) return;
  const first = firstWaited < 0;
  if (first) firstWaited = model.lines.length;
  play([...model.lines, "advance " + exactSeconds(micros)], undefined, first);
}

function tick() {
  clearTimeout(wake);
  if (!running || model.busy) return;
  if (!atEnd()) {
    const next = model.steps[model.cursor];
    if (!next) return stop();
    const took = (next.state.time - shownState().time) / 1000;
    wake = setTimeout(() => moveTo(model.cursor + 1), Math.max(next.line ? kBetweenLines : 0, took));
    return;
  }
  if (!isLive()) return stop();
  const { time, nextTimer, springBoard } = shownState();
  if (nextTimer == null || !springBoard) return;
  const due = () => { if (running && atEnd() && !model.busy) wait(nextTimer - time); };
  wake = setTimeout(due, Math.max(0, (nextTimer - time - elapsed()) / 1000));
}

function stop() {
  if (!running) return;
  const rest = atEnd() && isLive() && !model.busy ? passed() : 0;
  running = false;
  clearTimeout(wake);
  if (rest > 10000) wait(rest);
  joinWaits();
  changed();
}

// Time stops where it is: something else is played.
export function holdTime() {
  running = false;
  firstWaited = -1;
}

// Lines of waiting that stand directly behind one another become one.
function joinWaits() {
  if (firstWaited < 0) return;
  const lines = model.lines.slice(0, firstWaited);
  let sum = 0;
  const flush = () => { if (sum) lines.push("advance " + exactSeconds(sum)); sum = 0; };
  for (const line of model.lines.slice(firstWaited)) {
    const waits = /^advance ([\d.]+)$/.exec(line);
    if (waits) sum += Math.round(waits[1] * 1e6);
    else { flush(); lines.push(line); }
  }
  flush();
  firstWaited = -1;
  if (lines.length !== model.lines.length) play(lines);
}

function run() {
  running = true;
  since = performance.now();
  if (atEnd() && !isLive()) moveTo(0);
  changed();
}

const kTimeActions = {
  pace: () => (running ? stop() : run()),
  back: () => { stop(); moveTo(model.cursor - 1); },
  step: () => { stop(); moveTo(model.cursor + 1); },
  timer: () => { const { time, nextTimer } = shownState(); wait(nextTimer - time); if (!running) firstWaited = -1; },
  end: () => moveTo(model.lines.length),
  undo: () => { holdTime(); undo(); say("Undone."); },
};

function drawTime() {
  const { nextTimer, time } = shownState();
  const bar = byId("time");
  const able = (name, can) => { bar.querySelector(`[data-time="${name}"]`).disabled = !can; };
  able("back", model.cursor > 0);
  able("step", !atEnd());
  able("end", !atEnd());
  able("timer", isLive() && atEnd() && nextTimer != null);
  able("undo", isLive() && canUndo());
  const pace = bar.querySelector('[data-time="pace"]');
  pace.textContent = running ? "Hold time" : "Let time pass";
  pace.setAttribute("aria-pressed", running);
  const slider = byId("moment");
  slider.max = model.lines.length;
  if (document.activeElement !== slider || +slider.value !== model.cursor) slider.value = model.cursor;
  slider.setAttribute("aria-valuetext", `line ${model.cursor} of ${model.lines.length}`);
  fill(byId("where"), `line ${shownSteps()} of ${model.lines.length}`);
  fill(byId("due"), nextTimer == null ? "no timer" : "next timer in " + exactSeconds(nextTimer - time) + " s");
}

function drawClocks() {
  const text = clock(shownTime());
  for (const shown of document.querySelectorAll(".virtual-clock")) if (shown.textContent !== text) shown.textContent = text;
  requestAnimationFrame(drawClocks);
}

export function startPace() {
  let seen = null;
  onPress(byId("time"), "time", (name) => kTimeActions[name]());
  byId("moment").addEventListener("input", (event) => { stop(); moveTo(+event.target.value); });
  comesBefore(() => {
    const micros = running ? passed() : 0;
    if (micros < 1) return [];
    if (firstWaited < 0) firstWaited = model.lines.length;
    return ["advance " + exactSeconds(micros)];
  });
  onChange(() => {
    const shown = model.steps[shownSteps() - 1];
    if (shown !== seen) { seen = shown; since = performance.now(); }
    drawTime();
    tick();
  });
  drawClocks();
}
