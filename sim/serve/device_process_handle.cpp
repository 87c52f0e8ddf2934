#include "sim/serve/device_process_handle.hpp"

#include <fmt/format.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>
#include <utility>

namespace sim::serve {

namespace {

// In the child, where after a fork of many threads only system calls are safe: `end` as standard
// input and output, and nothing else that the server has open.
[[noreturn]] void become(char* const* command, int end) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  dup2(end, STDIN_FILENO);
  dup2(end, STDOUT_FILENO);
  close_range(STDERR_FILENO + 1, ~0U, 0);
  execv(command[0], command);
  _exit(127);
}

}  // namespace

// (A pair of sockets is one descriptor where pipes would be two.)
DeviceProcessHandle::DeviceProcessHandle(const std::vector<std::string>& command) {
  std::vector<char*> words;
  words.reserve(command.size() + 1);
  for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
    throw std::system_error(errno, std::generic_category(), "no way to speak to a device process");
  process_ = fork();
  if (process_ == 0) become(words.data(), ends[1]);
  const int error = errno;
  close(ends[1]);
  descriptor_ = ends[0];
  if (process_ > 0) return;
  close(descriptor_);
  throw std::system_error(error, std::generic_category(), "no device process");
}

DeviceProcessHandle::~DeviceProcessHandle() {
  close(descriptor_);
  end();
}

std::vector<std::string> DeviceProcessHandle::exchange(std::string& text, bool mayWait) {
  pollfd ready{descriptor_, POLLIN, 0};
  if (!text.empty()) ready.events |= POLLOUT;
  poll(&ready, 1, mayWait ? 100 : 0);
  const ssize_t sent = send(descriptor_, text.data(), text.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  if (sent > 0) text.erase(0, static_cast<std::size_t>(sent));
  char buffer[65536];
  const ssize_t count = recv(descriptor_, buffer, sizeof buffer, MSG_DONTWAIT);
  if (count < 0 && errno == EAGAIN) return {};
  if (count <= 0) {
    const int status = end();
    if (WIFEXITED(status))
      throw std::runtime_error(fmt::format("exit status {}", WEXITSTATUS(status)));
    const int number = WTERMSIG(status);
    throw std::runtime_error(fmt::format("signal {} ({})", number, strsignal(number)));
  }
  std::vector<std::string> lines;
  std::size_t begin = 0;
  std::size_t end = unread_.size();
  unread_.append(buffer, static_cast<std::size_t>(count));
  for (; (end = unread_.find('\n', end)) != std::string::npos; begin = ++end)
    lines.push_back(unread_.substr(begin, end - begin));
  unread_.erase(0, begin);
  return lines;
}

// (One that is ending already keeps the status that it ends with.)
int DeviceProcessHandle::end() {
  int status = 0;
  if (process_ == 0) return status;
  kill(process_, SIGKILL);
  waitpid(std::exchange(process_, 0), &status, 0);
  return status;
}

}  // namespace sim::serve
