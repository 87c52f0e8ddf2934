// The phone before it starts: version, apps, settings, add-ons, what is missing. All of it is lines
// before the first `boot`; changing one plays everything again.
import { byId, el, fill } from "./dom.js";
import { isLive, model, onChange, play } from "./model.js";
import { holdTime } from "./pace.js";
import { kAddOns, kApps, kChoosers, kDefaultVersion, kFrameworks, kSwitches, kVersions, playControl } from "./words.js";

const escaped = (text) => text.replace(/[.*+?^${}()|[\]\\]/g, "\\$&");
const startsWith = (words) => new RegExp("^\\s*" + escaped(words) + "(\\s|$)");

function headLength(lines) {
  const boot = lines.findIndex((line) => /^\s*boot\b/.test(line));
  return boot < 0 ? lines.length : boot;
}

// The lines with `line` in the place of those of the head that begin with `words`; null: without.
function withHead(lines, words, line) {
  const end = headLength(lines);
  const pattern = startsWith(words);
  const first = lines.findIndex((one, at) => at < end && pattern.test(one));
  const top = Math.max(0, lines.findIndex((one) => !/^\s*(#|$)/.test(one)));
  const at = first >= 0 ? first : words === "version" ? top : end;
  const others = lines.filter((one, index) => index >= end || !pattern.test(one));
  if (line !== null) others.splice(at, 0, line);
  return others;
}

function versionOf(lines) {
  const last = lines.slice(0, headLength(lines)).findLast((line) => startsWith("version").test(line));
  return last ? +last.trim().split(/\s+/)[1] : kDefaultVersion;
}

// The same scenario on another version: Play keeps being Play, whatever its number.
export function onVersion(lines, version) {
  const from = playControl(versionOf(lines)), to = playControl(version);
  return withHead(lines, "version", "version " + version)
    .map((line) => (from === to ? line : line.replace(new RegExp(`^(\\s*tap-transport )${from}\\b`), "$1" + to)));
}

function change(lines) {
  holdTime();
  play(lines, Math.max(0, model.cursor + lines.length - model.lines.length));
}

// ---- What the head says

function read() {
  const said = { apps: new Map(), addOns: new Set(), missing: [], frameworks: new Map(), settings: new Map() };
  for (const line of model.lines.slice(0, headLength(model.lines))) {
    const [word, first, ...rest] = line.trim().replace(/\s+#[^"]*$/, "").split(/\s+/);
    if (word === "app") said.apps.set(first, rest.join(" ").replace(/^"|"$/g, ""));
    if (word === "addon") said.addOns.add(first);
    if (word === "no-class") said.missing.push(first);
    if (word === "framework") said.frameworks.set(first, rest[0]);
    if (word === "prefs") said.settings.set(first, rest.join(" ").replace(/^"|"$/g, ""));
  }
  return said;
}

// ---- The form. Every field names the words that its line begins with, and the line.

const field = (words, line, more) => ({ "data-words": words, "data-says": line, disabled: !isLive(), ...more });
const check = (name, on, words, line = words) =>
  el("label", { class: "check" }, el("input", field(words, line, { type: "checkbox", checked: on })), name);
const pick = (name, value, choices, words, line) => el("label", { class: "pick" }, el("span", {}, name),
  el("select", field(words, line), choices.map(([says, shown]) => el("option", { value: says, selected: says === value }, shown))));
const kLoaded = [["", "as usual"], ["loaded", "loaded"], ["late", "late"], ["missing", "missing"]];
const part = (name, ...fields) => el("fieldset", {}, el("legend", {}, name), fields);

function drawForm() {
  if (!byId("set-up").open) return;
  const said = read();
  const apps = new Map([...kApps, ...said.apps]);
  const choices = [["", "None"], ...apps];
  const without = (name, shown = name) => check(shown, said.missing.includes(name), "no-class " + name);
  fill(byId("form"),
    part("Apps installed", [...apps].map(([id, name]) =>
      id !== "com.apple.Music" && check(name, said.apps.has(id), "app " + id, `app ${id} "${name}"`))),
    part("Settings file", kSwitches.map(([key, name]) =>
      check(name, said.settings.get(key) === "yes", "prefs " + key, `prefs ${key} yes`)),
      kChoosers.map(([key, name]) => pick(name, said.settings.get(key) ?? "", choices, "prefs " + key, `prefs ${key} "%"`))),
    part("Add-ons", kAddOns.map((name) => check(name, said.addOns.has(name), "addon " + name))),
    part("Missing", without("ALApplicationList", "AppList"),
      said.missing.filter((name) => name !== "ALApplicationList").map((name) => without(name)),
      el("label", { class: "pick" }, el("span", {}, "Another class"),
        el("input", { type: "text", id: "missing-class", placeholder: "SPTPlayer" }))),
    part("Frameworks", kFrameworks.map((name) =>
      pick(name, said.frameworks.get(name) ?? "", kLoaded, "framework " + name, `framework ${name} %`))));
}

export function startSetUp() {
  const versions = byId("version");
  fill(versions, kVersions.map(([name, number]) => el("option", { value: number }, "iOS " + name)));
  versions.addEventListener("change", () => change(onVersion(model.lines, +versions.value)));
  byId("set-up").addEventListener("toggle", ({ target }) => {
    drawForm();
    if (target.open) target.scrollIntoView({ block: "start" });
  });
  byId("form").addEventListener("submit", (event) => event.preventDefault());
  byId("form").addEventListener("change", ({ target }) => {
    if (target.id === "missing-class") {
      if (/^\w+$/.test(target.value)) change(withHead(model.lines, "no-class " + target.value, "no-class " + target.value));
      target.value = "";
      return;
    }
    const { words, says } = target.dataset;
    const line = target.type === "checkbox" ? target.checked && says : target.value && says.replace("%", target.value);
    change(withHead(model.lines, words, line || null));
  });
  onChange(() => {
    const version = versionOf(model.lines);
    const known = kVersions.some(([, number]) => number === version);
    if (!known && ![...versions.options].some((option) => +option.value === version))
      versions.append(el("option", { value: version }, "version " + version));
    if (document.activeElement !== versions || !model.busy) versions.value = version;
    versions.disabled = !isLive();
    drawForm();
  });
}
