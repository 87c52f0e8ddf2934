// The arguments of a scenario command, read one after the other. Nothing of a phone; leaves out
// whether a command makes sense on the device as it is, which only its run can tell.
#pragma once
#include <optional>

#include "sim/core/clock.hpp"
#include "sim/scenario/words.hpp"

namespace sim::scenario {

inline constexpr long long kMostInt = 2147483647;  // of the platform's 32-bit int

// Every reader throws SyntaxError if the next word is missing or is not what it should be.
class Arguments {
 public:
  Arguments(std::string command, std::vector<Word> words)
      : command_(std::move(command)), words_(std::move(words)) {}

  std::string bare(const char* what);    // an unquoted word
  std::string quoted(const char* what);  // a "text"
  std::string identifier() { return bare("a bundle identifier"); }
  bool yesNo();
  long long whole(const char* what, long long least, long long most);
  double number(const char* what);
  Microseconds seconds();
  std::uint32_t hexadecimal(const char* what);
  // One of these words; its index.
  std::size_t oneOf(std::initializer_list<const char*> choices);

  bool atEnd() const { return next_ == words_.size(); }
  const Word& peek() const { return words_.at(next_); }
  void finish() const;  // surplus words are a mistake

 private:
  const Word& take(const char* what);

  std::string command_;
  std::vector<Word> words_;
  std::size_t next_ = 0;
};

}  // namespace sim::scenario
