// The phone before it starts: version, apps, settings, add-ons, what is missing. All of it is lines
// before the first `boot`; changing one plays everything again.
import { byId, el, fill } from "./dom.js";
import { isLive, model, onChange, play } from "./model.js";
import { holdTime } from "./pace.js";
import { kAddOns, kApps, kDefaultVersion, kFrameworks, kVersions, playControl } from "./words.js";

function headLength(lines) {
  const boot = lines.findIndex((line) => /^\s*boot\b/.test(line));
  return boot < 0 ? lines.length : boot;
}

// Whether a line begins with these words.
const beginsWith = (words) => (line) => (line.trim().replace(/\s+/g, " ") + " ").startsWith(words + " ");
const headLines = (lines, words) => lines.slice(0, headLength(lines)).filter(beginsWith(words));
// What stands behind those words, without a remark and quotes; null if no line begins with them.
function said(lines, words) {
  const last = headLines(lines, words).at(-1);
  return last == null ? null : last.trim().replace(/\s+#[^"]*$/, "").split(/\s+/).slice(words.split(" ").length).join(" ")
    .replace(/^"|"$/g, "");
}

// The lines with `line` in the place of those of the head that begin with `words`; null: without.
function withHead(lines, words, line) {
  const end = headLength(lines), begins = beginsWith(words);
  const first = lines.findIndex((one, at) => at < end && begins(one));
  const top = Math.max(0, lines.findIndex((one) => !/^\s*(#|$)/.test(one)));
  const at = first >= 0 ? first : words === "version" ? top : end;
  const others = lines.filter((one, index) => index >= end || !begins(one));
  if (line) others.splice(at, 0, line);
  return others;
}

const versionOf = (lines) => +(said(lines, "version") ?? kDefaultVersion);

// The same scenario on another version: Play keeps being Play, whatever its number.
export function onVersion(lines, version) {
  const play = new RegExp(`^(\\s*tap-transport )${playControl(versionOf(lines))}\\b`);
  return withHead(lines, "version", "version " + version).map((line) => line.replace(play, "$1" + playControl(version)));
}

function change(lines) {
  holdTime();
  play(lines, Math.max(0, model.cursor + lines.length - model.lines.length));
}

// ---- The form. Every field names the words that its line begins with, and the line.

function check(name, words, line = words) {
  const checked = said(model.lines, words) != null;
  return el("label", { class: "check" },
    el("input", { type: "checkbox", "data-words": words, "data-line": line, checked }), name);
}

function framework(name) {
  const words = "framework " + name, value = said(model.lines, words);
  return el("label", { class: "pick" }, name, el("select", { "data-words": words, "data-line": words + " %" },
    ["", "loaded", "late", "missing"].map((how) => el("option", { value: how, selected: how === value }, how || "as usual"))));
}

const part = (name, ...fields) => el("fieldset", {}, el("legend", {}, name), fields);
const secondWords = (word) => headLines(model.lines, word).map((line) => line.trim().split(/\s+/)[1]);

function drawForm() {
  if (!byId("set-up").open) return;
  const apps = new Map(kApps);
  for (const id of secondWords("app")) apps.set(id, said(model.lines, "app " + id));
  const missing = new Set(["ALApplicationList", ...secondWords("no-class")]);
  fill(byId("form"),
    part("Apps installed", [...apps].map(([id, name]) =>
      id !== "com.apple.Music" && check(name, "app " + id, `app ${id} "${name}"`))),
    part("Add-ons", kAddOns.map((name) => check(name, "addon " + name))),
    part("Missing classes", [...missing].map((name) => check(name, "no-class " + name))),
    part("Frameworks", kFrameworks.map(framework)));
}

function drawVersion() {
  const shown = byId("version"), version = versionOf(model.lines);
  const known = kVersions.map(([name, number]) => ["iOS " + name, number]);
  if (!known.some(([, number]) => number === version)) known.push(["version " + version, version]);
  fill(shown, known.map(([name, number]) => el("option", { value: number }, name)));
  shown.value = version;
  shown.disabled = !isLive();
}

export function startSetUp() {
  byId("version").addEventListener("change", ({ target }) => change(onVersion(model.lines, +target.value)));
  byId("set-up").addEventListener("toggle", drawForm);
  byId("form").addEventListener("change", ({ target }) => {
    const value = target.type === "checkbox" ? target.checked : target.value;
    change(withHead(model.lines, target.dataset.words, value && target.dataset.line.replace("%", value)));
  });
  onChange(drawVersion);
  onChange(drawForm);
}
