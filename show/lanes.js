// The record drawn: a lane for each process, time downwards, arrows from a signal to whoever hears it.
// Only the rows that can be seen exist; all have one height.
import { explain } from "./detail.js";
import { byId, div, el, fill, span } from "./dom.js";
import { arrowsOf, kOutcomes, lanesOf } from "./rows.js";
import { appName, clock, hueOf, letters } from "./words.js";

const kRow = 46;  // pixels, as in the style
const kShapes = {
  taken: "M0-7 7 0 0 7-7 0z", passed: "M-5-5H5V5H-5z", own: "M-5 0a5 5 0 1 0 10 0a5 5 0 1 0-10 0",
  signal: "M-5-6 7 0-5 6z", arrives: "M5-6-7 0 5 6z", system: "M-4-4H4V4H-4z", timer: "M-5-6H5L-5 6H5z",
  life: "M-7-2H7V2H-7z", crash: "M-6-6 6 6M6-6-6 6",
};
const kSteps = { ArrowDown: 1, ArrowUp: -1, PageDown: 10, PageUp: -10, End: Infinity, Home: -Infinity };

export class Lanes {
  record = [];
  arrows = [];
  lanes = [];
  pitch = 24;
  at = -1;      // the chosen row
  marked = -1;  // the first that differs

  constructor(host, label) {
    this.host = host;
    this.head = div("lane-heads");
    this.space = el("div", { class: "space", role: "presentation" });
    this.box = el("div", { class: "record", role: "listbox", tabindex: "0", "aria-label": label }, this.space);
    host.replaceChildren(this.head, this.box);  // (what an earlier record left there is not made over)
    this.box.addEventListener("keydown", (event) => this.key(event));
    this.box.addEventListener("click", (event) => {
      const pressed = event.target.closest("[data-at]");
      if (pressed && !String(getSelection())) this.choose(+pressed.dataset.at);
    });
    this.box.addEventListener("scroll", () => this.draw());
    new ResizeObserver(() => this.draw()).observe(this.box);
  }

  // Shows another record. If it ends elsewhere, the newest command and what it did come into view.
  show(record, state) {
    const item = this.record[this.at], lanes = lanesOf(record);
    const moved = record.at(-1)?.step !== this.record.at(-1)?.step;
    Object.assign(this, { record, state, lanes, arrows: arrowsOf(record), pitch: Math.min(24, 240 / lanes.length) });
    this.at = item ? record.findIndex((one) => one.step === item.step && one.index === item.index) : -1;
    this.space.style.height = record.length * kRow + "px";
    fill(this.head, span("time", "time"),
      lanes.length <= 10 && lanes.map((process) => span("icon tiny " + hueOf(process), letters(appName(process, state)))),
      span("names", lanes.map((process) => appName(process, state)).join(" · ") || "no process yet"));
    if (moved) this.box.scrollTop = Math.max(0, record.findLastIndex((one) => one.index < 0 && !one.folded)) * kRow;
    this.draw();
  }

  scrollTo(at, middle = false) {
    const { box } = this, top = at * kRow, room = box.clientHeight;
    box.scrollTop = middle ? top - room / 2 : Math.max(top + kRow - room, Math.min(top, box.scrollTop));
    this.draw();
  }

  choose(at) {
    const item = this.record[at];
    if (item?.folded) return this.unfold();
    this.at = at;
    this.scrollTo(at);
    if (item) explain(item);
  }

  key(event) {
    if (event.key === "Enter" && this.record[this.at]?.folded) return this.unfold();
    const by = kSteps[event.key];
    if (!by) return;
    event.preventDefault();
    const from = this.at < 0 ? Math.floor(this.box.scrollTop / kRow) - Math.sign(by) : this.at;
    const to = Math.max(0, Math.min(this.record.length - 1, from + by));
    if (!this.record[to]?.folded) return this.choose(to);
    this.at = to;
    this.scrollTo(to);
  }

  draw() {
    const { box, record } = this;
    const seen = Math.ceil(box.clientHeight / kRow) + 1;
    const top = Math.min(Math.floor(box.scrollTop / kRow), record.length - seen);
    const first = Math.max(0, top - 4);
    const end = Math.min(record.length, Math.max(0, top) + seen + 4);
    this.host.style.setProperty("--strip", this.width() + "px");
    fill(this.space, el("div", { class: "seen", role: "presentation" }, this.picture(first, end),
      record.slice(first, end).map((item, at) => this.row(item, first + at))));
    this.space.firstChild.style.top = first * kRow + "px";
    if (this.at >= first && this.at < end) box.setAttribute("aria-activedescendant", this.idOf(this.at));
    else box.removeAttribute("aria-activedescendant");
  }

  unfold() { byId("by-folded").click(); }
  idOf(at) { return `${this.host.id}-${at}`; }
  width() { return 14 + Math.max(1, this.lanes.length) * this.pitch; }
  laneX(process) { return 14 + this.lanes.indexOf(process) * this.pitch; }

  row(item, at) {
    const differs = at === this.marked;
    return el("div", { id: this.idOf(at), class: `row ${item.outcome}${differs ? " differs" : ""}`, "data-at": at,
        role: "option", "aria-selected": String(at === this.at), "aria-posinset": at + 1,
        "aria-setsize": this.record.length },
      span("time", clock(item.time)),
      span("strip"),
      span("words", span("text", item.text),
        span("", el("b", { class: "tag" }, differs ? "first difference" : kOutcomes[item.outcome]),
          item.process && span("who", appName(item.process, this.state), " "), el("code", {}, !item.folded && item.call))));
  }

  // Lanes, arrows and marks of the rows from `first` to `end`, in one picture above them.
  picture(first, end) {
    const height = (end - first) * kRow;
    const middle = (at) => (at - first) * kRow + kRow / 2;
    const line = (name, d, transform) => el("path", { class: name, d, transform });
    const lanes = this.lanes.map((process) => line("lane " + hueOf(process), `M${this.laneX(process)} 0V${height}`));
    const arrows = this.arrows.filter(([from, to]) => to >= first && from < end).map(([from, to]) => {
      const x = this.laneX(this.record[from].process), there = this.laneX(this.record[to].process);
      const bend = x === there ? x + this.pitch * 0.7 : (x + there) / 2;
      const y = middle(from), below = middle(to);
      return line("arrow", `M${x} ${y}C${bend} ${y + 14} ${bend} ${below - 14} ${there} ${below}`);
    });
    const marks = this.record.slice(first, end).map(({ process, outcome }, at) => process &&
      line("mark " + outcome, kShapes[outcome], `translate(${this.laneX(process)} ${middle(first + at)})`));
    return el("svg", { class: "lanes", width: this.width(), height, "aria-hidden": "true" }, lanes, arrows, marks);
  }
}
