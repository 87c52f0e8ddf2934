// The server: sessions, what they say, files. Everything is below the address of the page.

async function ask(path, options = {}) {
  const answer = await fetch(path, options);
  if (answer.ok) return answer;
  const told = await answer.json().catch(() => ({}));
  throw new Error(told.error ?? `${path}: ${answer.status}`);
}

const posting = (body) => ({ method: "POST", headers: { "Content-Type": "application/json" }, body: JSON.stringify(body) });

export const about = async () => (await ask("about")).json();
const fileAddress = (folder, name) => folder + "/" + name.split("/").map(encodeURIComponent).join("/");
export const readFile = async (folder, name) => (await ask(fileAddress(folder, name))).text();
export const saveFile = async (name, text) =>
  (await ask(fileAddress("saved", name), { method: "PUT", headers: { "Content-Type": "text/plain" }, body: text })).json();

// A device of its own. `hear` gets what its process says, `fail` what went wrong on the way.
export async function openSession(build, hear, fail) {
  const { session } = await (await ask("sessions", posting({ build }))).json();
  const events = new EventSource(`sessions/${session}/events`);
  events.onmessage = (message) => hear(JSON.parse(message.data));
  events.onerror = () => {
    if (events.readyState === EventSource.CLOSED) fail("The server has gone. Start it again and load this page anew.");
  };
  await new Promise((resolve) => { events.onopen = resolve; setTimeout(resolve, 1000); });
  return {
    // Plays reach the server in the order of their numbers.
    last: Promise.resolve(),
    play(number, lines) {
      this.last = this.last.then(() => ask(`sessions/${session}/play`, posting({ play: number, lines })))
        .catch((error) => fail(error.message));
    },
    close() {
      events.close();
      fetch(`sessions/${session}`, { method: "DELETE", keepalive: true }).catch(() => {});
    },
  };
}
