#include "sim/scenario/recorder.hpp"

#include <nlohmann/json.hpp>

namespace sim::scenario {

namespace {

using Kind = CallTree::Kind;

const char* nameOf(Kind kind) {
  switch (kind) {
    case Kind::Effect:
      return "effect";
    case Kind::Call:
      return "call";
    case Kind::Hook:
      return "hook";
    case Kind::Callback:
      return "callback";
    case Kind::Delivery:
      return "delivered";
    case Kind::Timer:
      return "timer";
    case Kind::Started:
      return "started";
    case Kind::Ended:
      return "ended";
  }
  return "";
}

const char* nameOf(CallTree::By by) {
  switch (by) {
    case CallTree::By::Library:
      return "library";
    case CallTree::By::Passed:
      return "passed";
    case CallTree::By::Platform:
      return "system";
  }
  return "";
}

}  // namespace

nlohmann::ordered_json asJson(const Row& row) {
  nlohmann::ordered_json json = {{"time", row.time},
                                 {"process", row.entry.process},
                                 {"kind", nameOf(row.entry.kind)},
                                 {"call", row.entry.what}};
  if (row.entry.kind == Kind::Effect) json["by"] = nameOf(row.entry.by);
  if (row.entry.kind == Kind::Hook) json["taken"] = !row.passedOn;
  if (!row.answer.empty()) json["answer"] = row.answer;
  json["parent"] = row.parent;
  return json;
}

std::vector<Row> Recorder::take() { return std::exchange(rows_, {}); }

void Recorder::enter(Entry entry) {
  const auto parent = open_.empty() ? -1 : static_cast<std::ptrdiff_t>(open_.back());
  open_.push_back(rows_.size());
  rows_.push_back({clock_.now(), std::move(entry), {}, parent});
}

void Recorder::answered(std::string answer) { rows_[open_.back()].answer = std::move(answer); }

void Recorder::passedOn(const std::string& process, std::size_t outward) {
  for (auto index = open_.rbegin(); index != open_.rend(); ++index) {
    Row& row = rows_[*index];
    if (row.entry.kind != Kind::Hook || row.entry.process != process) continue;
    if (outward-- > 0) continue;
    row.passedOn = true;
    return;
  }
}

void Recorder::leave() { open_.pop_back(); }

}  // namespace sim::scenario
