#include "tests/semantics/cases.hpp"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace semantics {

namespace {

constexpr auto npos = std::string::npos;

// Takes a text with its quotes off the front of the line.
std::string takeText(std::string& line) {
  std::string bytes;
  std::size_t at = 1;
  for (; at < line.size() && line[at] != '"'; ++at) {
    if (line[at] != '\\') {
      bytes += line[at];
      continue;
    }
    const char code = line.at(++at);
    if (code == 'x') {
      bytes += static_cast<char>(std::stoi(line.substr(at + 1, 2), nullptr, 16));
      at += 2;
    } else {
      bytes += code == 'n' ? '\n' : code == 't' ? '\t' : code == 'r' ? '\r' : code;
    }
  }
  line.erase(0, line.find_first_not_of(' ', std::min(at + 1, line.size())));
  return bytes;
}

std::string asXml(const std::string& element) {
  return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0">)" + element + "</plist>";
}

// The first object is the root.
std::string asBinary(const std::vector<std::string>& objects) {
  std::string file = "bplist00";
  std::string offsets;
  for (const std::string& object : objects) {
    offsets += static_cast<char>(file.size());
    file += object;
  }
  std::string trailer(32, '\0');
  trailer[6] = trailer[7] = 1;  // bytes of an offset, and of a reference
  trailer[15] = static_cast<char>(objects.size());
  trailer[31] = static_cast<char>(file.size());
  return file + offsets + trailer;
}

void makeFiles(Case& made) {
  if (made.operation == "xml") made.inputs = {asXml(made.inputs.front())};
  if (made.operation == "binary") made.inputs = {asBinary(made.inputs)};
  if (made.operation == "xml" || made.operation == "binary") made.operation = "read";
  if (made.operation != "truth" && made.operation != "contains") return;
  for (std::string& input : made.inputs) input = asXml("<dict><key>v</key>" + input + "</dict>");
}

Case parsed(std::string line, const std::string& place) {
  Case made;
  made.place = place;
  const auto space = line.find(' ');
  made.operation = line.substr(0, space);
  line.erase(0, line.find_first_not_of(' ', space));
  while (line.starts_with('"') && line.find('"', 1) + 1 < line.size())
    made.inputs.push_back(takeText(line));
  made.answer = line;
  if (made.inputs.empty() || line.empty()) throw std::runtime_error("no case");
  makeFiles(made);
  return made;
}

// WHO ANSWER | REASON
void addDifference(const std::string& line, std::vector<Case>& cases) {
  const auto space = line.find(' ');
  const auto reason = line.rfind(" | ");
  const std::string who = line.substr(0, space);
  if (reason == npos || cases.empty() || (who != "GNUstep" && who != "simulated"))
    throw std::runtime_error("no difference");
  cases.back().differing[who] = line.substr(space + 1, reason - space - 1);
}

void readFile(const std::filesystem::path& path, std::vector<Case>& cases) {
  std::ifstream file(path);
  int number = 0;
  for (std::string line; std::getline(file, line);) {
    const std::string place = path.filename().string() + ":" + std::to_string(++number);
    if (line.empty() || line.starts_with('#')) continue;
    try {
      if (line.starts_with("  "))
        addDifference(line.substr(2), cases);
      else
        cases.push_back(parsed(line, place));
    } catch (const std::exception& error) {
      throw std::runtime_error(place + ": " + error.what());
    }
  }
}

}  // namespace

std::vector<Case> readCases(const std::string& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    if (entry.path().extension() == ".txt") files.push_back(entry.path());
  std::ranges::sort(files);
  std::vector<Case> cases;
  for (const auto& file : files) readFile(file, cases);
  return cases;
}

std::string Case::wrong(const std::string& who, const std::string& found) const {
  const auto difference = differing.find(who);
  const std::string& expected = difference == differing.end() ? answer : difference->second;
  if (difference != differing.end() && found == answer)
    return place + ": " + who + " is said to differ, and does not";
  if (found == expected) return {};
  return place + ": " + operation + "\n  expected " + expected + "\n  answered " + found;
}

std::string quoted(const std::string& bytes) {
  std::string out = "\"";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    char code[5] = {c, 0};
    if (byte < ' ' || byte == 0x7f) std::snprintf(code, sizeof code, "\\x%02x", byte);
    if (c == '"' || c == '\\') out += '\\';
    out += code;
  }
  return out + '"';
}

}  // namespace semantics
