#include "sim/serve/server.hpp"

#include <fmt/format.h>
#include <httplib.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <map>
#include <nlohmann/json.hpp>
#include <numeric>
#include <ostream>
#include <regex>

#include "sim/serve/files.hpp"
#include "sim/serve/session.hpp"

namespace sim::serve {

namespace {

using httplib::Request;
using httplib::Response;
using nlohmann::json;

constexpr std::size_t kMostSessions = 16;
constexpr std::size_t kMostLines = 5000;
constexpr std::size_t kLongestPath = 512;
constexpr std::size_t kThreads = 64;  // a listener a session, and requests
constexpr auto kPolicy =
    "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
    "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";

// A request that gets an error for an answer.
struct Refused {
  int status;
  std::string why;
};

// The system's randomness, as hexadecimal digits.
std::string randomHex(std::size_t bytes) {
  std::vector<unsigned char> random(bytes);
  if (getentropy(random.data(), bytes) != 0) throw std::runtime_error("no random numbers");
  return fmt::format("{:02x}", fmt::join(random, ""));
}

void answer(Response& response, int status, const json& body) {
  response.status = status;
  response.set_content(body.dump(-1, ' ', false, json::error_handler_t::replace),
                       "application/json");
}

// (What a provider gives is not compressed, which would take longer than the way it saves. Nothing
// is not what a provider can give.)
void answerFile(Response& response, const std::optional<File>& file) {
  if (!file) throw Refused{404, "there is no such file"};
  if (file->bytes.empty()) return response.set_content("", file->type);
  response.set_content_provider(file->bytes.size(), file->type,
                                [bytes = file->bytes](auto at, auto length, auto& sink) {
                                  return sink.write(bytes.data() + at, length);
                                });
}

// What the device process gets of a request to play. Throws json::exception, as all that reads JSON
// here, if the request is another one.
std::string toPlay(const std::string& body) {
  const json asked = json::parse(body);
  const auto lines = asked.at("lines").get<std::vector<std::string>>();
  if (!asked.at("play").is_number_integer()) throw Refused{400, "play must be a whole number"};
  if (lines.size() > kMostLines) throw Refused{413, fmt::format("more than {} lines", kMostLines)};
  for (const std::string& line : lines)
    if (line.find_first_of("\r\n") != std::string::npos)
      throw Refused{400, "a line must not hold a line break"};
  return json{{"play", asked["play"]}, {"lines", lines}}.dump() + '\n';
}

class Server {
 public:
  explicit Server(const ServeOptions& options);
  void run(std::ostream& out);

 private:
  void addRoutes();
  void admit(const Request& request) const;
  void openSession(const std::string& build, Response& response);

