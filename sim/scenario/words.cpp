#include "sim/scenario/words.hpp"

namespace sim::scenario {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

// Reads a quoted word that begins at `i`; leaves `i` behind the closing quote.
std::string quotedWord(const std::string& line, std::size_t& i) {
  std::string text;
  for (++i; i < line.size(); ++i) {
    if (line[i] == '"') {
      ++i;
      return text;
    }
    if (line[i] != '\\') {
      text += line[i];
      continue;
    }
    if (++i == line.size()) break;
    if (line[i] == 'n')
      text += '\n';
    else if (line[i] == '"' || line[i] == '\\')
      text += line[i];
    else
      throw SyntaxError(std::string("unknown escape \\") + line[i]);
  }
  throw SyntaxError("unclosed quote");
}

struct Split {
  std::vector<Word> words;
  std::size_t end = 0;  // behind the last word
};

Split split(const std::string& line) {
  Split result;
  std::size_t i = 0;
  while (i < line.size()) {
    if (isBlank(line[i])) {
      ++i;
      continue;
    }
    if (line[i] == '#') break;
    if (line[i] == '"') {
      result.words.push_back({quotedWord(line, i), true});
      if (i < line.size() && !isBlank(line[i]) && line[i] != '#')
        throw SyntaxError("a blank is missing behind the closing quote");
    } else {
      std::string text;
      for (; i < line.size() && !isBlank(line[i]) && line[i] != '#'; ++i) {
        if (line[i] == '"') throw SyntaxError("a quote within a word");
        text += line[i];
      }
      result.words.push_back({text, false});
    }
    result.end = i;
  }
  return result;
}

}  // namespace

std::vector<Word> splitWords(const std::string& line) { return split(line).words; }

std::string withoutComment(const std::string& line) {
  const std::size_t end = split(line).end;
  std::size_t start = 0;
  while (start < end && isBlank(line[start])) ++start;
  return line.substr(start, end - start);
}

}  // namespace sim::scenario
