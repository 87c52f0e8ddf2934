// The words of a scenario line. Nothing of a phone; leaves out what they mean.
#pragma once
#include <stdexcept>
#include <string>
#include <vector>

namespace sim::scenario {

// A mistake in the scenario, without its place.
class SyntaxError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Word {
  std::string text;
  bool quoted = false;
};

// Splits a line into words. Words are separated by blanks; "double quotes" hold blanks, in which a
// backslash stands before a quote, a backslash or an n (line feed); # starts a comment outside of
// quotes. Throws SyntaxError.
std::vector<Word> splitWords(const std::string& line);

// The line without its comment and outer blanks, as it is echoed. Throws SyntaxError.
std::string withoutComment(const std::string& line);

}  // namespace sim::scenario
