// The server behind the page: routes of HTTP on the loopback address, sessions with a device
// process each, signals that end it. Nothing of a phone; leaves out users, TLS and other machines.
#pragma once
#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

namespace sim::serve {

struct Build {
  std::string name;
  std::vector<std::string> command;  // what starts a device process of it
};

struct ServeOptions {
  int port = 0;                     // 0: a free one
  std::filesystem::path pages;      // the page's files
  std::filesystem::path scenarios;  // to be opened; empty: none
  std::filesystem::path saved;      // where scenarios are saved; empty: nowhere
  std::string version;
  std::vector<Build> builds;
  int longestPlay = 20;  // seconds, after which a silent device process is ended
};

// Serves until SIGINT or SIGTERM. Prints the page's address as a line of its own. Throws
// std::runtime_error if the port is not to be had.
void serve(const ServeOptions& options, std::ostream& out);

}  // namespace sim::serve
