#include "sim/show/lanes.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <ostream>

#include "sim/scenario/output.hpp"
#include "sim/show/whole_run.hpp"

namespace sim::show {

namespace {

constexpr std::size_t kTimeWidth = 9;
constexpr std::size_t kNarrowest = 24;

struct Cell {
  std::string time;
  std::string process;
  std::string text;  // without a process: a command, over all lanes
};

// What the library sets up as a process starts: counted, not shown.
bool isSetUp(const std::string& call) {
  return call.starts_with("MSHook") || call.starts_with("CFNotificationCenterAddObserver");
}

std::string started(const Json& rows, const std::string& process) {
  const auto count = std::ranges::count_if(rows, [&](const Json& row) {
    return row["process"] == process && row["kind"] == "effect" && isSetUp(row["call"]);
  });
  return fmt::format("(starts: {} hooks and observers)", count);
}

// "taken over: …", "» NAME" of a signal sent, "« NAME" of one received; empty if it is no row.
std::string shown(const Json& row) {
  const std::string kind = row["kind"];
  const std::string call = row["call"];
  constexpr std::string_view kPost = "notify_post(\"";
  if (kind == "ended") return "(ends)";
  if (kind == "hook") return row["taken"] ? "taken over: " + call : "";
  if (kind == "delivered") return "« " + call;
  if (kind != "effect" || isSetUp(call)) return "";
  if (call.starts_with(kPost))
    return "» " + call.substr(kPost.size(), call.size() - kPost.size() - 2);
  return row["by"] == "passed" ? "passed on: " + call : call;
}

std::vector<Cell> cellsOf(const Json& steps) {
  std::vector<Cell> cells;
  for (const Json& step : steps) {
    const std::string line = step["line"];
    if (line.empty() || step.contains("holds")) continue;
    cells.push_back({"", "", "> " + line});
    for (const Json& row : step["rows"]) {
      std::string text =
          row["kind"] == "started" ? started(step["rows"], row["process"]) : shown(row);
      if (!text.empty())
        cells.push_back({scenario::shownTime(row["time"]), row["process"], std::move(text)});
    }
    if (step.contains("answer"))
      cells.push_back({"", "", step["answer"].get<bool>() ? "= YES" : "= NO"});
  }
  return cells;
}

// A column is counted in characters, of which « and » are one each; text beyond it goes on below.
std::vector<std::string> wrapped(const std::string& text, std::size_t width) {
  std::vector<std::string> lines(1);
  std::size_t used = 0;
  for (const char c : text) {
    const bool begins = (static_cast<unsigned char>(c) & 0xc0) != 0x80;
    if (begins && used == width) {
      lines.emplace_back("  ");
      used = 2;
    }
    used += begins;
    lines.back() += c;
  }
  lines.back().append(width - used, ' ');
  return lines;
}

void print(const std::vector<Cell>& cells, std::size_t columns, std::ostream& out) {
  std::vector<std::string> lanes;
  for (const Cell& cell : cells)
    if (!cell.process.empty() && std::ranges::find(lanes, cell.process) == lanes.end())
      lanes.push_back(cell.process);
  const std::size_t room = columns > kTimeWidth ? columns - kTimeWidth : 0;
  const std::size_t width =
      lanes.empty() ? kNarrowest : std::max(kNarrowest, room / lanes.size() - 2);
  const auto row = [&](const std::string& time, const std::string& process,
                       const std::string& text) {
    std::string line = fmt::format("{:>{}}", time, kTimeWidth - 1);
    for (const std::string& lane : lanes)
      line += "│ " + (lane == process ? text : std::string(width, ' '));
    out << line.substr(0, line.find_last_not_of(' ') + 1) << '\n';
  };
  std::string heads(kTimeWidth - 1, ' ');
  for (const std::string& lane : lanes)
    heads += "│ " + fmt::format("{:<{}.{}}", lane, width, width);
  out << heads.substr(0, heads.find_last_not_of(' ') + 1) << '\n';
  for (const Cell& cell : cells) {
    if (cell.process.empty()) {
      out << cell.text << '\n';
      continue;
    }
    std::string time = cell.time;
    for (const std::string& part : wrapped(cell.text, width))
      row(std::exchange(time, {}), cell.process, part);
  }
}

}  // namespace

scenario::Status printLanes(const std::string& file, const std::string& text, LibraryLoader& loader,
                            const scenario::RunOptions& options, std::size_t columns,
                            std::ostream& out, std::ostream& errors) {
  const WholeRun run = playWhole(file, text, loader, options, errors);
  print(cellsOf(run.steps), columns, out);
  return run.status;
}

}  // namespace sim::show
