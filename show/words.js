// What things are called: versions, apps, processes, signals, settings.

export const kVersions = [
  ["9.2", 1242.13], ["9.1", 1241.11], ["9.0", 1240.1], ["8.4", 1145.15], ["8.3", 1144.17],
  ["8.2", 1142.16], ["8.1", 1141.14], ["8.0", 1140.1], ["7.1", 847.24], ["7.0", 847.2],
];
export const kDefaultVersion = 1145.15;

// Play/Pause on the media controls: another number from 8.4 on.
export const playControl = (version) => (version >= 1145.15 && version <= 1280 ? 3 : 4);

export const kSpringBoard = "com.apple.springboard";
export const kSettingsApp = "com.apple.Preferences";
export const kWatchApp = "com.garmin.connect.mobile";
export const kApps = [
  ["com.apple.Music", "Music"], ["com.spotify.client", "Spotify"], ["com.apple.podcasts", "Podcasts"],
  ["com.pandora", "Pandora"], [kWatchApp, "Connect"], ["com.example.notes", "Notes"],
];
const kKnown = new Map([...kApps, [kSpringBoard, "SpringBoard"], [kSettingsApp, "Settings"]]);

export function appName(id, state) {
  const app = state.apps.find((one) => one.id === id);
  return app?.name ?? kKnown.get(id) ?? id.split(".").pop();
}

// One of eight colours, always the same for an app.
export function hueOf(id) {
  let sum = 7;
  for (const letter of id) sum = (sum * 31 + letter.charCodeAt(0)) % 9973;
  return "hue-" + sum % 8;
}
// Two letters: the capitals if there are that many.
export const letters = (name) => (/[A-Z].*[A-Z]/.test(name) ? name.replace(/[^A-Z]/g, "") : name).slice(0, 2);

// Keys of the settings file and what the page in the Settings app calls them.
export const kSettingNames = new Map([
  ["iea9AQXrEmhSZ4u", "Enabled"], ["4sySMd4CfPOr0F", "Start Hidden When Locked"],
  ["KwI68FtaZGgSizb", "Start Hidden When Unlocked"], ["ljyr9pMzliGkTNvfm", "Play a Sound"],
  ["LyyY0YZw4enaXR6S", "Auto-Play"], ["AiPVzGZ3tdh2fBpXy", "Not From the Home Screen"],
  ["I9gqmWG8wXu6", "Play When Plugged In"], ["feo63OPBmERAd2000UpdRdCAND", "Greeted already"],
  ["2I8UQMOAwU5nnNZt", "Preferred Player"], ["RjNkaiHs98230Xx", "Music Replacement"],
  ["hasShownWAL", "Follow offer accepted"],
]);

export const kSignals = new Map([
  ["bfaK8ayWXeXMQum", "the settings changed"],
  ["QjnUR4g9fc9hLq", "a player has started"],
  ["GYbIKwUwyBsCan1l", "start playing"],
  ["VNutj2BhJMTGTwVk", "launch the preferred player"],
  ["FejJ91yPhXo8E", "toggle playback"],
  ["YHePE3bJB3diJ1T", "something is now playing"],
  ["RjZoLhphi82WYz", "nothing is playing any more"],
  ["PV2qdgEyDYK8gUci", "Pandora was launched"],
]);

export const kAddOns = ["Acapella", "Acapella2", "Auxo", "MiniPlayer"];
export const kFrameworks = ["Accounts", "Social", "MediaRemote", "UIKit", "AudioToolbox", "SystemConfiguration",
  "TelephonyUtilities", "Celestial"];

// Virtual time, for people and for the scenario.
export const clock = (micros) => {
  const hundredths = Math.round(micros / 10000);
  const minutes = Math.floor(hundredths / 6000);
  return minutes + ":" + (hundredths % 6000 / 100).toFixed(2).padStart(5, "0");
};
export const exactSeconds = (micros) => String(Math.round(micros) / 1e6);
