// The record drawn: a lane for each process, time downwards, arrows from a signal to whoever hears it.
// Only the rows that can be seen exist; all have one height.
import { el, fill } from "./dom.js";
import { arrowsOf, kOutcomes, lanesOf } from "./rows.js";
import { appName, clock, hueOf, letters } from "./words.js";

const kRow = 46;
const kShapes = {
  taken: "M0-7 7 0 0 7-7 0z", passed: "M-5-5H5V5H-5z", own: "M-5 0a5 5 0 1 0 10 0a5 5 0 1 0-10 0", signal: "M-5-6 7 0-5 6z",
  arrives: "M5-6-7 0 5 6z", system: "M-4-4H4V4H-4z", timer: "M-5-6H5L-5 6H5z", life: "M-7-2H7V2H-7z", crash: "M-6-6 6 6M6-6-6 6",
};

let lists = 0;

// `chosen` is told of the item that is chosen, `unfold` when a folded one is opened.
export function createLanes(host, { label, chosen, unfold }) {
  const number = ++lists;
  const head = el("div", { class: "lane-heads" });
  const space = el("div", { class: "space", role: "presentation" });
  const box = el("div", { class: "record", role: "listbox", tabindex: "0", "aria-label": label }, space);
  fill(host, head, box);
  const list = { record: [], lanes: [], arrows: [], at: -1, marked: -1, state: null, pitch: 24 };
  const laneX = (process) => 14 + list.lanes.indexOf(process) * list.pitch;
  const middle = (at) => at * kRow + kRow / 2;

  function row(item, at) {
    const command = !item.process;
    return el("div", { id: `row-${number}-${at}`, class: `row ${item.outcome}${at === list.marked ? " differs" : ""}`, role: "option", "data-at": at,
        "aria-selected": String(at === list.at), "aria-posinset": at + 1, "aria-setsize": list.record.length },
      el("span", { class: "time" }, clock(item.time)),
      el("span", { class: "strip", "aria-hidden": "true" }),
      el("span", { class: "words" },
        el("span", { class: "what" }, el("b", { class: "tag" }, at === list.marked ? "first difference" : kOutcomes[item.outcome]),
          !command && el("span", { class: "who" }, appName(item.process, list.state)), el("span", { class: "text" }, item.text)),
        el("code", {}, item.folded ? "" : item.call)));
  }

  // Lanes, marks and arrows of the rows from `first` to `end`, in one picture above them.
  function picture(first, end) {
    const width = 14 + Math.max(1, list.lanes.length) * list.pitch;
    const top = first * kRow;
    const strokes = list.lanes.map((process) => el("path", { class: "lane " + hueOf(process), d: `M${laneX(process)} 0V${(end - first) * kRow}` }));
    for (const [from, to] of list.arrows) {
      if (to < first || from >= end) continue;
      const x = laneX(list.record[from].process), y = middle(from) - top, x2 = laneX(list.record[to].process), y2 = middle(to) - top;
      const bend = x === x2 ? x + list.pitch * 0.7 : (x + x2) / 2;
      strokes.push(el("path", { class: "arrow", d: `M${x} ${y}C${bend} ${y + 14} ${bend} ${y2 - 14} ${x2} ${y2}` }));
    }
    for (let at = first; at < end; ++at) {
      const { process, outcome } = list.record[at];
      if (process) strokes.push(el("path", { class: "mark " + outcome, transform: `translate(${laneX(process)} ${middle(at) - top})`, d: kShapes[outcome] }));
    }
    const drawn = el("svg", { class: "lanes", width, height: (end - first) * kRow, "aria-hidden": "true" }, strokes);
    return [drawn, width, top];
  }

  function draw() {
    const first = Math.max(0, Math.floor(box.scrollTop / kRow) - 4);
    const end = Math.min(list.record.length, Math.ceil((box.scrollTop + box.clientHeight) / kRow) + 4);
    const [drawn, width, top] = picture(first, end);
    const rows = [];
    for (let at = first; at < end; ++at) rows.push(row(list.record[at], at));
    space.style.height = list.record.length * kRow + "px";
    host.style.setProperty("--strip", width + "px");
    fill(space, el("div", { class: "seen", role: "presentation" }, drawn, rows));
    space.firstChild.style.top = top + "px";
    if (list.at >= first && list.at < end) box.setAttribute("aria-activedescendant", `row-${number}-${list.at}`);
    else box.removeAttribute("aria-activedescendant");
  }

  function drawHeads() {
    fill(head, el("span", { class: "time" }, "time"), list.lanes.map((process) => el("span", { class: "icon tiny " + hueOf(process), title: process }, letters(appName(process, list.state)))),
      el("span", { class: "names" }, list.lanes.map((process) => appName(process, list.state)).join(" · ") || "no process yet"));
  }

  list.scrollTo = (at, where = "near") => {
    const top = at * kRow;
    if (where === "middle") box.scrollTop = top - box.clientHeight / 2;
    else if (top < box.scrollTop) box.scrollTop = top;
    else if (top + kRow > box.scrollTop + box.clientHeight) box.scrollTop = top + kRow - box.clientHeight;
    draw();
  };
  list.choose = (at) => {
    if (!list.record[at]) return;
    if (list.record[at].folded) return unfold();
    list.at = at;
    list.scrollTo(at);
    chosen(list.record[at], list);
  };
  // Shows another record. If it ends elsewhere, the newest command and what it did come into view.
  list.show = (record, state) => {
    const item = list.record[list.at];
    const newest = record.findLastIndex((one) => one.index < 0 && !one.folded);
    const grown = record.at(-1)?.step !== list.record.at(-1)?.step;
    space.style.height = record.length * kRow + "px";
    const lanes = lanesOf(record);
    Object.assign(list, { record, state, lanes, pitch: lanes.length > 8 ? 16 : 24, arrows: arrowsOf(record) });
    list.at = item ? record.findIndex((one) => one === item || (one.step === item.step && one.index === item.index)) : -1;
    drawHeads();
    if (grown) box.scrollTop = Math.max(0, newest) * kRow;
    draw();
  };

  const kSteps = { ArrowDown: 1, ArrowUp: -1, PageDown: 10, PageUp: -10, End: Infinity, Home: -Infinity };
  box.addEventListener("keydown", (event) => {
    if (!(event.key in kSteps)) return;
    event.preventDefault();
    const start = list.at < 0 ? Math.floor(box.scrollTop / kRow) - Math.sign(kSteps[event.key]) : list.at;
    const to = Math.max(0, Math.min(list.record.length - 1, start + kSteps[event.key]));
    if (list.record[to]?.folded) { list.at = to; list.scrollTo(to); } else list.choose(to);
  });
  box.addEventListener("keydown", (event) => { if (event.key === "Enter" && list.record[list.at]?.folded) unfold(); });
  box.addEventListener("click", (event) => {
    const pressed = event.target.closest("[data-at]");
    if (pressed && !String(getSelection())) list.choose(+pressed.dataset.at);
  });
  let asked = false;
  box.addEventListener("scroll", () => {
    if (asked) return;
    asked = true;
    requestAnimationFrame(() => { asked = false; draw(); });
  });
  new ResizeObserver(draw).observe(box);
  return list;
}
