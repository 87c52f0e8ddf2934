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
  const events = new EventSource("sessions?build=" + encodeURIComponent(build));
  let session = "";
  await new Promise((resolve) => {
    events.onmessage = (message) => {
      const said = JSON.parse(message.data);
      if (!said.session) return hear(said);
      // A browser that lost its connection comes back to another device.
      if (session) hear({ gone: "the connection was lost" });
      session = said.session;
      resolve();
    };
    events.onerror = () => {
      if (events.readyState !== EventSource.CLOSED) return;
      fail("The server has gone, or too many pages are open. Load this page anew when that has changed.");
      resolve();
    };
  });
  return {
    // Plays reach the server in the order of their numbers.
    last: Promise.resolve(),
    play(number, lines) {
      this.last = this.last.then(() => ask(`sessions/${session}`, posting({ play: number, lines })))
        .catch((error) => fail(error.message));
    },
    close: () => events.close(),
  };
}
