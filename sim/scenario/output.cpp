#include "sim/scenario/output.hpp"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

namespace sim::scenario {

namespace {

// Texts may hold any bytes; what is no UTF-8 must not end the run.
std::string json(const std::string& text) {
  return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace

std::string shownTime(Microseconds time) {
  const Microseconds hundredths = (time + 5000) / 10000;
  return fmt::format("{}.{:02}", hundredths / 100, hundredths % 100);
}

void Output::command(const std::string& echo) {
  if (format_ == Format::Json)
    out_ << fmt::format("{{\"command\": {}}}\n", json(echo));
  else
    out_ << "> " << echo << '\n';
}

void Output::effect(Microseconds time, const std::string& process, const std::string& call) {
  if (format_ == Format::Json)
    out_ << fmt::format("{{\"time\": {}, \"process\": {}, \"call\": {}}}\n", shownTime(time),
                        json(process), json(call));
  else
    out_ << shownTime(time) << ' ' << process << ' ' << call << '\n';
}

void Output::result(bool answer) {
  const char* text = answer ? "YES" : "NO";
  if (format_ == Format::Json)
    out_ << fmt::format("{{\"result\": \"{}\"}}\n", text);
  else
    out_ << "= " << text << '\n';
}

}  // namespace sim::scenario
