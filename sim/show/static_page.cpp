#include "sim/show/static_page.hpp"

#include <fstream>
#include <ostream>
#include <sstream>
#include <stdexcept>

#include "sim/show/whole_run.hpp"

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

}  // namespace

scenario::Status printStaticPage(const std::filesystem::path& folder, const std::string& build,
                                 const std::string& file, const std::string& text,
                                 LibraryLoader& loader, const scenario::RunOptions& options,
                                 std::ostream& out, std::ostream& errors) {
  const WholeRun run = playWhole(file, text, loader, options, errors);
  if (run.steps.empty() && run.status == scenario::Status::Wrong) return run.status;
  const Json recording = {
      {"file", file}, {"build", build}, {"lines", run.lines}, {"steps", run.steps}};
  // Texts may hold any bytes; what is no UTF-8 must not end the run.
  out << page(folder, recording.dump(-1, ' ', false, Json::error_handler_t::replace));
  return run.status;
}

}  // namespace sim::show
