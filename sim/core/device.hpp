// The simulated device: what is installed, what is held and shown, and the processes. Stands in for
// the phone as a whole; leaves out that two things may happen at the same time.
//
// Setting a field is what the platform does silently. What causes events goes through the methods
// of Device or through messages to the platform's objects.
#pragma once
#include <deque>
#include <filesystem>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <set>
#include <typeindex>
#include <unordered_map>

#include "sim/core/call_tree.hpp"
#include "sim/core/clock.hpp"
#include "sim/core/files.hpp"
#include "sim/core/process.hpp"

namespace sim {

class Injection;

inline const std::string kSpringBoard = "com.apple.springboard";
inline const std::string kMusic = "com.apple.Music";
inline const std::string kSpotify = "com.spotify.client";
inline const std::string kPodcasts = "com.apple.podcasts";
inline const std::string kGarmin = "com.garmin.connect.mobile";
inline const std::string kSettings = "com.apple.Preferences";

// An installed app.
struct App {
  std::string identifier;
  std::string name;
  bool listed = true;  // by AppList
  bool running = false;
};

// Whether another extension has hooked what the library hooks, and when.
enum class Neighbour : std::uint8_t { None, Before, After };

// What SpringBoard's media controller holds.
struct Track {
  std::string app;
  bool playing = false;
};

// How a player app differs from one that is well-behaved.
struct PlayerTemper {
  std::optional<int> after = 1;  // nudges until it plays; none: never. From its next start on
  bool replaced = false;  // every nudge puts another player object in the place of the one told
  unsigned vanishes = 0;  // every so many times that it is asked for there is no player
  struct Report {
    bool playing;
    bool paused;
  };
  std::optional<Report> reports;  // its state as it says, whatever it is
};

struct DeviceState {
  double version = 1145.15;
  std::vector<App> apps{{kMusic, "Music"}};  // in the order in which they were installed
  // What processes find that start from now on.
  std::set<std::string> missingClasses;
  Frameworks frameworks;
  bool selectorsOfVersion = false;  // only those; else the selectors of every version
  std::set<std::pair<std::string, std::string>> missingMethods;  // class and selector
  std::set<std::string> addOns;  // installed; their classes come with the next SpringBoard
  bool locked = false;
  bool screenOn = true;
  bool passcodeShown = false;  // the pad on the lock screen
  bool inCall = false;
  bool headphones = false;
  std::optional<std::string> front;  // the front-most app
  std::optional<Track> track;
  std::map<std::string, PlayerTemper> players;  // by app; well-behaved unless set
  std::vector<std::string> accounts;
  bool accountsGranted = true;
  std::optional<std::uint32_t> networkFlags = 0x2;
  std::set<std::string> openableSchemes;
  bool settingsReadOnly = false;
  std::string language = "en";          // of the user
  std::filesystem::path settingsEntry;  // of the settings page, on the host; empty: the product's
  // Whether the platform passes values that tell where scenarios mostly show nil and 0.
  bool tellingArguments = false;
  // Of processes that start from now on: another extension in them, and the classes on which the
  // app has a category of its own.
  Neighbour neighbour = Neighbour::None;
  std::set<std::string> categories;

  App* app(const std::string& identifier);  // borrowed; null if not installed
};

// A part of the system that is no app: it outlives processes, and hears of their end.
class Service {
 public:
  virtual ~Service() = default;
  virtual void processEnded(const Process&) {}
};

class Device {
 public:
  Device(Trace& trace, LibraryLoader& loader);
  ~Device();
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;

  DeviceState state;
  Clock clock;
  Trace& trace;
  LibraryLoader& loader;
  Injection* injection = nullptr;  // borrowed; what goes wrong, if anything
  CallTree* callTree = nullptr;    // borrowed; who wants to know what happens inside of what

  // What the device has one of, made at its first use.
  template <class T>
  T& service() {
    std::unique_ptr<Service>& slot = services_[typeid(T)];
    if (!slot) slot = std::make_unique<T>(*this);
    return static_cast<T&>(*slot);
  }

  Files files;

  void setVersion(double version);

  // ---- Processes, in the order in which they started
  Process* process(const std::string& identifier);  // null if it does not run
  Process* springBoard() { return process(kSpringBoard); }
  std::vector<Process*> processes();
  void bootSpringBoard();
  // An app's process starts: running, processDidLaunch:, its library, its own start-up.
  void startApp(const std::string& identifier);
  // A daemon's process starts: its library is loaded.
  void startDaemon(const std::string& name);
  // Ends a process without a trace: its timers, observers, queued work and library go.
  void endProcess(Process& process);

  // ---- Time and order
  // Runs one callback of a process: an autorelease pool around it, and a Fault ends the process
  // with a crash line. False if the process died.
  bool callback(Process& process, const std::function<void()>& body, Thread thread = Thread::Main);
  // The next time that a platform implementation of that name (selector or function) runs, `work`
  // happens in the middle of it, as it does where one runs the run loop.
  void during(const std::string& name, std::function<void()> work);
  bool isInterruptedAt(const std::string& name) const;
  // Runs what waits for that name. Throws if `process` has ended by it.
  void interrupt(Process& process, const std::string& name);
  std::size_t interrupted() const { return interrupted_; }  // how often, so far
  // Work to be done after the running callback. With a process, it goes when the process ends.
  void enqueue(Process* process, std::function<void()> work);
  void drain();
  void advance(Microseconds span);

  void postDarwin(const std::string& name);
  std::size_t steps() const { return steps_; }  // of the queue, so far
  void effect(const Process& process, const std::string& call,
              CallTree::By by = CallTree::By::Platform);
  void otherCall(const Process& process, const std::string& call);

  // Handle spaces, unique over all processes so that a stale one is always found out.
  Address nextObjectAddress();
  Address selector(const std::string& name);
  const std::string* selectorName(Address address) const;

 private:
  void deliverDarwin(const std::string& name);
  void runCallback(Process& process, const std::function<void()>& body, Thread thread);

  std::deque<std::pair<std::string, std::function<void()>>> interruptions_;
  struct Queued {
    std::uint64_t process = 0;  // number of the process it belongs to; 0: the device
    std::function<void()> work;
  };
  std::map<std::type_index, std::unique_ptr<Service>> services_;
  std::list<std::unique_ptr<Process>> processes_;
  std::list<std::unique_ptr<Process>> dead_;  // kept until nothing of theirs runs any more
  std::deque<Queued> queue_;
  std::size_t steps_ = 0;
  std::size_t interrupted_ = 0;
  int depth_ = 0;  // callbacks running
  std::uint64_t started_ = 0;
  Address nextObject_;
  std::unordered_map<std::string, Address> selectors_;
  std::deque<std::string> selectorNames_;  // in the order of their addresses
};

// What an app does when its process comes up, and SpringBoard when it boots. Implemented by the
// platform classes (sim/platform/start_up.cpp).
void startUpSpringBoard(Process& springBoard);
void tellProcessLaunched(Process& springBoard, const std::string& app);
void startUpApp(Process& app);
// What is in a process besides the library (sim/platform/app_category.cpp, neighbour.cpp).
void addAppCategories(Process& process);
void hookAsNeighbour(Process& process);

}  // namespace sim
