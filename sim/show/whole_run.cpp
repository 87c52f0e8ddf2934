#include "sim/show/whole_run.hpp"

#include <algorithm>
#include <ostream>

namespace sim::show {

using scenario::Status;

WholeRun playWhole(const std::string& file, const std::string& text, LibraryLoader& loader,
                   const scenario::RunOptions& options, std::ostream& errors) {
  WholeRun run{{}, Json::array(), Status::Held};
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) run.lines.push_back(line);
  const auto report = [&](std::size_t line, const std::string& message) {
    errors << file << ':' << line + 1 << ": " << message << '\n';
  };
  const auto keep = [&](const Json& step) {
    run.steps.push_back(step);
    const auto line = step["step"].get<std::size_t>();
    if (step.contains("error")) {
      run.status = Status::Wrong;
      report(line, step["error"]);
    } else if (!step.value("holds", true)) {
      run.status = std::max(run.status, Status::Failed);
      report(line, "does not hold: " + step["line"].get<std::string>());
    }
  };
  PlayedDevice device(loader, options.settingsPage);
  if (const auto wrong = device.play(
          run.lines, [](std::size_t) {}, keep)) {
    report(wrong->line, wrong->message);
    run.status = Status::Wrong;
  }
  return run;
}

}  // namespace sim::show
