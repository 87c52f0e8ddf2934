// The phone: a picture of the state, made of buttons that play the lines a finger would.
import { action, byId, div, el, fill, onPress, span } from "./dom.js";
import { act, isLive, kLooking, model, onChange, shownState } from "./model.js";
import { appName, hueOf, kSettingsApp, kSpringBoard, letters, playControl } from "./words.js";

let over = null;       // "cards" or "controls": what lies over the screen, of the page's own doing
let chooserOpen = null;  // the label of the list of apps that a finger has opened

const reason = (...reasons) => (isLive() ? reasons.find(Boolean) : kLooking);
const icon = (id, name) => el("span", { class: "icon " + hueOf(id), "aria-hidden": "true" }, letters(name));
// A whole screen. Another name is another one, whatever it has in common with the one before.
const whole = (name, ...content) => el("div", { class: name, "data-key": name }, ...content);
const own = (label, ui, attributes = {}) => el("button", { type: "button", "data-ui": ui, ...attributes }, label);
const glyph = (path) => el("svg", { viewBox: "0 0 24 24", "aria-hidden": "true" }, el("path", { d: path }));

const kPlay = "M8 5v14l11-7z", kPause = "M7 5h4v14H7zM13 5h4v14h-4z";
const kNext = "M5 5v14l9-7zM16 5h3v14h-3z", kBack = "M19 5v14l-9-7zM5 5h3v14H5z";

function mediaControls(state) {
  const title = state.titles.at(-1)?.text || (state.track ? appName(state.track.app, state) : "");
  const playing = state.track?.playing;
  const control = playControl(state.version);
  const button = (label, number, path, kind) =>
    action(glyph(path), "tap-transport " + number, reason(), { "aria-label": label, class: "round " + kind });
  return el("section", { class: "media", "aria-label": "Media controls" },
    action([el("b", {}, title || "Nothing loaded"),
      el("small", {}, !state.track ? "nothing is loaded" : playing ? "playing" : "paused")], "tap-title", reason(), { class: "title" }),
    div("transport", button("Previous", 1, kBack, "small"),
      button(playing ? "Pause" : "Play", control, playing ? kPause : kPlay, "big"), button("Next", 5, kNext, "small")));
}

const virtualClock = () => el("p", { class: "virtual-clock big-clock" }, byId("clock").textContent);

function lockScreen(state) {
  if (state.passcode) {
    return whole("lock passcode", el("h2", {}, "Passcode"),
      el("p", { class: "dots", "aria-hidden": "true" }, "● ● ● ○"),
      action("Enter it", "unlock", reason(), { class: "main" }), action("Cancel", "passcode no yes no", reason()));
  }
  return whole("lock", virtualClock(), el("p", { class: "faint" }, "Locked"), mediaControls(state),
    div("pair", action("Unlock", "unlock", reason(), { class: "main" }),
      action("Ask for passcode", "passcode yes yes no", reason()), action("Drag", "drag-lock-screen", reason())));
}

function homeScreen(state) {
  const one = (id, name, lines, badge) => el("li", {},
    action([icon(id, name), el("span", {}, name), badge && span("badge", badge)], lines, reason()));
  return whole("home", el("ul", { class: "icons" },
    state.apps.map((app) => one(app.id, app.name, "tap-icon " + app.id, app.running || app.live ? "running" : null)),
    one(kSettingsApp, "Settings", "settings open", null)));
}

function appScreen(state) {
  const id = state.front;
  const name = appName(id, state);
  const live = state.processes.some((process) => process.id === id);
  const track = state.track?.app === id ? (state.track.playing ? "plays" : "is paused") : "is silent";
  return whole("app", icon(id, name), el("h2", {}, name), el("p", {}, name + " " + track + "."),
    action("Press Play in here", "remote 2 in " + id, reason(!live && name + " has no process here"), { class: "main" }));
}

function settingsRow(state, row) {
  const label = el("span", {}, row.label);
  const why = reason(!row.enabled && "greyed: another switch has to be on first");
  if (row.kind === "switch")
    return action([label, span("switch")], `settings set "${row.label}" ${row.value ? "no" : "yes"}`, why,
      { role: "switch", "aria-checked": String(Boolean(row.value)) });
  if (row.kind === "button") return action(label, "settings reset", why, { class: "danger" });
  if (row.kind === "app") return el("p", { class: "listed" }, label, row.checked && " ✓");
  const shown = own([label, span("value", row.value || "None", " ›")], "choose " + row.label,
    { disabled: Boolean(why), title: why, "aria-expanded": String(chooserOpen === row.label) });
  if (chooserOpen !== row.label) return shown;
  const choices = [["none", "None"], ...state.apps.filter((app) => app.listed).map((app) => [app.id, app.name])];
  return [shown, div("choices", choices.map(([id, name]) =>
    action([name, name === row.value && " ✓"], `settings choose "${row.label}" ${id}`, why)))];
}

