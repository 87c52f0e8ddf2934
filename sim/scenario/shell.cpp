#include "sim/scenario/shell.hpp"

#include <editline/readline.h>
#include <unistd.h>

#include <cstring>
#include <iostream>

#include "sim/platform/device_actions.hpp"
#include "sim/scenario/words.hpp"

namespace sim::scenario {

namespace {

// One completion after the other, as the line editor asks for them.
char* completion(const char* prefix, int state) {
  static const std::vector<std::string> names = commandNames();
  static std::size_t next = 0;
  if (state == 0) next = 0;
  while (next < names.size()) {
    const std::string& name = names[next++];
    if (name.starts_with(prefix)) return strdup(name.c_str());
  }
  return nullptr;
}

char** complete(const char* prefix, int start, int) {
  return start == 0 ? rl_completion_matches(prefix, completion) : nullptr;
}

std::optional<std::string> readCommand(bool terminal) {
  if (!terminal) {
    std::string line;
    if (!std::getline(std::cin, line)) return std::nullopt;
    return line;
  }
  char* typed = readline("device> ");
  if (!typed) return std::nullopt;
  std::string line(typed);
  std::free(typed);
  if (!line.empty()) add_history(line.c_str());
  return line;
}

void obey(Session& session, const std::string& line) {
  const auto content = parseLine(line);
  if (!content) return;
  if (const auto* command = std::get_if<Command>(&*content)) {
    session.run(*command);
  } else {
    const bool holds = session.holds(std::get<Expectation>(*content));
    std::cout << (holds ? "holds" : "does not hold") << '\n';
  }
}

}  // namespace

Status runShell(LibraryLoader& loader, const RunOptions& options) {
  const bool terminal = isatty(STDIN_FILENO) != 0;
  if (terminal) {
    rl_attempted_completion_function = complete;
    std::cout << "A simulated device. Try: boot, tap-transport 3, advance 1. Tab completes, "
                 "Ctrl-D ends.\n";
  }
  Output output(std::cout, options.format);
  Session session(loader, output, options.allCalls);
  session.device().state.settingsEntry = options.settingsPage;
  while (const auto line = readCommand(terminal)) {
    try {
      obey(session, *line);
    } catch (const SyntaxError& error) {
      std::cerr << error.what() << '\n';
    } catch (const ActionError& error) {
      std::cerr << error.what() << '\n';
    }
    std::cout.flush();
  }
  if (terminal) std::cout << '\n';
  const auto leaks = options.leaks ? session.leaks() : std::vector<std::string>();
  for (const std::string& leak : leaks) std::cerr << "leak in " << leak << '\n';
  return leaks.empty() ? Status::Held : Status::Failed;
}

}  // namespace sim::scenario
