#include "sim/serve/device_process_handle.hpp"

#include <fmt/format.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>

namespace sim::serve {

namespace {

// With `end` as standard input and output, nothing else that the server has open, and signals as a
// process finds them. Answers an error number.
int spawn(pid_t& process, const std::vector<std::string>& command, int end) {
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_adddup2(&files, end, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&files, end, STDOUT_FILENO);
  posix_spawn_file_actions_addclosefrom_np(&files, STDERR_FILENO + 1);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t signals;
  sigemptyset(&signals);
  posix_spawnattr_setsigmask(&attributes, &signals);
  sigaddset(&signals, SIGPIPE);
  posix_spawnattr_setsigdefault(&attributes, &signals);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  std::vector<char*> words;
  words.reserve(command.size() + 1);
  for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  const int error = posix_spawn(&process, words[0], &files, &attributes, words.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  return error;
}

}  // namespace

// (A pair of sockets, as it is one descriptor where pipes would be two, and does not wait for
// ever.)
DeviceProcessHandle::DeviceProcessHandle(const std::vector<std::string>& command) {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
    throw std::system_error(errno, std::generic_category(), "no way to speak to a device process");
  const int error = spawn(process_, command, ends[1]);
  close(ends[1]);
  descriptor_ = ends[0];
  const timeval tenth{0, 100000};
  for (const int direction : {SO_RCVTIMEO, SO_SNDTIMEO})
    setsockopt(descriptor_, SOL_SOCKET, direction, &tenth, sizeof tenth);
  if (error == 0) return;
  close(descriptor_);
  throw std::system_error(error, std::generic_category(), "no device process");
}

DeviceProcessHandle::~DeviceProcessHandle() {
  close(descriptor_);
  if (process_ == 0) return;
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}

void DeviceProcessHandle::write(std::string& text) {
  const ssize_t count = send(descriptor_, text.data(), text.size(), MSG_NOSIGNAL);
  if (count > 0) text.erase(0, static_cast<std::size_t>(count));
}

std::vector<std::string> DeviceProcessHandle::read(bool mayWait) {
  char buffer[65536];
  const ssize_t count = recv(descriptor_, buffer, sizeof buffer, mayWait ? 0 : MSG_DONTWAIT);
  if (count < 0 && errno == EAGAIN) return {};
  if (count <= 0) throw std::runtime_error(howItEnded());
  std::vector<std::string> lines;
  std::size_t begin = 0;
  std::size_t end = unread_.size();
  unread_.append(buffer, static_cast<std::size_t>(count));
  for (; (end = unread_.find('\n', end)) != std::string::npos; begin = ++end)
    lines.push_back(unread_.substr(begin, end - begin));
  unread_.erase(0, begin);
  return lines;
}

std::string DeviceProcessHandle::howItEnded() {
  int status = 0;
  pid_t ended = 0;
  // One that closed its output and stays has a second.
  for (int i = 0; i < 100 && (ended = waitpid(process_, &status, WNOHANG)) == 0; ++i)
    poll(nullptr, 0, 10);
  if (ended != process_) return "it says nothing any more";
  process_ = 0;
  if (WIFEXITED(status)) return fmt::format("exit status {}", WEXITSTATUS(status));
  return fmt::format("signal {} ({})", WTERMSIG(status), strsignal(WTERMSIG(status)));
}

}  // namespace sim::serve
