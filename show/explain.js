// Rows in the words of somebody who uses the phone: tables of patterns and sentences. The first that
// fits counts. $1 is what the pattern caught; {$1} the name of the app that it caught, [$1] what the
// signal says, {} the process.
import { appName, kSettingNames, kSignals, playControl } from "./words.js";

const kCommandWords = [
  [/^boot$/, "The phone starts, and with it its home screen."],
  [/^(?:start|open) (\S+)/, "{$1} is started."],
  [/^end (\S+)$/, "{$1} is ended."],
  [/^tap-title$/, "The title on the media controls is tapped."],
  [/^tap-icon (\S+)$/, "The icon of {$1} is tapped."],
  [/^remote [02]$/, "Play is pressed on an accessory."],
  [/^remote [02] in (\S+)/, "Play is pressed inside of {$1}."],
  [/^remote (\d+)/, "Media command $1 is sent."],
  [/^watch/, "A button is pressed on the watch."],
  [/^headphones (in|out)/, "The headphones go $1."],
  [/^unlock$/, "The phone is unlocked."],
  [/^passcode/, "The passcode entry is shown or goes away."],
  [/^display-off$/, "The display goes off."],
  [/^drag-lock-screen$/, "A finger drags the lock screen."],
  [/^quit-card (\S+)$/, "The card of {$1} is thrown out of the app switcher."],
  [/^now-playing/, "The system hears what plays now."],
  [/^title-view/, "The media controls appear, or the system wants another title."],
  [/^widget (\S+)/, "The open button of the widget $1 is pressed."],
  [/^press (\d+)$/, "Button $1 of the alert is pressed."],
  [/^settings open$/, "The page in the Settings app is opened."],
  [/^settings set "(.*)" (yes|no)$/, "The switch “$1” is moved."],
  [/^settings choose "(.*)" (\S+)$/, "{$2} is chosen as “$1”."],
  [/^settings/, "The settings page is left, or a button of it is pressed."],
  [/^advance (\S+)$/, "$1 seconds pass."],
  [/^locked yes$/, "The phone is locked."],
];

