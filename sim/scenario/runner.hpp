// Plays scenarios on a simulated device. Nothing of a phone; leaves out reading them
// (sim/scenario/script.hpp).
#pragma once
#include <ostream>

#include "sim/core/device.hpp"
#include "sim/scenario/output.hpp"
#include "sim/scenario/script.hpp"

namespace sim::scenario {

// Exit statuses, by severity.
enum class Status : int { Held = 0, Failed = 1, Wrong = 2 };

// A device and what was seen on it since the last command.
class Session final : public Trace {
 public:
  Session(LibraryLoader& loader, Output& output, bool allCalls);

  // Runs a command: echo, effects, answer, then what it left in the queue. Throws ActionError.
  void run(const Command& command);
  // Whether an expectation holds for what came since the last command.
  bool holds(const Expectation& expectation);
  // The lines since the last command, as they were printed.
  std::vector<std::string> seen() const;
  struct Effect {
    std::string process;
    std::string call;
  };
  const std::vector<Effect>& effects() const { return effects_; }  // since the last command
  std::optional<bool> answer() const { return answer_; }           // of the last command
  // References of the library that nothing reaches any more, as "PROCESS: WHAT".
  std::vector<std::string> leaks();

  Device& device() { return *device_; }

  void effect(Microseconds time, const std::string& process, const std::string& call) override;
  void otherCall(Microseconds time, const std::string& process, const std::string& call) override {
    output_.effect(time, process, call);
  }
  bool wantsAllCalls() const override { return allCalls_; }

 private:
  std::size_t count(const Expectation& expectation) const;

  Output& output_;
  bool allCalls_;
  std::vector<Effect> effects_;
  std::optional<bool> answer_;
  std::size_t next_ = 0;                // behind the line that the previous `expect` found
  std::unique_ptr<Recorder> recorder_;  // if the output is coloured; outlives the device
  std::unique_ptr<Device> device_;
};

struct RunOptions {
  Format format = Format::Text;
  bool allCalls = false;
  bool leaks = false;
  bool colour = false;                   // of text without all calls
  std::filesystem::path settingsPage{};  // an entry of PreferenceLoader's in place of the product's
};

// Runs a whole scenario on a fresh device: the trace to `out`, failed expectations and errors to
// `errors`. Mistakes in the scenario are found before anything of it runs.
Status runScenario(const std::string& file, const std::string& text, LibraryLoader& loader,
                   const RunOptions& options, std::ostream& out, std::ostream& errors);

// The same, but in place of the trace it prints the page that the Settings app shows at the end, as
// JSON.
Status printPage(const std::string& file, const std::string& text, LibraryLoader& loader,
                 const RunOptions& options, std::ostream& out, std::ostream& errors);

}  // namespace sim::scenario