function settingsScreen(state) {
  const page = state.settings;
  return whole("settings",
    el("header", {}, el("h2", {}, page.title), page.button && action(page.button, "settings help", reason())),
    page.groups.map((group) => el("section", {}, group.title && el("h3", {}, group.title),
      div("rows", group.rows.map((row) => settingsRow(state, row))),
      group.footer && el("p", { class: "footer" }, group.footer))));
}

function cards(state) {
  const shown = state.apps.filter((app) => app.running || app.live);
  const away = (app) => `quit-card ${app.id}\n` + (app.live ? "end " + app.id : `running ${app.id} no`);
  const locked = state.locked && "the phone is locked";
  return whole("over cards-over", el("h2", {}, "App switcher"), shown.length === 0 && el("p", {}, "No app is running."),
    el("ul", { class: "cards" }, shown.map((app) => el("li", {},
      action([icon(app.id, app.name), app.name], `open ${app.id} foreground`, reason(locked)),
      action("×", away(app), reason(), { "aria-label": "Throw out " + app.name })))), own("Back", "none"));
}

function alert(state) {
  const top = state.alerts.at(-1);
  if (!top) return null;
  const elsewhere = top.process !== kSpringBoard && "the next touch of the settings page closes it";
  const box = { class: "alert", role: "alertdialog", "aria-modal": "false", "aria-label": top.title || "Alert" };
  return whole("veil", el("div", box,
    el("div", { class: "message", tabindex: "0" }, top.title && el("h2", {}, top.title), el("p", {}, top.message)),
    div("answers", top.buttons.map((text, at) =>
      action(text, "press " + at, reason(elsewhere), { class: at ? "" : "main" }))),
    state.alerts.length > 1 && el("p", { class: "faint" }, `${state.alerts.length - 1} more below`)));
}

function screen(state) {
  if (!state.springBoard)
    return whole("off", el("p", {}, "The phone is off"), action("Switch on", "boot", reason(), { class: "main" }));
  if (!state.screenOn) return whole("off dark", action("Wake", "screen on", reason(), { class: "main" }));
  if (over === "cards") return cards(state);
  if (over === "controls") return whole("over", el("h2", {}, "Control Center"), mediaControls(state), own("Back", "none"));
  if (state.locked) return lockScreen(state);
  if (state.settings && state.front === kSettingsApp) return settingsScreen(state);
  return state.front ? appScreen(state) : homeScreen(state);
}

function drawPhone() {
  const state = shownState();
  if (!state.springBoard || !state.screenOn || state.passcode) over = null;
  const focused = byId("screen").contains(document.activeElement);
  fill(byId("screen"), screen(state), state.springBoard && state.screenOn && alert(state));
  if (focused && !byId("screen").contains(document.activeElement)) byId("screen").focus();
  fill(byId("status"), el("span", {}, state.springBoard ? (state.locked ? "locked" : "unlocked") : "off"),
    span("virtual-clock", byId("clock").textContent),
    el("span", {}, [state.inCall && "call", state.headphones && "headphones", state.network ? "online" : "offline"]
      .filter(Boolean).join(" · ")));
  const off = !state.springBoard && "the phone is off";
  const dark = !state.screenOn && "the display is off";
  const atHome = !state.locked && !state.front && "this is the home screen";
  fill(byId("keys"),
    action("Home", state.settings && state.front === kSettingsApp ? "settings close" : "front none",
      reason(off, dark, state.locked && "the phone is locked", atHome)),
    [["Cards", "cards", "the app switcher"], ["Controls", "controls", "Control Center"]].map(([label, ui, says]) =>
      own(label, ui, { disabled: Boolean(off || dark), title: off || dark || says, "aria-pressed": String(over === ui) })),
    state.screenOn ? action("Lock", state.locked ? "display-off" : "locked yes\ndisplay-off", reason(off))
                   : action("Wake", "screen on", reason(off)));
}

export function startPhone() {
  onPress(byId("phone"), "do", (lines) => {
    if (!/^(quit-card|tap-t)/.test(lines)) over = null;
    chooserOpen = null;
    act(lines);
  });
  onPress(byId("phone"), "ui", (ui) => {
    if (ui.startsWith("choose ")) chooserOpen = chooserOpen === ui.slice(7) ? null : ui.slice(7);
    else over = over === ui || ui === "none" ? null : ui;
    drawPhone();
  });
  onChange(drawPhone);
}
