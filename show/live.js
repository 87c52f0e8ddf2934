// The server: devices, what they did, files. Everything is below the address of the page.
import { say } from "./dom.js";

const kGone = "The server has gone, or too many pages are open. Load this page anew when that has changed.";

async function ask(path, method, type, body) {
  const gone = () => { throw new Error(kGone); };
  const headers = type && { "Content-Type": type }, signal = AbortSignal.timeout(10000);
  const answer = await fetch(path, { method, headers, body, signal }).catch(gone);
  if (answer.ok) return answer;
  const told = await answer.json().catch(() => ({}));
  throw Object.assign(new Error(told.error ?? `${path}: ${answer.status}`), { status: answer.status });
}

const post = (path, body) => ask(path, "POST", "application/json", JSON.stringify(body));
const fileAddress = (folder, name) => folder + "/" + name.split("/").map(encodeURIComponent).join("/");

export const about = async () => (await ask("about")).json();
export const readFile = async (folder, name) => (await ask(fileAddress(folder, name))).text();
export const saveFile = (name, text) => ask(fileAddress("saved", name), "PUT", "text/plain", text);

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
  #again = false;       // this is a second try, and nothing was heard of it yet

  // `heard` is told whatever its process says, once it counts.
  constructor(build, heard) {
    Object.assign(this, { build, heard });
    this.#open();
  }

  // A session is its listener: a browser that lost its connection comes back to another one, and so do
  // we, once, if it does not. What was played is played there again.
  #open() {
    this.events = new EventSource("sessions?build=" + encodeURIComponent(this.build));
    this.events.onmessage = (message) => this.#hear(JSON.parse(message.data));
    this.events.onerror = () => this.events.readyState === EventSource.CLOSED && this.#reopen();
  }

  #reopen() {
    this.path = null;
    this.events.close();
    if (this.#again) return this.#fail(new Error(kGone));
    this.#again = true;
    this.#open();
  }

  #begin(session) {
    this.path = "sessions/" + session;
    this.#again = false;
    if (this.#number) this.play(this.lines);
  }

  // With a status: the server refused it, and what was played before is what there is.
  #fail({ message, status }) {
    this.busy = false;
    if (status) this.#count(this.#held);
    say(message);
    this.heard(status ? { wrong: { message } } : {});
  }

  play(lines) {
    const number = ++this.#number;
    this.#sent.set(number, lines);
    this.#count(lines);
    this.busy = true;
    if (!this.path) return;  // it is played when the session begins
    const { path } = this;
    // Plays reach the server in the order of their numbers.
    this.last = this.last.then(() => post(path, { play: number, lines })).catch((error) => {
      if (number !== this.#number || path !== this.path) return;  // another one has taken its place
      if (error.status === 404) this.#reopen();
      else this.#fail(error);
    });
  }

  #count(lines) {
    this.lines = lines;
    let same = lines === this.#held ? lines.length : 0;
    while (same < lines.length && lines[same] === this.#held[same]) ++same;
    this.valid = Math.min(this.steps.length, same);
  }

  #hear(said) {
    if (said.session) return this.#begin(said.session);
    const mine = said.play === this.#number;
    if (said.wrong && !mine) return;
    if ("from" in said) {
      this.#held = this.#sent.get(said.play);
      for (const number of this.#sent.keys()) if (number <= said.play) this.#sent.delete(number);
      this.steps.length = said.from;
    }
    if ("step" in said) this.steps[said.step] = said;
    if (said.gone || (mine && (said.done || said.wrong))) this.busy = false;
    this.#count(said.wrong ? this.#held : this.lines);
    this.heard(said);
  }

  close() { this.events.close(); }
}
