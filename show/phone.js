// The phone: a picture of the state, made of buttons that play the lines a finger would.
import { byId, div, el, fill, onPress, span } from "./dom.js";
import { act, isLive, onChange, shownState } from "./model.js";
import { appName, hueOf, kSettingsApp, kSpringBoard, letters, playControl } from "./words.js";

let over = "";  // "cards" or "controls": what lies over the screen, of the page's own doing

const reason = (...reasons) => (isLive() ? reasons.find(Boolean) : "a recording can only be looked at");

// A button that plays scenario lines. `why` says what it waits for, if it cannot be pressed now.
export function action(label, lines, why, attributes = {}) {
  const off = reason(why);
  return el("button", { type: "button", "data-do": lines, disabled: Boolean(off), title: off || lines, ...attributes }, label);
}

// A button that lays something over the screen, or takes it away again.
function overlay(label, ui, title, off = false) {
  return el("button", { type: "button", "data-over": ui, disabled: Boolean(off), title: off || title,
    "aria-pressed": ui ? String(over === ui) : null }, label);
}
const back = () => overlay("Back", "", "take this away");
const icon = (id, name) => el("span", { class: "icon " + hueOf(id), "aria-hidden": "true" }, letters(name));
// A whole screen. Another name is another one, whatever it has in common with the one before.
const whole = (name, ...content) => el("div", { class: name, "data-key": name }, ...content);
const glyph = (path) => el("svg", { viewBox: "0 0 24 24", "aria-hidden": "true" }, el("path", { d: path }));
const kMain = { class: "main" };

const kPlay = "M8 5v14l11-7z", kPause = "M7 5h4v14H7zM13 5h4v14h-4z";
const kNext = "M5 5v14l9-7zM16 5h3v14h-3z", kBack = "M19 5v14l-9-7zM5 5h3v14H5z";

function mediaControls({ titles, track, version, ...state }) {
  const title = titles.at(-1)?.text || (track ? appName(track.app, state) : "Nothing loaded");
  const playing = track?.playing;
  const button = (label, number, path, kind = "round") =>
    action(glyph(path), "tap-transport " + number, null, { "aria-label": label, class: kind });
  return el("section", { class: "media", "aria-label": "Media controls" },
    action([el("b", {}, title), el("small", {}, !track ? "nothing is loaded" : playing ? "playing" : "paused")],
      "tap-title", null, { class: "title" }),
    div("transport", button("Previous", 1, kBack),
      button(playing ? "Pause" : "Play", playControl(version), playing ? kPause : kPlay, "round big main"),
      button("Next", 5, kNext)));
}

function lockScreen(state) {
  if (state.passcode)
    return whole("off lock", el("h2", {}, "Passcode"),
      action("Enter it", "unlock", null, kMain), action("Cancel", "passcode no yes no"));
  return whole("lock", el("p", { class: "virtual-clock big-clock" }, byId("clock").textContent),
    el("p", { class: "faint" }, "Locked"), mediaControls(state),
    div("pair", action("Unlock", "unlock", null, kMain), action("Ask for passcode", "passcode yes yes no"),
      action("Drag", "drag-lock-screen")));
}

function homeScreen(state) {
  const one = ({ id, name, running, live }, lines) =>
    el("li", {}, action([icon(id, name), name, (running || live) && span("badge", "running")], lines));
  return whole("home", el("ul", { class: "icons" }, state.apps.map((app) => one(app, "tap-icon " + app.id)),
    one({ id: kSettingsApp, name: "Settings" }, "settings open")));
}

function appScreen(state) {
  const id = state.front, name = appName(id, state);
  const live = state.processes.some((process) => process.id === id);
  const does = state.track?.app !== id ? "is silent" : state.track.playing ? "plays" : "is paused";
  return whole("off app", icon(id, name), el("h2", {}, name), el("p", {}, `${name} ${does}.`),
    action("Press Play in here", "remote 2 in " + id, !live && name + " has no process here", kMain));
}

