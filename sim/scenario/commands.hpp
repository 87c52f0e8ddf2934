// The commands of the scenario language. Stand in for a user's hands, and for somebody who can set
// a phone up as he likes; leave out expectations, which sim/scenario/script.hpp reads.
#pragma once
#include <functional>
#include <optional>

#include "sim/core/device.hpp"
#include "sim/scenario/arguments.hpp"

namespace sim::scenario {

// What a command does to the device; the answer that its caller got, if it asks for one.
using Action = std::function<std::optional<bool>(Device&)>;

// One row of the language: the first word, and how the rest is read.
struct CommandRow {
  const char* name;
  Action (*read)(Arguments&);
};

// The rows for what sets the device up, and for what happens to it.
const std::vector<CommandRow>& setUpCommands();
const std::vector<CommandRow>& eventCommands();

// An action without an answer.
template <class Work>
Action doing(Work work) {
  return [work](Device& device) -> std::optional<bool> {
    work(device);
    return std::nullopt;
  };
}

}  // namespace sim::scenario