  const ServeOptions& options_;
  const std::string root_ = '/' + randomHex(16) + '/';  // a token, which all paths begin with
  httplib::Server http_;
  int port_ = 0;
  std::mutex mutex_;
  // Under the mutex. A session is its listener's, and ends with that.
  std::map<std::string, std::weak_ptr<Session>> sessions_;
};

Server::Server(const ServeOptions& options) : options_(options) {
  addRoutes();
  http_.set_default_headers({{"Content-Security-Policy", kPolicy},
                             {"X-Content-Type-Options", "nosniff"},
                             {"Referrer-Policy", "no-referrer"},
                             {"Cache-Control", "no-store"},
                             {"Cross-Origin-Resource-Policy", "same-origin"}});
  http_.new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
  http_.set_keep_alive_max_count(1);  // a connection that waits keeps its thread
  http_.set_keep_alive_timeout(1);
  http_.set_tcp_nodelay(true);
  http_.set_payload_max_length(kLongestText);
  // (The library's own options would let a second server share the port.)
  http_.set_socket_options([](int socket) {
    const int yes = 1;
    setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  });
  // Before a body is read.
  http_.set_pre_routing_handler([this](const Request& request, Response&) {
    admit(request);
    return httplib::Server::HandlerResponse::Unhandled;
  });
  http_.set_exception_handler([](const Request&, Response& response, std::exception_ptr thrown) {
    try {
      std::rethrow_exception(thrown);
    } catch (const Refused& refused) {
      answer(response, refused.status, {{"error", refused.why}});
    } catch (const json::exception& error) {
      answer(response, 400, {{"error", error.what()}});
    } catch (const std::exception& error) {
      answer(response, 500, {{"error", error.what()}});
    }
  });
  http_.set_error_handler([](const Request&, Response& response) {
    if (!response.body.empty()) return;
    answer(response, response.status,
           {{"error", response.status == 413 ? "more than 256 KiB" : "this is no request"}});
  });
}

// Throws unless it comes from the server's own page, or from nowhere, and is of use.
void Server::admit(const Request& request) const {
  const std::string host = request.get_header_value("Host");
  if (request.get_header_value_count("Host") != 1 ||
      (host != fmt::format("127.0.0.1:{}", port_) && host != fmt::format("localhost:{}", port_)) ||
      (request.has_header("Origin") && request.get_header_value("Origin") != "http://" + host))
    throw Refused{403, "this is for the server's own page alone"};
  // (How long comparing takes does not tell how much of the token is right.)
  const std::string start = request.path.substr(0, root_.size());
  if (request.path.size() > kLongestPath || start.size() < root_.size() ||
      std::inner_product(root_.begin(), root_.end(), start.begin(), 0, std::bit_or(),
                         std::bit_xor()) != 0)
    throw Refused{404, "there is nothing here"};
  const bool hasBody = request.method == "POST" || request.method == "PUT";
  if (!hasBody && request.method != "GET") throw Refused{405, "there is only GET, POST and PUT"};
  // What the library would read without an end, take apart or blow up.
  const std::string length = request.get_header_value("Content-Length");
  const std::string type = request.get_header_value("Content-Type");
  if (request.has_header("Range") || request.has_header("Content-Encoding") ||
      request.has_header("Transfer-Encoding") || type.rfind("multipart/", 0) == 0 ||
      type.rfind("application/x-www-form-urlencoded", 0) == 0 ||
      (hasBody && (length.empty() || length.find_first_not_of("0123456789") != std::string::npos)))
    throw Refused{400, "expected a plain body with its length"};
}

void Server::addRoutes() {
  http_.Get(root_ + "about", [this](const Request&, Response& response) {
    json builds = json::array();
    for (const Build& build : options_.builds) builds.push_back(build.name);
    answer(response, 200,
           {{"version", options_.version},
            {"builds", builds},
            {"scenarios", scenarioFiles(options_.scenarios)},
            {"saved", scenarioFiles(options_.saved)}});
  });
  http_.Get(root_ + "sessions", [this](const Request& request, Response& response) {
    openSession(request.get_param_value("build"), response);
  });
  http_.Post(root_ + "sessions/([^/]*)", [this](const Request& request, Response& response) {
    const std::string line = toPlay(request.body);
    const std::lock_guard lock(mutex_);
    const auto found = sessions_.find(request.matches[1]);
    const auto session = found == sessions_.end() ? nullptr : found->second.lock();
    if (!session) throw Refused{404, "there is no such session"};
    session->play(line);
    answer(response, 202, json::object());
  });
  http_.Put(root_ + "saved/(.*)", [this](const Request& request, Response& response) {
    const std::string name = request.matches[1];
    if (options_.saved.empty())
      throw Refused{403, "the server was not told where to save (--saved DIR)"};
    if (!std::regex_match(name, std::regex("[A-Za-z0-9 _-]{1,64}\\.txt")))
      throw Refused{400, "a name is up to 64 letters, digits, blanks, _ or -, and .txt"};
    (void)json(request.body).dump();  // refuses what is not UTF-8
    save(options_.saved, name, request.body);
    answer(response, 200, {{"saved", name}});
  });
  const std::pair<std::string, std::filesystem::path> folders[] = {
      {"scenarios/", options_.scenarios}, {"saved/", options_.saved}, {"", options_.pages}};
  for (const auto& [start, folder] : folders)
    http_.Get(root_ + start + "(.*)",
              [folder = folder](const Request& request, Response& response) {
                const std::string path = request.matches[1];
                answerFile(response, fileIn(folder, path.empty() ? "index.html" : path));
              });
}

void Server::openSession(const std::string& build, Response& response) {
  const auto found = std::find_if(options_.builds.begin(), options_.builds.end(),
                                  [&](const Build& each) { return each.name == build; });
  if (found == options_.builds.end()) throw Refused{400, "there is no build " + build};
  const std::lock_guard lock(mutex_);
  std::erase_if(sessions_, [](const auto& each) { return each.second.expired(); });
  if (sessions_.size() >= kMostSessions) throw Refused{429, "there are too many sessions"};
  const std::string name = randomHex(8);
  const auto session = std::make_shared<Session>(found->command, options_.longestPlay);
  sessions_[name] = session;
  const std::string first = json{{"session", name}}.dump();
  response.set_chunked_content_provider("text/event-stream", [=](std::size_t at, auto& sink) {
    // (Something has to be written for a listener that left to be noticed.)
    std::string events = ":\n";
    for (const std::string& line : at == 0 ? std::vector{first} : session->hear())
      events += "data: " + line + "\n\n";
    return sink.write(events.data(), events.size());
  });
}

void Server::run(std::ostream& out) {
  port_ = options_.port == 0 ? http_.bind_to_any_port("127.0.0.1") : options_.port;
  if (port_ < 0 || (options_.port != 0 && !http_.bind_to_port("127.0.0.1", port_)))
    throw std::runtime_error(fmt::format("cannot listen on port {}", options_.port));
  // Every thread leaves these signals to the one that waits for them.
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  std::thread ending([&] {
    int signal = 0;
    sigwait(&signals, &signal);
    while (!http_.is_running()) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    http_.stop();  // and with it the listeners
  });
  out << "http://127.0.0.1:" << port_ << root_ << std::endl;
  http_.listen_after_bind();
  ending.join();
}

}  // namespace

void serve(const ServeOptions& options, std::ostream& out) { Server(options).run(out); }

}  // namespace sim::serve
