// The page's start: what it shows is a recording that stands in it, or a device behind a server.
import { byId, el, fill, say } from "./dom.js";
import { startAround } from "./around.js";
import { startRecord } from "./compare.js";
import { startDetail } from "./detail.js";
import { about } from "./live.js";
import { endDevice, play, showRecording, useBuild } from "./model.js";
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

function startAll(builds, edition, files) {
  fill(byId("edition"), edition);
  fill(byId("build"), builds.map((name) => el("option", { value: name }, name)));
  for (const start of [startPhone, startAround, startDetail, startSetUp, startPace]) start();
  startRecord(builds);
  startScenario(files);
}

// What the address asks for: #scenario=TEXT, or #open=scenarios/PATH (or saved/NAME).
function openAsked() {
  const [, kind, asked] = /^#(scenario|open)=(.*)$/s.exec(location.hash) ?? [];
  try {
    if (kind === "scenario") openText(decodeURIComponent(asked), "from a link");
    if (kind === "open") openFile(decodeURIComponent(asked));
  } catch { say("The link is broken: it cannot be read."); }
}

async function showLive() {
  try {
    const told = await about();
    startAll(told.builds, told.version, told);
    useBuild(told.builds[0]);
    byId("build").addEventListener("change", (event) => useBuild(event.target.value));
    addEventListener("hashchange", openAsked);
    addEventListener("pagehide", endDevice);
    addEventListener("pageshow", ({ persisted }) => persisted && useBuild(byId("build").value));
    play(kBeginning.split("\n"), undefined, false);
    openAsked();
  } catch (error) { say(error.message); }
}

const recording = JSON.parse(byId("recording")?.textContent ?? null);
if (recording) {
  document.body.classList.add("recorded");
  startAll([recording.build], "a recording, " + recording.build, { scenarios: [], saved: [] });
  showRecording(recording);
} else showLive();
