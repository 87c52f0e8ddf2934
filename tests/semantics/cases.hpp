// What the platform's Foundation answers, as data: the .txt files beside this one, a case a line,
//
//     OPERATION "INPUT"... ANSWER
//       GNUstep OTHER-ANSWER | why that is wrong
//       simulated OTHER-ANSWER | why that is left so
//
// Property lists may be given in parts: `xml` has what stands in <plist>, `binary` the objects of a
// binary file, which refer to each other by one byte; both are then `read`. `truth` and `contains`
// have elements, each of which becomes a file that holds it under the key v.
//
// The lines below it stand where one of the two differs. Texts may hold \n, \t, \r, \", \\, \xNN.
#pragma once
#include <map>
#include <string>
#include <vector>

namespace semantics {

struct Case {
  std::string place;  // file and line
  std::string operation;
  std::vector<std::string> inputs;  // of `read`, `truth` and `contains` whole files
  std::string answer;
  std::map<std::string, std::string> differing;  // answers, by who differs

  // What is wrong with somebody's answer; empty if it is as it must be.
  std::string wrong(const std::string& who, const std::string& found) const;
};

// All cases of a folder; throws std::runtime_error at what is no case.
std::vector<Case> readCases(const std::string& folder);

// A text as the files have it, in quotes.
std::string quoted(const std::string& bytes);

}  // namespace semantics
