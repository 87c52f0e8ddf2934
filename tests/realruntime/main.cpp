// corvalen-real: plays a scenario with the library on a real Objective-C runtime, and prints the
// trace that `corvalen-sim run` prints. Expectations are passed over: they speak of the trace
// alone.
//
//     corvalen-real [--live] SCENARIO
//
// --live plays in real time and through GNUstep's notification daemon; expectations wait.
// Exit status: 0 it was played; 2 a command could not be done as the device was; 3 it holds what
// this program leaves out, which is said on standard error.
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>

#include "host.hpp"
#include "sim/foundation/plist_file.hpp"
#include "sim/scenario/words.hpp"

namespace real {

namespace {

const char* const kSettings = "/var/mobile/Library/Preferences/com.qvethmar.corvalenpro.plist";
const char* const kAddOnFolder = "/Library/MobileSubstrate/DynamicLibraries/";

struct Line {
  std::string echo;
  std::vector<sim::scenario::Word> words;
  const std::string& word(std::size_t i) const { return words.at(i).text; }
  bool is(std::size_t i, const char* text) const {
    return i < words.size() && words[i].text == text;
  }
};

void addToList(char* list, const std::string& name) {
  const std::string all = (*list ? list : "\n") + name + "\n";
  copyText(list, all, kList);
}

App& installed(const std::string& app) {
  if (App* known = installedApp(app.c_str())) return *known;
  throw std::runtime_error(app + " is not installed");
}

// ---- Setting the device up

void install(Host& host, const Line& line) {
  App* app = installedApp(line.word(1).c_str());
  if (app && host.runs(kSpringBoard)) host.tell(kSpringBoard, {"drop-application", line.word(1)});
  if (!app && device->appCount == kMostApps) throw std::runtime_error("too many apps");
  if (!app) app = &device->apps[device->appCount++];
  copyText(app->identifier, line.word(1));
  copyText(app->name, line.word(2));
  app->listed = true;
}

void write(const Host& host, const std::string& bytes) {
  std::ofstream(host.path(kSettings), std::ios::binary) << bytes;
}

void setKey(const Host& host, const Line& line) {
  std::ifstream file(host.path(kSettings), std::ios::binary);
  sim::PlistNode root = sim::parsePropertyList({std::istreambuf_iterator<char>(file), {}});
  if (root && plist_get_node_type(root.get()) != PLIST_DICT) root.reset();
  const bool absent = line.is(2, "absent") && !line.words[2].quoted;
  if (!root && absent) return;
  if (!root) root.reset(plist_new_dict());
  plist_t value = nullptr;
  if (line.words.at(2).quoted)
    value = plist_new_string(line.word(2).c_str());
  else if (line.is(2, "yes") || line.is(2, "no"))
    value = plist_new_bool(line.is(2, "yes"));
  else if (!absent)
    value = plist_new_uint(static_cast<uint64_t>(std::stoll(line.word(2))));
  if (value)
    plist_dict_set_item(root.get(), line.word(1).c_str(), value);
  else
    plist_dict_remove_item(root.get(), line.word(1).c_str());
  write(host, sim::toXml(root.get()));
}

void writeFile(const Host& host, const Line& line) {
  if (line.words.at(1).quoted) return write(host, line.word(1));
  std::string bytes;
  for (std::size_t i = 0; i + 1 < line.word(2).size(); i += 2)
    bytes += static_cast<char>(std::stoi(line.word(2).substr(i, 2), nullptr, 16));
  write(host, bytes);
}

void setTrack(const Line& line) {
  copyText(device->track, line.is(1, "none") ? "" : line.word(1));
  device->trackPlaying = line.is(2, "playing");
}

void setPlayer(const Line& line) {
  int& after = line.is(1, "com.apple.podcasts") ? device->podcastsAfter : device->spotifyAfter;
  after = line.is(2, "after") ? std::stoi(line.word(3)) : 0;
}

void addAddOn(const Host& host, const Line& line) {
  addToList(device->addOns, line.word(1));
  std::ofstream(host.path(kAddOnFolder + line.word(1) + ".dylib"));
}

std::string scheme(std::string text) { return text.substr(0, text.find(':')); }

using Action = std::function<std::optional<bool>(Host&, const Line&)>;
template <class Work>
Action doing(Work work) {
  return [work](Host& host, const Line& line) -> std::optional<bool> {
    work(host, line);
    return std::nullopt;
  };
}
template <class Work>
Action setting(Work work) {
  return doing([work](Host&, const Line& line) { work(line); });
}

const std::map<std::string, Action>& setUpCommands() {
  static const std::map<std::string, Action> all = {
      {"version", setting([](auto& l) { device->version = std::stod(l.word(1)); })},
      {"app", doing(install)},
      {"unlist", setting([](auto& l) { installed(l.word(1)).listed = false; })},
      {"no-class", setting([](auto& l) { addToList(device->missing, l.word(1)); })},
      {"addon", doing(addAddOn)},
      {"prefs", doing(setKey)},
      {"prefs-file", doing(writeFile)},
      {"prefs-remove", doing([](auto& h, auto&) { std::remove(h.path(kSettings).c_str()); })},
      {"prefs-readonly", setting([](auto& l) { device->settingsReadOnly = l.is(1, "yes"); })},
      {"locked", setting([](auto& l) { device->locked = l.is(1, "yes"); })},
      {"screen", setting([](auto& l) { device->screenOn = l.is(1, "on"); })},
      {"call", setting([](auto& l) { device->inCall = l.is(1, "yes"); })},
      {"front",
       setting([](auto& l) { copyText(device->front, l.is(1, "none") ? "" : l.word(1)); })},
      {"running", setting([](auto& l) { installed(l.word(1)).running = l.is(2, "yes"); })},
      {"track", setting(setTrack)},
      {"player", setting(setPlayer)},
      {"account", setting([](auto& l) { addToList(device->accounts, l.word(1)); })},
      {"accounts", setting([](auto& l) { device->accountsGranted = l.is(1, "granted"); })},
      {"network", setting([](auto& l) {
         const bool answers = !l.is(1, "unavailable");
         device->networkFlags = answers ? std::stoll(l.word(1), nullptr, 16) : -1;
       })},
      {"can-open", setting([](auto& l) { addToList(device->schemes, scheme(l.word(1))); })},
  };
  return all;
}

// ---- What happens

// Most of it happens to SpringBoard, which gets the command as it stands.
std::optional<bool> inSpringBoard(Host& host, const Line& line) {
  Words words;
  for (const auto& word : line.words) words.push_back(word.text);
  return host.tell(kSpringBoard, words);
}

Action inApp(const std::string& app) {
  return [app](Host& host, const Line& line) {
    return host.tell(app, {line.word(0), line.words.size() > 1 ? line.word(1) : ""});
  };
}

std::optional<bool> remote(Host& host, const Line& line) {
  return inApp(line.is(2, "in") ? line.word(3) : kSpringBoard)(host, line);
}

void post(const std::string& name) { enqueue(kPost, 0, name.c_str(), nullptr); }

const std::map<std::string, Action>& eventCommands() {
  static const std::map<std::string, Action> all = [] {
    std::map<std::string, Action> rows = {
        {"boot", doing([](auto& host, auto&) { host.boot(); })},
        {"start", doing([](auto& host, auto& l) { host.start(l.word(1)); })},
        {"end", doing([](auto& host, auto& l) { host.end(l.word(1)); })},
        {"remote", remote},
        {"new-controller", inApp("com.spotify.client")},
        {"watch", inApp("com.garmin.connect.mobile")},
        {"post", setting([](auto& l) { post(l.word(1)); })},
        {"announce", setting([](auto&) { post("bfaK8ayWXeXMQum"); })},
        {"advance", doing([](auto& host, auto& l) {
           host.advance(std::llround(std::stod(l.word(1)) * 1e6));
         })},
    };
    for (const char* name : {"open", "tap-transport", "tap-title", "tap-icon", "headphones",
                             "now-playing", "unlock", "passcode", "display-off", "drag-lock-screen",
                             "title-view", "widget", "press", "process-launched", "quit-card"})
      rows[name] = inSpringBoard;
    return rows;
  }();
  return all;
}

const Action* action(const std::string& name) {
  for (const auto* rows : {&setUpCommands(), &eventCommands()})
    if (const auto found = rows->find(name); found != rows->end()) return &found->second;
  return nullptr;
}

// ---- Playing

std::vector<Line> read(std::istream& in, bool live) {
  std::vector<Line> lines;
  for (std::string text; std::getline(in, text);) {
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string::npos) continue;
    if (text.compare(first, 6, "expect") == 0) {
      if (live) lines.push_back({text.substr(first), {{"expect"}}});
      continue;
    }
    Line line{sim::scenario::withoutComment(text), sim::scenario::splitWords(text)};
    if (!line.words.empty()) lines.push_back(std::move(line));
  }
  return lines;
}

// In real time an expectation waits for its line of the trace.
void awaitExpected(Host& host, const Line& line) {
  const std::string text = line.echo.substr(line.echo.find(' ') + 1);
  if (!host.await(text)) throw std::runtime_error("in half a minute there was no " + text);
}

int play(const std::string& library, std::istream& in, bool live) {
  const std::vector<Line> lines = read(in, live);
  for (const Line& line : lines) {
    const bool aMood = line.is(0, "player") && !line.is(2, "after") && !line.is(2, "never");
    if ((action(line.word(0)) && !aMood) || line.is(0, "expect")) continue;
    std::cerr << "the command " << line.word(0) << '\n';
    return 3;
  }
  Host host(library);
  device->live = live;
  for (const Line& line : lines) {
    std::printf("> %s\n", line.echo.c_str());
    if (line.is(0, "expect")) {
      awaitExpected(host, line);
      continue;
    }
    if (const auto answer = (*action(line.word(0)))(host, line))
      std::printf("= %s\n", *answer ? "YES" : "NO");
    host.drain();
  }
  return 0;
}

}  // namespace

}  // namespace real

int main(int count, char** words) {
  const bool live = count == 3 && words[1] == std::string("--live");
  if (count != 2 && !live) {
    std::cerr << "usage: corvalen-real [--live] SCENARIO\n";
    return 2;
  }
  const char* const scenario = words[count - 1];
  try {
    std::ifstream file(scenario);
    if (!file) throw std::runtime_error("cannot be read");
    const auto program = std::filesystem::read_symlink("/proc/self/exe");
    return real::play(program.parent_path() / "proCorvalen.so", file, live);
  } catch (const std::exception& error) {
    std::cerr << scenario << ": " << error.what() << '\n';
    return 2;
  }
}
