// The server: devices, what they did, files. Everything is below the address of the page.
import { say } from "./dom.js";

const kGone = "The server has gone. Start it again and load this page anew.";

async function ask(path, method, type, body) {
  const gone = () => { throw new Error(kGone); };
  const answer = await fetch(path, { method, headers: type && { "Content-Type": type }, body }).catch(gone);
  if (answer.ok) return answer;
  const told = await answer.json().catch(() => ({}));
  throw new Error(told.error ?? `${path}: ${answer.status}`);
}

const post = (path, body) => ask(path, "POST", "application/json", JSON.stringify(body));
const fileAddress = (folder, name) => folder + "/" + name.split("/").map(encodeURIComponent).join("/");

export const about = async () => (await ask("about")).json();
export const readFile = async (folder, name) => (await ask(fileAddress(folder, name))).text();
export const saveFile = async (name, text) => (await ask(fileAddress("saved", name), "PUT", "text/plain", text)).json();

// A device of its own, and what the lines did that it was told to play last.
export class Device {
  lines = [];
  steps = [];           // as it has them (or a beginning of them, while it plays)
  valid = 0;            // how many of them belong to `lines`
  busy = false;         // a play is under way
  last = Promise.resolve();  // of what was asked of the server
  #held = [];           // the lines that `steps` belong to
  #number = 0;          // of the last play
  #sent = new Map();    // the lines of plays, by their number
  #again = false;       // this is a second session, and nothing was heard of it yet

  // `heard` is told whatever its process says, once it counts.
  constructor(build, heard) {
    Object.assign(this, { build, heard });
    this.#open();
  }

  // Plays reach the server in the order of their numbers.
  #then(next) {
    this.last = this.last.then(next).catch((error) => {
      this.busy = false;
      say(error.message);
    });
  }

  #open() {
    this.#then(async () => {
      this.path = "sessions/" + (await (await post("sessions", { build: this.build })).json()).session;
      this.events = new EventSource(this.path + "/events");
      this.events.onmessage = (message) => this.#hear(JSON.parse(message.data));
      this.events.onerror = () => this.events.readyState === EventSource.CLOSED && this.#lost();
      await new Promise((resolve) => { this.events.onopen = resolve; setTimeout(resolve, 1000); });
    });
  }

  // The session is over, but another one can play the same lines.
  #lost() {
    if (this.#again) return say(kGone);
    this.#again = true;
    this.#open();
    this.play(this.lines);
  }

  play(lines) {
    const number = ++this.#number;
    this.#sent.set(number, lines);
    this.#count(lines);
    this.busy = true;
    this.#then(() => post(this.path + "/play", { play: number, lines }));
  }

  #count(lines) {
    this.lines = lines;
    let same = lines === this.#held ? lines.length : 0;
    while (same < lines.length && lines[same] === this.#held[same]) ++same;
    this.valid = Math.min(this.steps.length, same);
  }

  #hear(said) {
    const mine = said.play === this.#number;
    this.#again = false;
    if (said.wrong && !mine) return;
    if ("from" in said) {
      this.#held = this.#sent.get(said.play);
      this.#sent.delete(said.play);
      this.steps.length = said.from;
    }
    if ("step" in said) this.steps[said.step] = said;
    if (said.gone || (mine && (said.done || said.wrong))) this.busy = false;
    this.#count(said.wrong ? this.#held : this.lines);
    this.heard(said);
  }

  close() {
    this.last.then(() => {
      this.events.close();
      return fetch(this.path, { method: "DELETE", keepalive: true });
    }).catch(() => {});
  }
}
