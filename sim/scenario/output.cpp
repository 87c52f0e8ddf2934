#include "sim/scenario/output.hpp"

#include <fmt/format.h>

#include <nlohmann/json.hpp>

namespace sim::scenario {

namespace {

// The colours of a terminal.
constexpr const char* kCrash = "\033[1;31m";
constexpr const char* kSignal = "\033[36m";
constexpr const char* kTakenOver = "\033[33m";
constexpr const char* kOwn = "\033[32m";
constexpr const char* kPassedOn = "\033[2m";
constexpr const char* kPlain = "\033[0m";

// What became of the call: passed on, inside of one that the library took over, a signal, or the
// library's own.
const char* colourOf(const std::vector<Row>& rows, const Row& row) {
  if (row.entry.what.starts_with("crash: ")) return kCrash;
  if (row.entry.what.starts_with("notify_post(")) return kSignal;
  for (auto at = row.parent; at >= 0; at = rows[static_cast<std::size_t>(at)].parent) {
    const Row& outer = rows[static_cast<std::size_t>(at)];
    if (outer.entry.kind == CallTree::Kind::Hook && !outer.passedOn) return kTakenOver;
  }
  if (row.entry.by == CallTree::By::Passed) return kPassedOn;
  return row.entry.by == CallTree::By::Library ? kOwn : kPlain;
}

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
  if (muted_) return;
  if (format_ == Format::Json)
    out_ << fmt::format("{{\"command\": {}}}\n", json(echo));
  else
    out_ << "> " << echo << '\n';
}

void Output::effect(Microseconds time, const std::string& process, const std::string& call) {
  if (muted_ || coloured_) return;
  if (format_ == Format::Json)
    out_ << fmt::format("{{\"time\": {}, \"process\": {}, \"call\": {}}}\n", shownTime(time),
                        json(process), json(call));
  else
    out_ << shownTime(time) << ' ' << process << ' ' << call << '\n';
}

void Output::result(bool answer) {
  if (muted_) return;
  const char* text = answer ? "YES" : "NO";
  if (format_ == Format::Json)
    out_ << fmt::format("{{\"result\": \"{}\"}}\n", text);
  else
    out_ << "= " << text << '\n';
}

void Output::shown(const std::vector<Row>& rows) {
  if (muted_) return;
  for (const Row& row : rows)
    if (row.entry.kind == CallTree::Kind::Effect)
      out_ << colourOf(rows, row) << shownTime(row.time) << ' ' << row.entry.process << ' '
           << row.entry.what << kPlain << '\n';
}

}  // namespace sim::scenario
