#include "host.hpp"

#include <signal.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>

extern "C" {

App* installedApp(const char* identifier) {
  for (App* app = device->apps; app != device->apps + device->appCount; ++app)
    if (!std::strcmp(app->identifier, identifier)) return app;
  return nullptr;
}

void enqueue(Kind kind, int process, const char* text, void* work) {
  if (device->queueEnd == kMostQueued) std::abort();
  Queued& entry = device->queue[device->queueEnd++];
  entry = {kind, process, {}, work};
  real::copyText(entry.text, text);
}

bool listHolds(const char* list, const char* name) {
  const std::string entry = "\n" + std::string(name) + "\n";
  return std::strstr(list, entry.c_str()) != nullptr;
}
}

namespace real {

namespace fs = std::filesystem;

void copyText(char* to, const std::string& text, std::size_t room) {
  if (text.size() >= room) throw std::runtime_error("a text is too long: " + text);
  std::memcpy(to, text.c_str(), text.size() + 1);
}

Host::Host(std::string library) : library_(std::move(library)) {
  device = static_cast<Device*>(
      mmap(nullptr, sizeof(Device), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  if (device == MAP_FAILED) throw std::runtime_error("no memory for the device");
  prepareFoundation();
  device->version = 1145.15;
  device->screenOn = device->accountsGranted = true;
  device->spotifyAfter = device->podcastsAfter = 1;
  device->networkFlags = 2;
  device->apps[device->appCount++] = {"com.apple.Music", "Music", true, false, false};
  std::string folder = (fs::temp_directory_path() / "corvalen-real-XXXXXX").string();
  if (!mkdtemp(folder.data())) throw std::runtime_error("cannot make " + folder);
  copyText(device->root, folder);
  fs::create_directories(path("/var/mobile/Library/Preferences"));
  fs::create_directories(path("/Library/MobileSubstrate/DynamicLibraries"));
}

Host::~Host() {
  while (!processes_.empty()) forget(processes_.begin());
  std::error_code ignored;
  fs::remove_all(device->root, ignored);
  munmap(device, sizeof(Device));
  device = nullptr;
}

Host::Position Host::find(const std::string& app) {
  return std::ranges::find(processes_, app, &Process::identifier);
}

// ---- Processes

void Host::launch(const std::string& app) {
  int channel[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET, 0, channel)) throw std::runtime_error("no socket");
  const int number = ++started_;
  std::fflush(stdout);
  const pid_t pid = fork();
  if (pid < 0) throw std::runtime_error("no process");
  if (pid == 0) {
    for (const Process& other : processes_) close(other.channel);
    close(channel[0]);
    runProcess(app.c_str(), number, channel[1], library_.c_str());
  }
  close(channel[1]);
  processes_.push_back({app, number, pid, channel[0]});
  if (App* known = installedApp(app.c_str())) known->lives = true;
  tell(app, {"start"});
}

void Host::forget(Position process) {
  Queued* const begin = device->queue + device->queueBegin;
  Queued* const end = device->queue + device->queueEnd;
  const auto gone = [&](const Queued& entry) { return entry.process == process->number; };
  device->queueEnd = static_cast<int>(std::remove_if(begin, end, gone) - device->queue);
  if (App* known = installedApp(process->identifier.c_str())) known->lives = false;
  close(process->channel);
  kill(process->pid, SIGKILL);
  waitpid(process->pid, nullptr, 0);
  processes_.erase(process);
}

void Host::boot() {
  if (runs(kSpringBoard)) forget(find(kSpringBoard));
  launch(kSpringBoard);
}

void Host::start(const std::string& app) {
  if (App* known = installedApp(app.c_str())) known->running = true;
  if (runs(kSpringBoard)) tell(kSpringBoard, {"process-launched", app});
  launch(app);
}

void Host::end(const std::string& app) {
  forget(find(app));
  if (App* known = installedApp(app.c_str())) known->running = false;
  if (device->front == app) device->front[0] = 0;
  if (device->track != app) return;
  device->track[0] = 0;
  if (runs(kSpringBoard)) tell(kSpringBoard, {"now-playing", "nil"});
}

// It has ended itself, with a line in the trace, or was ended: by a signal, or a sanitizer.
void Host::crashed(Position process) {
  int status = 0;
  const bool ended = waitpid(process->pid, &status, WNOHANG) == process->pid;
  printTrace();
  if (!ended || !WIFEXITED(status) || WEXITSTATUS(status) != 1)
    std::printf("%s crash: the process died (%x)\n", process->identifier.c_str(), status);
  if (App* known = installedApp(process->identifier.c_str())) known->running = false;
  forget(process);
}

std::optional<bool> Host::tell(const std::string& app, const Words& words) {
  const Position process = find(app);
  if (process == processes_.end()) throw std::runtime_error(app + " is not running");
  std::string line;
  for (const std::string& word : words) line += word + '\0';
  send(process->channel, line.data(), line.size(), MSG_NOSIGNAL);
  for (;;) {
    Reply reply;
    if (recv(process->channel, &reply, sizeof reply, 0) != sizeof reply) {
      crashed(process);
      return std::nullopt;
    }
    process->due = reply.due;
    process->timer = reply.timer;
    if (reply.what == kDone) {
      printTrace();
      return reply.answer < 0 ? std::nullopt : std::optional(reply.answer != 0);
    }
    // Told within the call that made the player play.
    if (runs(kSpringBoard)) tell(kSpringBoard, {"now-playing", "yes"});
    send(process->channel, "", 1, MSG_NOSIGNAL);
  }
}

// ---- Time and order

void Host::handle(const Queued& step) {
  const auto owner = std::ranges::find(processes_, step.process, &Process::number);
  const std::string work = std::to_string(reinterpret_cast<uintptr_t>(step.work));
  if (step.kind == kBlock) tell(owner->identifier, {"block", work});
  if (step.kind == kAnswer) tell(owner->identifier, {"answer", work});
  if (step.kind == kLaunch && installedApp(step.text) && !runs(step.text)) start(step.text);
  if (step.kind != kPost) return;
  Words observers;
  for (const Process& process : processes_) observers.push_back(process.identifier);
  for (const std::string& observer : observers)
    if (runs(observer)) tell(observer, {"deliver", step.text});
}

void Host::drain() {
  while (device->queueBegin != device->queueEnd) {
    const Queued step = device->queue[device->queueBegin++];
    handle(step);
    if (device->queueBegin == device->queueEnd) device->queueBegin = device->queueEnd = 0;
  }
}

void Host::advance(int64_t microseconds) {
  const int64_t end = device->now + microseconds;
  const auto later = [](const Process& a, const Process& b) {
    if (a.due < 0 || b.due < 0) return a.due < 0 && b.due >= 0;
    return a.due != b.due ? a.due > b.due : a.timer > b.timer;
  };
  for (;;) {
    const auto next = std::ranges::max_element(processes_, later);
    if (next == processes_.end() || next->due < 0 || next->due > end) break;
    device->now = std::max(device->now, next->due);
    tell(next->identifier, {"timer-due"});
    drain();
  }
  device->now = end;
}

bool Host::await(const std::string& text) {
  const std::time_t latest = std::time(nullptr) + 30;
  std::size_t found = 0;
  while ((found = recent_.find(text)) == std::string::npos) {
    if (std::time(nullptr) > latest || processes_.empty()) return false;
    Words running;
    for (const Process& process : processes_) running.push_back(process.identifier);
    for (const std::string& process : running)
      if (runs(process)) tell(process, {"run", "0.02"});
    drain();
  }
  recent_.erase(0, found + text.size());
  return true;
}

void Host::printTrace() {
  const std::string trace(device->trace, static_cast<std::size_t>(device->traceLength));
  std::fwrite(trace.data(), 1, trace.size(), stdout);
  if (device->live) recent_ += trace;
  device->traceLength = 0;
}

}  // namespace real