function settingsRow(state, { label, kind, enabled, value, checked }) {
  const why = !enabled && "greyed: another switch has to be on first";
  if (kind === "switch")
    return action([label, span("switch")], `settings set "${label}" ${value ? "no" : "yes"}`, why,
      { role: "switch", "aria-checked": String(Boolean(value)) });
  if (kind === "button") return action(label, "settings reset", why, { class: "danger" });
  if (kind === "app") return el("p", {}, label, checked && " ✓");
  const choices = [{ id: "none", name: "None" }, ...state.apps.filter((app) => app.listed)];
  return el("label", {}, label,
    el("select", { "data-choose": label, disabled: Boolean(reason(why)), title: reason(why) },
      choices.map(({ id, name }) => el("option", { value: id, selected: name === (value || "None") }, name))));
}

function settingsScreen(state) {
  const { title, button, groups } = state.settings;
  return whole("settings", div("pair", el("h2", {}, title), button && action(button, "settings help")),
    groups.map((group) => el("section", {}, group.title && el("h3", {}, group.title),
      div("rows", group.rows.map((row) => settingsRow(state, row))),
      group.footer && el("p", { class: "footer" }, group.footer))));
}

function cards(state) {
  const shown = state.apps.filter((app) => app.running || app.live);
  const away = ({ id, live }) => `quit-card ${id}\n` + (live ? "end " + id : `running ${id} no`);
  return whole("over", el("h2", {}, "App switcher"), shown.length === 0 && el("p", {}, "No app is running."),
    el("ul", { class: "cards" }, shown.map((app) => el("li", { class: "pair" },
      action([icon(app.id, app.name), app.name], `open ${app.id} foreground`, state.locked && "the phone is locked"),
      action("×", away(app), null, { "aria-label": "Throw out " + app.name })))), back());
}

function alert({ alerts }) {
  const { title, message, buttons, process } = alerts.at(-1);
  const elsewhere = process !== kSpringBoard && "the next touch of the settings page closes it";
  return whole("veil", el("div", { class: "alert", role: "alertdialog", "aria-label": title || "Alert" },
    el("div", { class: "message", tabindex: "0" }, title && el("h2", {}, title), message),
    buttons.map((text, at) => action(text, "press " + at, elsewhere, { class: at ? "" : "main" })),
    alerts.length > 1 && el("p", { class: "faint" }, `${alerts.length - 1} more below`)));
}

function screen(state) {
  if (!state.springBoard) return whole("off dark", "The phone is off", action("Switch on", "boot", null, kMain));
  if (!state.screenOn) return whole("off dark", action("Wake", "screen on", null, kMain));
  if (over === "cards") return cards(state);
  if (over === "controls") return whole("over", el("h2", {}, "Control Center"), mediaControls(state), back());
  if (state.locked) return lockScreen(state);
  if (state.settings && state.front === kSettingsApp) return settingsScreen(state);
  return state.front ? appScreen(state) : homeScreen(state);
}

function drawPhone() {
  const state = shownState();
  const off = !state.springBoard ? "the phone is off" : !state.screenOn && "the display is off";
  if (off || state.passcode) over = "";
  const focused = byId("screen").contains(document.activeElement);
  fill(byId("screen"), screen(state), !off && state.alerts.length > 0 && alert(state));
  if (focused && !byId("screen").contains(document.activeElement)) byId("screen").focus();
  const signs = [state.inCall && "call", state.headphones && "headphones", state.network ? "online" : "offline"];
  fill(byId("status"), el("span", {}, !state.springBoard ? "off" : state.locked ? "locked" : "unlocked"),
    span("virtual-clock", byId("clock").textContent), el("span", {}, signs.filter(Boolean).join(" · ")));
  fill(byId("keys"),
    action("Home", state.settings && state.front === kSettingsApp ? "settings close" : "front none",
      off || (state.locked ? "the phone is locked" : !state.front && "this is the home screen")),
    overlay("Cards", "cards", "the app switcher", off), overlay("Controls", "controls", "Control Center", off),
    action("Lock", state.locked ? "display-off" : "locked yes\ndisplay-off", off));
}

export function startPhone() {
  onPress(byId("phone"), "do", (lines) => {
    if (!/^(quit-card|tap-t)/.test(lines)) over = "";
    act(lines);
  });
  onPress(byId("phone"), "over", (ui) => {
    over = over === ui ? "" : ui;
    drawPhone();
  });
  byId("screen").addEventListener("change", ({ target }) => act(`settings choose "${target.dataset.choose}" ${target.value}`));
  onChange(drawPhone);
}
