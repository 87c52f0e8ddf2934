// What lies around the phone and can be plugged in or pressed.
import { byId, div, el, fill, onPress } from "./dom.js";
import { act, onChange, shownState } from "./model.js";
import { action } from "./phone.js";
import { appName, kWatchApp } from "./words.js";

// Buttons: [label, lines, why it cannot be pressed now, whether it is how things stand].
function group(name, off, ...buttons) {
  return el("div", { class: "thing", role: "group", "aria-label": name }, el("h3", {}, name),
    div("pair", buttons.map(([label, lines, why, pressed]) =>
      action(label, lines, off || why, { "aria-pressed": pressed == null ? null : String(pressed) }))));
}

function watch(state, off) {
  const app = state.apps.find((one) => one.id === kWatchApp);
  if (app && !app.live) return group("Watch", off, ["Start its app", "start " + kWatchApp]);
  const why = off || (!app && "needs the app Connect: see “Set up the phone”");
  return group("Watch", why, ["Play", "watch 0"], ["Next", "watch 1"], ["Back", "watch 2"]);
}

function music(state, off) {
  const { track } = state;
  const id = track?.app ?? "com.apple.Music", name = appName(id, state);
  return group("What plays", off, [name + " plays", `track ${id} playing\nnow-playing yes`, null, track?.playing === true],
    [name + " is paused", `track ${id} paused\nnow-playing yes`, null, track?.playing === false],
    ["Nothing", "track none\nnow-playing nil", null, !track]);
}

function drawThings() {
  const state = shownState();
  const off = !state.springBoard && "the phone is off";
  const silent = state.apps.filter((app) => app.live && app.id !== kWatchApp && app.id !== state.front);
  fill(byId("things"),
    group("Headphones", off, state.headphones ? ["Pull out", "headphones out"] : ["Plug in", "headphones in"]),
    group("Accessory", off, ["Play", "remote 0"], ["Play/Pause", "remote 2"], ["Pause", "remote 1"], ["Next", "remote 4"]),
    watch(state, off),
    group("Phone call", null, state.inCall ? ["End", "call no"] : ["Begin", "call yes"]),
    group("Network", null, state.network ? ["Off", "network 0x0"] : ["On", "network 0x2"]),
    music(state, off),
    state.addOns.length > 0 && group("Widgets", off, ...state.addOns.map((name) =>
      [name, "widget " + name + (name === "Auxo" ? " com.apple.Music no-cell" : "")])),
    silent.length > 0 && group("In the background", off, ...silent.flatMap((app) =>
      [["Play in " + app.name, "remote 2 in " + app.id], ["End " + app.name, "end " + app.id]])),
    group("Phone", off, ["Restart it", "boot"]));
}

export function startAround() {
  onPress(byId("around"), "do", act);
  onChange(drawThings);
}
