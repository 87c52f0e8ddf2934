#include "sim/scenario/shell.hpp"

#include <editline/readline.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <iostream>

#include "sim/platform/device_actions.hpp"
#include "sim/scenario/completion.hpp"
#include "sim/scenario/reference.hpp"
#include "sim/scenario/words.hpp"

namespace sim::scenario {

namespace {

// The device that is typed at, with what was played on it.
class Shell {
 public:
  Shell(LibraryLoader& loader, const RunOptions& options)
      : loader_(loader), options_(options), output_(std::cout, options.format) {
    if (options.colour) output_.colour();
    startAfresh();
  }
  // False if it was the last line.
  bool obey(const std::string& line);
  Device& device() { return session_->device(); }
  std::vector<std::string> leaks() { return session_->leaks(); }

 private:
  void startAfresh();
  void play(const std::string& line);
  void undo();

  LibraryLoader& loader_;
  const RunOptions& options_;
  Output output_;
  std::unique_ptr<Session> session_;
  std::vector<std::string> played_;
};

void Shell::startAfresh() {
  session_.reset();
  session_ = std::make_unique<Session>(loader_, output_, options_.allCalls);
  session_->device().state.settingsEntry = options_.settingsPage;
}

// Whatever it changed is as it was: everything before is played again, unseen.
void Shell::undo() {
  if (played_.empty()) throw SyntaxError("there is nothing to undo");
  std::cout << "undone: " << played_.back() << '\n';
  const std::vector<std::string> before(played_.begin(), played_.end() - 1);
  played_.clear();
  output_.mute(true);
  startAfresh();
  for (const std::string& line : before) play(line);
  output_.mute(false);
}

void Shell::play(const std::string& line) {
  const auto content = parseLine(line);
  if (!content) return;
  if (const auto* command = std::get_if<Command>(&*content)) {
    session_->run(*command);
    played_.push_back(line);
    return;
  }
  const bool holds = session_->holds(std::get<Expectation>(*content));
  std::cout << (holds ? "holds" : "does not hold") << '\n';
}

bool Shell::obey(const std::string& line) {
  const auto words = splitWords(line);
  const std::string first = words.empty() || words[0].quoted ? "" : words[0].text;
  if (first == "quit" && words.size() == 1) return false;
  if (first == "undo" && words.size() == 1) {
    undo();
  } else if (first == "help" && words.size() <= 2) {
    const std::string text = words.size() == 1 ? helpText() : helpText(words[1].text);
    if (text.empty()) throw SyntaxError("unknown command " + words[1].text);
    std::cout << text;
  } else {
    play(line);
  }
  return true;
}

// The line editor asks functions that know nothing of who reads.
Shell* asked = nullptr;

// One completion after the other.
char* completion(const char* prefix, int state) {
  static std::vector<std::string> all;
  static std::size_t next = 0;
  if (state == 0) {
    const std::string line(rl_line_buffer, static_cast<std::size_t>(rl_point));
    const std::size_t length = std::strlen(prefix);
    all = completions(line.substr(0, line.size() - std::min(length, line.size())), asked->device());
    next = 0;
  }
  while (next < all.size()) {
    const std::string& name = all[next++];
    if (name.starts_with(prefix)) return strdup(name.c_str());
  }
  return nullptr;
}

char** complete(const char* prefix, int, int) {
  rl_attempted_completion_over = 1;  // no names of files
  return rl_completion_matches(prefix, completion);
}

// Where what was typed is kept from one time to the next; empty if there is no place.
std::string historyFile() {
  namespace fs = std::filesystem;
  const char* state = std::getenv("XDG_STATE_HOME");
  const char* home = std::getenv("HOME");
  if (!state && !home) return {};
  const fs::path folder = (state ? fs::path(state) : fs::path(home) / ".local/state") / "corvalen";
  std::error_code failed;
  fs::create_directories(folder, failed);
  return failed ? "" : (folder / "history").string();
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

}  // namespace

Status runShell(LibraryLoader& loader, const RunOptions& options) {
  const bool terminal = isatty(STDIN_FILENO) != 0;
  const std::string history = terminal ? historyFile() : "";
  Shell shell(loader, options);
  asked = &shell;
  if (terminal) {
    rl_initialize();
    rl_attempted_completion_function = complete;
    rl_basic_word_break_characters = const_cast<char*>(" ");  // texts begin with their quote
    if (!history.empty()) read_history(history.c_str());
    std::cout << "A simulated device. Try: boot, tap-transport 3, advance 1. Tab completes, help "
                 "explains, undo takes back, quit ends.\n";
  }
  bool more = true;
  while (more) {
    const auto line = readCommand(terminal);
    if (!line) break;
    try {
      more = shell.obey(*line);
    } catch (const SyntaxError& error) {
      std::cerr << error.what() << '\n';
    } catch (const ActionError& error) {
      std::cerr << error.what() << '\n';
    }
    std::cout.flush();
  }
  asked = nullptr;
  if (!history.empty()) write_history(history.c_str());
  if (terminal) std::cout << '\n';
  const auto leaks = options.leaks ? shell.leaks() : std::vector<std::string>();
  for (const std::string& leak : leaks) std::cerr << "leak in " << leak << '\n';
  return leaks.empty() ? Status::Held : Status::Failed;
}

}  // namespace sim::scenario
