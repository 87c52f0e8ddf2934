// What lies around the phone and can be plugged in or pressed.
import { action, byId, el, fill, onPress } from "./dom.js";
import { act, isLive, kLooking, onChange, shownState } from "./model.js";
import { appName, kWatchApp } from "./words.js";

// Buttons: [label, lines, why it cannot be pressed now, whether it is how things stand].
function group(name, off, ...buttons) {
  return el("div", { class: "thing", role: "group", "aria-label": name }, el("h3", {}, name),
    el("div", {}, buttons.map(([label, lines, why, pressed]) =>
      action(label, lines, isLive() ? off || why : kLooking, { "aria-pressed": pressed == null ? null : String(pressed) }))));
}

function watch(state, off) {
  const app = state.apps.find((one) => one.id === kWatchApp);
  if (app && !app.live) return group("Watch", off, ["Start its app", "start " + kWatchApp]);
  const why = !app && "needs the app Connect: see “Set up the phone”";
  return group("Watch", off, ["Play", "watch 0", why], ["Next", "watch 1", why], ["Back", "watch 2", why]);
}

function music(state, off) {
  const held = state.track;
  const name = held ? appName(held.app, state) : "Music";
  const id = held ? held.app : "com.apple.Music";
  return group("What plays", off, [name + " plays", `track ${id} playing\nnow-playing yes`, null, Boolean(held?.playing)],
    [name + " is paused", `track ${id} paused\nnow-playing yes`, null, Boolean(held && !held.playing)],
    ["Nothing", "track none\nnow-playing nil", null, !held]);
}

const kWidgetLines = { Auxo: "widget Auxo com.apple.Music no-cell" };

function drawThings() {
  const state = shownState();
  const off = !state.springBoard && "the phone is off";
  const silent = state.apps.filter((app) => app.live && app.id !== kWatchApp && app.id !== state.front);
  fill(byId("things"),
    group("Headphones", off, state.headphones ? ["Pull out", "headphones out"] : ["Plug in", "headphones in"]),
    group("Accessory", off, ["Play", "remote 0"], ["Play/Pause", "remote 2"], ["Pause", "remote 1"], ["Next", "remote 4"]),
    watch(state, off),
    group("Phone call", null, state.inCall ? ["End", "call no"] : ["Begin", "call yes"]),
    group("Network", null, ["On", "network 0x2", null, Boolean(state.network)],
      ["Off", "network 0x0", null, !state.network]),
    music(state, off),
    state.addOns.length > 0 && group("Widgets", off,
      ...state.addOns.map((name) => [name, kWidgetLines[name] ?? "widget " + name])),
    silent.length > 0 && group("In the background", off, ...silent.flatMap((app) =>
      [["Play in " + app.name, `remote 2 in ${app.id}`], ["End " + app.name, "end " + app.id]])),
    group("Phone", null, ["Restart it", "boot", !state.springBoard && "the phone is off"]));
}

export function startAround() {
  onPress(byId("around"), "do", (lines) => act(lines));
  onChange(drawThings);
}
