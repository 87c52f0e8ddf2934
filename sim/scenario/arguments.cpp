#include "sim/scenario/arguments.hpp"

#include <fmt/format.h>

#include <charconv>
#include <cmath>

namespace sim::scenario {

const Word& Arguments::take(const char* what) {
  if (atEnd()) throw SyntaxError(fmt::format("{}: {} is missing", command_, what));
  return words_[next_++];
}

std::string Arguments::bare(const char* what) {
  const Word& word = take(what);
  if (word.quoted)
    throw SyntaxError(
        fmt::format("{}: {} is not quoted, but \"{}\" is", command_, what, word.text));
  return word.text;
}

std::string Arguments::quoted(const char* what) {
  const Word& word = take(what);
  if (!word.quoted)
    throw SyntaxError(fmt::format("{}: {} must be quoted: {}", command_, what, word.text));
  return word.text;
}

bool Arguments::yesNo() { return oneOf({"yes", "no"}) == 0; }

std::size_t Arguments::oneOf(std::initializer_list<const char*> choices) {
  std::string all;
  for (const char* choice : choices) all += (all.empty() ? "" : " or ") + std::string(choice);
  const std::string word = bare(all.c_str());
  std::size_t index = 0;
  for (const char* choice : choices) {
    if (word == choice) return index;
    ++index;
  }
  throw SyntaxError(fmt::format("{}: {} expected, not {}", command_, all, word));
}

long long Arguments::whole(const char* what, long long least, long long most) {
  const std::string word = bare(what);
  long long value = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
  if (error != std::errc() || end != word.data() + word.size())
    throw SyntaxError(fmt::format("{}: {} must be a whole number, not {}", command_, what, word));
  if (value < least || value > most)
    throw SyntaxError(
        fmt::format("{}: {} must be between {} and {}, not {}", command_, what, least, most, word));
  return value;
}

double Arguments::number(const char* what) {
  const std::string word = bare(what);
  double value = 0;
  const auto [end, error] =
      std::from_chars(word.data(), word.data() + word.size(), value, std::chars_format::fixed);
  if (error != std::errc() || end != word.data() + word.size() || !std::isfinite(value))
    throw SyntaxError(fmt::format("{}: {} must be a number, not {}", command_, what, word));
  return value;
}

Microseconds Arguments::seconds() {
  constexpr double kLongest = 1e9;
  const double value = number("a time in seconds");
  if (value < 0 || value > kLongest)
    throw SyntaxError(fmt::format("{}: a time between 0 and 1e9 seconds expected", command_));
  return static_cast<Microseconds>(std::llround(value * 1e6));
}

std::uint32_t Arguments::hexadecimal(const char* what) {
  const std::string word = bare(what);
  const std::string digits =
      word.starts_with("0x") || word.starts_with("0X") ? word.substr(2) : word;
  std::uint32_t value = 0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
  if (error != std::errc() || end != digits.data() + digits.size())
    throw SyntaxError(fmt::format("{}: {} must be a hexadecimal number of 32 bits, not {}",
                                  command_, what, word));
  return value;
}

void Arguments::finish() const {
  if (!atEnd())
    throw SyntaxError(fmt::format("{}: surplus argument {}", command_, words_[next_].text));
}

}  // namespace sim::scenario
