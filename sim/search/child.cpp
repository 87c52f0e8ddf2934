#include "sim/search/child.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

namespace sim::search {

namespace {

constexpr int kFailed = 70;  // the child's own exit status for an exception

void writeAll(int descriptor, const std::string& bytes) {
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t count = write(descriptor, bytes.data() + done, bytes.size() - done);
    if (count <= 0) _exit(kFailed);  // the parent has gone
    done += static_cast<std::size_t>(count);
  }
}

}  // namespace

Child::Child(const std::function<void(const Tell&)>& work) {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("cannot make a pipe");
  process_ = fork();
  if (process_ < 0) throw std::runtime_error("cannot fork");
  if (process_ == 0) {
    close(ends[0]);
    int status = 0;
    try {
      work([&](const std::string& message) { writeAll(ends[1], message + '\0'); });
    } catch (...) {
      status = kFailed;
    }
    _exit(status);  // nothing of the parent's is to be ended here
  }
  close(ends[1]);
  read_ = ends[0];
}

Child::~Child() {
  if (!ended_) {
    kill(process_, SIGKILL);
    death();
  }
  close(read_);
}

std::vector<std::string> Child::messages() {
  std::vector<std::string> whole;
  char buffer[65536];
  while (whole.empty()) {
    const ssize_t count = read(read_, buffer, sizeof buffer);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return whole;
    unread_.append(buffer, static_cast<std::size_t>(count));
    for (std::size_t end = unread_.find('\0'); end != std::string::npos; end = unread_.find('\0')) {
      whole.push_back(unread_.substr(0, end));
      unread_.erase(0, end + 1);
    }
  }
  return whole;
}

std::string Child::death() {
  if (ended_) return death_;
  int status = 0;
  while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
  }
  ended_ = true;
  if (WIFSIGNALED(status)) death_ = "signal " + std::to_string(WTERMSIG(status));
  if (WIFEXITED(status) && WEXITSTATUS(status) != 0)
    death_ = "exit status " + std::to_string(WEXITSTATUS(status));
  return death_;
}

Outcome isolated(const std::function<void(const Tell&)>& work) {
  Child child(work);
  Outcome outcome;
  for (auto some = child.messages(); !some.empty(); some = child.messages())
    outcome.messages.insert(outcome.messages.end(), some.begin(), some.end());
  outcome.death = child.death();
  return outcome;
}

void expectEndWithin(unsigned seconds) { alarm(seconds); }

}  // namespace sim::search
