#include "sim/serve/server.hpp"

#include <fmt/format.h>
#include <httplib.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <map>
#include <nlohmann/json.hpp>
#include <ostream>

#include "sim/serve/files.hpp"

namespace sim::serve {

namespace {

using httplib::Request;
using httplib::Response;
using nlohmann::json;

constexpr std::size_t kMostSessions = 16;
constexpr std::size_t kMostLines = 5000;
constexpr std::size_t kLongestPath = 512;
constexpr std::size_t kThreads = 64;  // two listeners a session, and as many requests
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

// Takes as long whatever the texts have in common.
bool sameInConstantTime(const std::string& one, const std::string& other) {
  int difference = one.size() == other.size() ? 0 : 1;
  for (std::size_t i = 0; i < std::min(one.size(), other.size()); ++i)
    difference |= one[i] ^ other[i];
  return difference == 0;
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

void expectMethod(const Request& request, const std::string& method) {
  if (request.method != method) throw Refused{405, "only " + method + " can be done with this"};
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
  void admit(const Request& request) const;
  void route(const Request& request, Response& response);
  void routeSaved(const std::string& name, const Request& request, Response& response) const;
  void routeSession(const std::string& rest, const Request& request, Response& response);
  std::string beginSession(const std::string& body);

  const ServeOptions& options_;
  httplib::Server http_;
  std::string address_;
  const std::string token_ = randomHex(16);
  std::mutex mutex_;
  std::map<std::string, std::shared_ptr<Session>> sessions_;  // under the mutex
};

Server::Server(const ServeOptions& options) : options_(options) {
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
  const auto handle = [this](const Request& request, Response& response) {
    route(request, response);
  };
  // Before a body is read.
  http_.set_pre_routing_handler([this, handle](const Request& request, Response& response) {
    admit(request);
    if (request.method == "POST" || request.method == "PUT")
      return httplib::Server::HandlerResponse::Unhandled;
    handle(request, response);
    return httplib::Server::HandlerResponse::Handled;
  });
  http_.Post(".*", handle).Put(".*", handle);
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
    if (response.body.empty())
      answer(response, response.status,
             {{"error", response.status == 413 ? "more than 256 KiB" : "this is no request"}});
  });
}

// Throws unless it comes from the server's own page, or from nowhere, and is of use.
void Server::admit(const Request& request) const {
  const auto isOurs = [this](const std::string& host) {
    const std::string port = address_.substr(address_.find(':'));
    return host == address_ || host == "localhost" + port;
  };
  const std::string origin = request.get_header_value("Origin");
  if (request.get_header_value_count("Host") != 1 || !isOurs(request.get_header_value("Host")) ||
      (request.has_header("Origin") &&
       (origin.rfind("http://", 0) != 0 || !isOurs(origin.substr(7)))))
    throw Refused{403, "this is for the server's own page alone"};
  if (request.path.size() > kLongestPath ||
      !sameInConstantTime(request.path.substr(0, token_.size() + 2), '/' + token_ + '/'))
    throw Refused{404, "there is nothing here"};
  // What the library would read without an end, take apart or blow up.
  const std::string length = request.get_header_value("Content-Length");
  const std::string type = request.get_header_value("Content-Type");
  const bool hasBody = request.method == "POST" || request.method == "PUT";
  if (request.has_header("Range") || request.has_header("Content-Encoding") ||
      request.has_header("Transfer-Encoding") || type.rfind("multipart/", 0) == 0 ||
      type.rfind("application/x-www-form-urlencoded", 0) == 0 ||
      (hasBody && (length.empty() || length.find_first_not_of("0123456789") != std::string::npos)))
    throw Refused{400, "expected a plain body with its length"};
}

void Server::route(const Request& request, Response& response) {
  const std::string path = request.path.substr(token_.size() + 2);
  const std::string first = path.substr(0, path.find('/'));
  const std::string rest = first == path ? "" : path.substr(first.size() + 1);
  if (first == "sessions") return routeSession(rest, request, response);
  if (first == "saved" && !rest.empty()) return routeSaved(rest, request, response);
  expectMethod(request, "GET");
  if (path == "about") {
    json builds = json::array();
    for (const Build& build : options_.builds) builds.push_back(build.name);
    return answer(response, 200,
                  {{"version", options_.version},
                   {"builds", builds},
                   {"scenarios", scenarioFiles(options_.scenarios)},
                   {"saved", savedFiles(options_.saved)}});
  }
  if (first == "scenarios")
    answerFile(response, textFile(options_.scenarios, rest, scenarioFiles(options_.scenarios)));
  else
    answerFile(response, pageFile(options_.pages, path.empty() ? "index.html" : path));
}

void Server::routeSaved(const std::string& name, const Request& request, Response& response) const {
  if (request.method == "GET")
    return answerFile(response, textFile(options_.saved, name, savedFiles(options_.saved)));
  expectMethod(request, "PUT");
  if (options_.saved.empty())
    throw Refused{403, "the server was not told where to save (--saved DIR)"};
  if (!mayBeSavedAs(name))
    throw Refused{400, "a name is up to 64 letters, digits, blanks, _ or -, and .txt"};
  (void)json(request.body).dump();  // refuses what is not UTF-8
  save(options_.saved, name, request.body);
  answer(response, 200, {{"saved", name}});
}

void Server::routeSession(const std::string& rest, const Request& request, Response& response) {
  if (rest.empty()) {
    expectMethod(request, "POST");
    return answer(response, 200, {{"session", beginSession(request.body)}});
  }
  const std::string name = rest.substr(0, rest.find('/'));
  const std::string what = rest.substr(name.size());
  const auto session = [&] {
    const std::lock_guard lock(mutex_);
    const auto found = sessions_.find(name);
    return found == sessions_.end() || found->second->hasEnded() ? nullptr : found->second;
  }();
  if (!session || (what != "" && what != "/events" && what != "/play"))
    throw Refused{404, "there is no such session"};
  if (what == "/play") {
    expectMethod(request, "POST");
    if (!session->play(toPlay(request.body))) throw Refused{429, "too many plays wait"};
    answer(response, 202, json::object());
  } else if (what == "/events") {
    expectMethod(request, "GET");
    // A browser that comes back names the last event that it got.
    const auto next = session->listen(request.get_header_value<std::uint64_t>("Last-Event-ID"));
    if (!next) throw Refused{409, "two listen already, or what follows is forgotten"};
    response.set_chunked_content_provider("text/event-stream", [session, next](auto, auto& sink) {
      const auto events = session->wait(*next);
      if (!events) sink.done();
      return !events || sink.write(events->data(), events->size());
    });
  } else {
    expectMethod(request, "DELETE");
    session->end();
    const std::lock_guard lock(mutex_);
    sessions_.erase(name);
    answer(response, 200, json::object());
  }
}

std::string Server::beginSession(const std::string& body) {
  const auto name = json::parse(body).at("build").get<std::string>();
  const auto build = std::find_if(options_.builds.begin(), options_.builds.end(),
                                  [&](const Build& each) { return each.name == name; });
  if (build == options_.builds.end()) throw Refused{400, "there is no build " + name};
  const std::lock_guard lock(mutex_);
  std::erase_if(sessions_, [](const auto& session) { return session.second->hasEnded(); });
  // The pages of some may have been closed; one that has just begun has no listener yet.
  if (sessions_.size() >= kMostSessions)
    std::erase_if(sessions_, [](const auto& session) {
      return session.second->unheard() > std::chrono::seconds(10);
    });
  if (sessions_.size() >= kMostSessions) throw Refused{429, "there are too many sessions"};
  const std::string session = randomHex(8);
  sessions_[session] = std::make_shared<Session>(build->command, options_.limits);
  return session;
}

void Server::run(std::ostream& out) {
  const int port = options_.port == 0 ? http_.bind_to_any_port("127.0.0.1") : options_.port;
  if (port < 0 || (options_.port != 0 && !http_.bind_to_port("127.0.0.1", port)))
    throw std::runtime_error(fmt::format("cannot listen on port {}", options_.port));
  address_ = fmt::format("127.0.0.1:{}", port);
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
    http_.stop();
    const std::lock_guard lock(mutex_);
    for (const auto& [name, session] : sessions_) session->end();
  });
  out << "http://" << address_ << '/' << token_ << '/' << std::endl;
  http_.listen_after_bind();
  ending.join();
}

}  // namespace

void serve(const ServeOptions& options, std::ostream& out) { Server(options).run(out); }

}  // namespace sim::serve
