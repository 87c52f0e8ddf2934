// When the network counts as reachable: every combination of the flags that the system gives.
#include "tests/rules/rule_fixture.hpp"

namespace sim {
namespace {

// The flags that the rule reads, and others that it must not.
constexpr std::uint32_t kFlags[] = {0x1, 0x2, 0x4, 0x8, 0x10, 0x20, 0x10000, 0x20000, 0x40000};

// The rule: bits that must be set, bits that must be clear. Any row will do.
struct Row {
  std::uint32_t set;
  std::uint32_t clear;
};
constexpr Row kReachable[] = {
    {0x2, 0x4},          // reachable, no connection required
    {0x2 | 0x8, 0x10},   // connects on traffic, without anybody's help
    {0x2 | 0x20, 0x10},  // or on demand
    {0x2 | 0x40000, 0},  // cellular
};

class ReachabilityRule : public RuleTest {
 protected:
  // Whether the first unlock offers to follow, which needs the network.
  std::string greeting() {
    announce({{"iea9AQXrEmhSZ4u", yes(false)}});
    const Effects effects = effectsOf([&] { unlock(device); });
    for (const auto& effect : effects)
      if (effect.starts_with("-[UIAlertView show]")) {
        pressButton(device, 0);
        return effect.find("I'd love to!") != std::string::npos ? "offer" : "settings";
      }
    return "nothing";
  }
};

TEST_F(ReachabilityRule, EveryCombinationOfFlags) {
  boot(1145.15);
  for (unsigned chosen = 0; chosen < 1u << std::size(kFlags); ++chosen, ++combinations) {
    std::uint32_t flags = 0;
    for (std::size_t i = 0; i < std::size(kFlags); ++i)
      if (chosen >> i & 1) flags |= kFlags[i];
    bool reachable = false;
    for (const Row& row : kReachable)
      reachable = reachable || ((flags & row.set) == row.set && (flags & row.clear) == 0);
    device.state.networkFlags = flags;
    ASSERT_EQ(greeting(), reachable ? "offer" : "settings") << fmt::format("flags {:#x}", flags);
  }
  EXPECT_EQ(combinations, 512u);
}

TEST_F(ReachabilityRule, FlagsThatCannotBeHadAreNoNetwork) {
  boot(1145.15);
  device.state.networkFlags.reset();
  EXPECT_EQ(greeting(), "settings");
}

}  // namespace
}  // namespace sim
