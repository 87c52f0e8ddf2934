// corvalen-semantics FOLDER: holds GNUstep's Foundation against the cases. It must answer each as
// the platform does, or as the case says that it differs; an exception that is none any more is a
// mistake too.
#include <algorithm>
#include <cstdio>
#include <exception>

#include "foundation.h"
#include "tests/semantics/cases.hpp"

const char* quotedBytes(const char* bytes, size_t length) {
  static std::string text;
  text = semantics::quoted({bytes, length});
  return text.c_str();
}

namespace {

std::string answer(const semantics::Case& each) {
  std::vector<std::string> inputs = each.inputs;
  inputs.resize(2);
  return foundationAnswer(each.operation.c_str(), inputs[0].data(), inputs[0].size(),
                          inputs[1].data(), inputs[1].size());
}

}  // namespace

int main(int count, char** words) {
  int wrong = 0;
  try {
    const auto cases = semantics::readCases(count > 1 ? words[1] : ".");
    for (const semantics::Case& each : cases) {
      const std::string mistake = each.wrong("GNUstep", answer(each));
      if (mistake.empty()) continue;
      ++wrong;
      std::printf("%s\n", mistake.c_str());
    }
    const auto differing = std::ranges::count_if(
        cases, [](const auto& each) { return each.differing.contains("GNUstep"); });
    std::printf("%zu inputs: %td known differences, %d mistakes\n", cases.size(), differing, wrong);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 2;
  }
  return wrong ? 1 : 0;
}