const kRowWords = [
  [/^started /, "{} starts, and the library is loaded into it."],
  [/^ended /, "{} ends."],
  [/^timer /, "A moment that {} waited for has come."],
  [/^delivered (.*)/, "{} hears: “[$1]”."],
  [/^notify_post\("(.*)"\)/, "{} tells everybody: “[$1]”."],
  [/^crash: (.*)/, "{} crashed: $1"],
  [/launchApplicationWithIdentifier:"(.*?)" suspended:YES/, "{$1} is started in the background."],
  [/launchApplicationWithIdentifier:"(.*?)" suspended:NO/, "{$1} is opened."],
  [/^-\[SBApplication\((.*?)\) processDidLaunch:/, "The home screen notices that {$1} has started."],
  [/^-\[SBApplication\((.*?)\) resumeForContentAvailable/, "{$1} is nudged so that it goes on in the background."],
  [/^-\[FBScene\((.*?)\) .*backgrounded NO/, "{$1} is kept awake as if it were in front."],
  [/^-\[FBScene\((.*?)\) .*backgrounded YES/, "{$1} goes back to being in the background."],
  [/openURL:"(.*?)"/, "The address $1 is opened."],
  [/transportControlsView:.* tapOnControlType:(\d+)/, "A tap on control $1 of the media controls."],
  [/mediaControlsTitlesViewWasTapped/, "A tap on the now-playing title."],
  [/_launchIcon/, "An icon on the home screen starts its app."],
  [/setNowPlayingInfo:/, "The home screen learns what plays now."],
  [/^-\[SBMediaController play\]/, "What is loaded goes on playing."],
  [/^MRMediaRemoteSendCommand\([02],/, "A play command for the system's media service."],
  [/^MRMediaRemoteSendCommand\((\d+)/, "Media command $1 for the system's media service."],
  [/^-\[SPTPlayer setPaused:NO\]|^-\[MTPlayer play\]/, "The player is told to play."],
  [/^-\[SPTPlayer setPaused:YES\]/, "The player is told to pause."],
  [/SPTNowPlayingPlaybackController init|FinishLaunching/, "The app finishes starting."],
  [/setPasscodeLockVisible:YES .*withUnlockSource/, "The passcode is asked for: the player opens after the unlock."],
  [/setPasscodeLockVisible:/, "The passcode entry is shown or hidden."],
  [/dismissAnimated/, "Control Center is closed."],
  [/turnOnScreenFully|resetLockScreenIdleTimer/, "The screen is turned on, for a little longer than usual."],
  [/finishUIUnlockFromSource/, "The unlock is finished."],
  [/_handleDisplayTurnedOff/, "The lock screen notices that the display went off."],
  [/touchesShouldCancel/, "The lock screen asks whether a drag begins."],
  [/_quitAppAtIndex|removeDisplayItem|SBAppSwitcherModel remove:/, "The card leaves the app switcher."],
  [/updateNowPlayingAppDisplayName:"(.*)"/, "The title now shows “$1”."],
  [/MPUMediaControlsTitlesView (init|dealloc)/, "A now-playing title comes or goes."],
  [/^-\[UIAlertView show\] \S+ "((?:[^"\\]|\\.){0,60})/, "An alert is shown: “$1…”"],
  [/requestAccessToAccounts/, "The user is asked for access to the Twitter accounts."],
  [/^-\[SLRequest perform.* as "(.*)"/, "The account $1 follows the developer."],
  [/^AudioServicesPlaySystemSound/, "A sound tells that the request was taken."],
  [/^system\("killall -9 Music"\)/, "Music is ended."],
  [/^system\("killall.*iapd/, "The accessory services are restarted, so that they load the library too."],
  [/initWithContentsOfFile/, "The settings file is read."],
  [/writeToFile/, "The settings file is written."],
  [/scheduledTimerWithTimeInterval:(\S+)/, "From now on it looks how things stand, every $1 s."],
  [/^-\[NSTimer invalidate\]/, "It stops looking how things stand."],
  [/^MSHook\w+\((.*)\)/, "The library attaches itself to $1."],
  [/^CFNotificationCenterAddObserver\(darwin, "(.*)"\)/, "From now on it listens for “[$1]”."],
  [/HeadphoneJackIsConnected/, "From now on it listens for the headphone jack."],
  [/SBAppSuggestionManager init/, "The system is kept from suggesting an app of its own."],
  [/SpringBoard init|applicationDidFinishLaunching/, "The home screen comes up."],
  [/action_OpenApp|action_openapp|openNowPlayingApp|activateApplicationWith/, "A widget opens the app that plays."],
  [/didReceiveCommand:/, "A button was pressed on the watch."],
];

const kQuestions = [
  [/SBMediaController hasTrack/, "Is anything loaded?"], [/isPlaying/, "Does anything play?"],
  [/isUILocked/, "Is the phone locked?"], [/SBApplication\((.*)\) isRunning/, "Does {$1} run already?"],
  [/screenIsO(n|ff)/, "Is the screen o$1?"], [/inCall|anyCallIsHosted/, "Is there a phone call?"],
  [/NSArray containsObject:"(.*)"/, "Does AppList list {$1}?"],
  [/attributeForKey:"AVSystemController_HeadphoneJack/, "Are headphones plugged in?"],
  [/nowPlayingApplication/, "Whose track is it?"], [/canOpenURL/, "Can that address be opened?"],
];

function fitting(table, text, state, process) {
  for (const [pattern, words] of table) {
    const found = pattern.exec(text);
    if (!found) continue;
    return words.replace(/\{\$(\d)\}|\[\$(\d)\]|\$(\d)|\{\}/g, (_, app, signal, text) =>
      app ? (found[app] === "none" ? "No app" : appName(found[app], state))
      : signal ? kSignals.get(found[signal]) ?? found[signal]
      : text ? found[text] : appName(process, state));
  }
  return null;
}

export function explainCommand(line, state) {
  const tap = /^tap-transport (\d+)$/.exec(line);
  if (tap) return (+tap[1] === playControl(state.version) ? "Play" : "Another button") + " is pressed on the media controls.";
  return fitting(kCommandWords, line, state) ?? line;
}

// What one row means. Always a sentence, if need be a general one.
export function explainRow(row, state) {
  const called = row.kind === "effect" || row.kind === "hook";
  const plain = fitting(kRowWords, called ? row.call : `${row.kind} ${row.call}`, state, row.process);
  if (row.kind === "hook") return (plain ?? "A call.").replace(/\.$/, ": the library answers instead.");
  return plain ?? (row.by === "passed" ? "The library looks at this call and passes it on." : "The phone is asked for this.");
}

// What a call asks and what it was told: [question, answer], or null for a call of no interest.
export function explainQuestion(row, state) {
  const setting = /objectForKey(?:edSubscript)?:"(.*)"\]/.exec(row.call);
  if (setting) {
    const name = kSettingNames.get(setting[1]);
    if (!name) return null;
    const text = /^"(.*)"$/.exec(row.answer);
    const said = { YES: "on", 1: "on", NO: "off", 0: "off" }[row.answer] ?? "not set";
    return [`Setting “${name}”`, text ? appName(text[1], state) : said];
  }
  const question = row.answer != null && /^[-+]\[/.test(row.call) && fitting(kQuestions, row.call, state);
  return question ? [question, { YES: "yes", NO: "no" }[row.answer] ?? row.answer] : null;
}
