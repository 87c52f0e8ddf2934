#include "sim/scenario/runner.hpp"

#include <nlohmann/json.hpp>
#include <sstream>

#include "sim/platform/device_actions.hpp"
#include "sim/scenario/shown_page.hpp"

namespace sim::scenario {

Session::Session(LibraryLoader& loader, Output& output, bool allCalls)
    : output_(output), allCalls_(allCalls), device_(std::make_unique<Device>(*this, loader)) {
  if (!output.isColoured()) return;
  recorder_ = std::make_unique<Recorder>(device_->clock);
  device_->callTree = recorder_.get();
}

void Session::effect(Microseconds time, const std::string& process, const std::string& call) {
  effects_.push_back({process, call});
  output_.effect(time, process, call);
}

void Session::run(const Command& command) {
  effects_.clear();
  answer_.reset();
  next_ = 0;
  output_.command(command.echo);
  try {
    answer_ = command.run(*device_);
  } catch (...) {
    if (recorder_) output_.shown(recorder_->take());
    throw;
  }
  if (answer_ && recorder_) output_.shown(recorder_->take());
  if (answer_) output_.result(*answer_);
  device_->drain();
  if (recorder_) output_.shown(recorder_->take());
}

std::size_t Session::count(const Expectation& expectation) const {
  std::size_t found = 0;
  for (const Effect& effect : effects_) found += matches(expectation.call, effect.call);
  return found;
}

bool Session::holds(const Expectation& expectation) {
  switch (expectation.kind) {
    case Expectation::Kind::Nothing:
      return effects_.empty();
    case Expectation::Kind::Never:
      return count(expectation) == 0;
    case Expectation::Kind::Count:
      return count(expectation) == expectation.count;
    case Expectation::Kind::Result:
      return answer_ == expectation.result;
    case Expectation::Kind::Next:
      break;
  }
  for (std::size_t i = next_; i < effects_.size(); ++i) {
    if (!expectation.process.empty() && effects_[i].process != expectation.process) continue;
    if (!matches(expectation.call, effects_[i].call)) continue;
    next_ = i + 1;
    return true;
  }
  return false;
}

std::vector<std::string> Session::seen() const {
  std::vector<std::string> lines;
  for (const Effect& effect : effects_) lines.push_back(effect.process + " " + effect.call);
  if (answer_) lines.push_back(*answer_ ? "= YES" : "= NO");
  return lines;
}

std::vector<std::string> Session::leaks() {
  std::vector<std::string> all;
  for (Process* process : device_->processes())
    for (const std::string& leak : process->leaks())
      all.push_back(process->identifier + ": " + leak);
  return all;
}

namespace {

void reportFailure(const Script& script, const Line& line, const Session& session,
                   std::ostream& errors) {
  const auto& expectation = std::get<Expectation>(line.content);
  std::string what = expectation.written.substr(expectation.written.find_first_of(" \t") + 1);
  if (expectation.kind == Expectation::Kind::Nothing) what = "nothing";
  if (expectation.kind == Expectation::Kind::Never) what = "no " + what;
  errors << script.file << ':' << line.number << ": expected " << what << '\n';
  const auto seen = session.seen();
  if (seen.empty()) errors << "  instead: nothing\n";
  for (const std::string& text : seen) errors << "  instead: " << text << '\n';
}

Status play(const Script& script, Session& session, std::ostream& errors) {
  Status status = Status::Held;
  for (const Line& line : script.lines) {
    if (const auto* command = std::get_if<Command>(&line.content)) {
      try {
        session.run(*command);
      } catch (const ActionError& error) {
        throw ScenarioError(script.file, line.number, error.what());
      }
    } else if (!session.holds(std::get<Expectation>(line.content))) {
      reportFailure(script, line, session, errors);
      status = Status::Failed;
    }
  }
  return status;
}

}  // namespace

Status runScenario(const std::string& file, const std::string& text, LibraryLoader& loader,
                   const RunOptions& options, std::ostream& out, std::ostream& errors) {
  try {
    const Script script = parseScript(file, text);
    Output output(out, options.format);
    if (options.colour) output.colour();
    Session session(loader, output, options.allCalls);
    session.device().state.settingsEntry = options.settingsPage;
    Status status = play(script, session, errors);
    if (!options.leaks) return status;
    for (const std::string& leak : session.leaks()) {
      errors << file << ": leak in " << leak << '\n';
      status = Status::Failed;
    }
    return status;
  } catch (const ScenarioError& error) {
    errors << error.what() << '\n';
    return Status::Wrong;
  }
}

Status printPage(const std::string& file, const std::string& text, LibraryLoader& loader,
                 const RunOptions& options, std::ostream& out, std::ostream& errors) {
  try {
    const Script script = parseScript(file, text);
    std::ostringstream trace;
    Output output(trace, options.format);
    Session session(loader, output, options.allCalls);
    session.device().state.settingsEntry = options.settingsPage;
    const Status status = play(script, session, errors);
    // Texts may hold any bytes; what is no UTF-8 must not end the run.
    out << asJson(shownSettings(session.device()))
               .dump(2, ' ', false, nlohmann::json::error_handler_t::replace)
        << '\n';
    return status;
  } catch (const ScenarioError& error) {
    errors << error.what() << '\n';
  } catch (const ActionError& error) {
    errors << file << ": " << error.what() << '\n';
  }
  return Status::Wrong;
}

}  // namespace sim::scenario
