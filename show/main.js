// The page's start: what it shows is a recording that stands in it, or a device behind a server.
import { byId, el, fill, say } from "./dom.js";
import { startAround } from "./around.js";
import { startRecord } from "./compare.js";
import { startDetail } from "./detail.js";
import { about, openSession } from "./live.js";
import { connect, model, onChange, play, receive, replay, showRecording } from "./model.js";
import { startPace } from "./pace.js";
import { startPhone } from "./phone.js";
import { openFile, openText, startScenario } from "./scenario.js";
import { startSetUp } from "./setup.js";

// A locked, silent phone whose user has chosen Spotify: Play does something at once.
const kBeginning = `app com.spotify.client "Spotify"
app com.example.notes "Notes"
prefs iea9AQXrEmhSZ4u yes  # redirection is on
prefs 2I8UQMOAwU5nnNZt "com.spotify.client"  # to Spotify
prefs 4sySMd4CfPOr0F yes  # start hidden while locked
prefs LyyY0YZw4enaXR6S yes  # and play when started
prefs feo63OPBmERAd2000UpdRdCAND yes  # the user was greeted long ago
locked yes
boot
title-view new lock-screen
title-view show lock-screen "Music"`;

let session = null;

async function useBuild(build) {
  session?.close();
  session = null;
  const waiting = [];
  connect((number, lines) => (session ? session.play(number, lines) : waiting.push([number, lines])));
  session = await openSession(build, receive, say);
  waiting.forEach(([number, lines]) => session.play(number, lines));
}

function startAll(builds, files) {
  startPhone();
  startAround();
  startDetail();
  startSetUp();
  startRecord(builds, () => byId("build").value);
  startScenario(files);
  startPace();
  fill(byId("build"), builds.map((name) => el("option", { value: name }, name)));
  onChange(() => {
    document.body.classList.toggle("busy", model.busy);
    if (model.note) say(model.note);
    model.note = "";
    if (model.gone) say(`The device process ended: ${model.gone}. Whatever you do next starts it anew.`);
  });
}

// What the address asks for: #scenario=TEXT, or #open=scenarios/PATH (or saved/NAME). Answers whether
// it asks for anything.
async function openAsked() {
  const asked = /^#(scenario|open)=(.*)$/s.exec(location.hash);
  if (!asked) return false;
  const what = decodeURIComponent(asked[2]);
  if (asked[1] === "scenario") openText(what, "from a link");
  else await openFile(what.slice(0, what.indexOf("/")), what.slice(what.indexOf("/") + 1));
  return true;
}

function showEmbedded(recording) {
  document.body.classList.add("recorded");
  startAll([recording.build], null);
  fill(byId("edition"), "a recording, " + recording.build);
  showRecording(recording);
}

async function showLive() {
  try {
    const told = await about();
    await useBuild(told.builds[0]);
    startAll(told.builds, told);
    fill(byId("edition"), told.version);
    byId("build").addEventListener("change", async (event) => {
      try { await useBuild(event.target.value); replay(); } catch (error) { say(error.message); }
    });
    addEventListener("hashchange", openAsked);
    addEventListener("pagehide", () => session?.close());
    if (!await openAsked()) play(kBeginning.split("\n"), undefined, false);
  } catch (error) { say(error.message); }
}

const recording = byId("recording");
if (recording) showEmbedded(JSON.parse(recording.textContent));
else showLive();
