#include "sim/show/static_page.hpp"

#include <fstream>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>
#include <stdexcept>

#include "sim/show/played_device.hpp"

namespace sim::show {

namespace {

std::string contents(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::runtime_error(file.string() + ": cannot be read");
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// In the page's source, where each stands once.
constexpr const char* kStyle = R"(<link rel="stylesheet" href="style.css">)";
constexpr const char* kModule = R"(<script type="module" src="main.js"></script>)";
constexpr const char* kImport = "import ";
constexpr const char* kExport = "export ";

void replace(std::string& page, const std::string& what, const std::string& by) {
  const std::size_t at = page.find(what);
  if (at == std::string::npos) throw std::runtime_error("index.html lacks " + what);
  page.replace(at, what.size(), by);
}

// All modules as one, in the order in which they need each other. The page's modules keep to what
// this takes: imports are lines of their own, and no two have a name in common.
std::string joinedModules(const std::filesystem::path& folder) {
  std::istringstream names(contents(folder / "modules.txt"));
  std::string joined;
  for (std::string name; names >> name;) {
    std::istringstream module(contents(folder / name));
    for (std::string line; std::getline(module, line);) {
      if (line.starts_with(kImport)) continue;
      if (line.starts_with(kExport)) line.erase(0, std::string(kExport).size());
      joined += line + '\n';
    }
  }
  return joined;
}

// No text in it can be taken for markup.
std::string asScript(std::string json) {
  for (std::size_t at = 0; (at = json.find('<', at)) != std::string::npos;)
    json.replace(at, 1, "\\u003c");
  return json;
}

// With style, modules and the recording in it.
std::string page(const std::filesystem::path& folder, const std::string& recording) {
  std::string page = contents(folder / "index.html");
  replace(page, kStyle, "<style>\n" + contents(folder / "style.css") + "</style>");
  replace(page, kModule,
          "<script type=\"application/json\" id=\"recording\">" + asScript(recording) +
              "</script>\n<script type=\"module\">\n" + joinedModules(folder) + "</script>");
  return page;
}

Lines split(const std::string& text) {
  Lines lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

}  // namespace

scenario::Status printStaticPage(const std::filesystem::path& folder, const std::string& build,
                                 const std::string& file, const std::string& text,
                                 LibraryLoader& loader, const scenario::RunOptions& options,
                                 std::ostream& out, std::ostream& errors) {
  const Lines lines = split(text);
  PlayedDevice device(loader, options.settingsPage);
  Json steps = Json::array();
  auto status = scenario::Status::Held;
  const auto report = [&](std::size_t line, const std::string& message) {
    errors << file << ':' << line + 1 << ": " << message << '\n';
  };
  const auto keep = [&](const Json& step) {
    steps.push_back(step);
    const auto line = step["step"].get<std::size_t>();
    if (step.contains("error")) {
      status = scenario::Status::Wrong;
      report(line, step["error"]);
    } else if (!step.value("holds", true)) {
      status = scenario::Status::Failed;
      report(line, "does not hold: " + step["line"].get<std::string>());
    }
  };
  if (const auto wrong = device.play(
          lines, [](std::size_t) {}, keep)) {
    report(wrong->line, wrong->message);
    return scenario::Status::Wrong;
  }
  const Json recording = {{"file", file}, {"build", build}, {"lines", lines}, {"steps", steps}};
  // Texts may hold any bytes; what is no UTF-8 must not end the run.
  out << page(folder, recording.dump(-1, ' ', false, Json::error_handler_t::replace));
  return status;
}

}  // namespace sim::show
