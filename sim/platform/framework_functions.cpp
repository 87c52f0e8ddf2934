// C functions of frameworks that are found by name: MediaRemote, AudioToolbox, SystemConfiguration.
// Leaves out what the commands and the sound do to the ear: the trace says that they were made; and
// routes to any address but the all-zero one.
#include <cstring>

#include "sim/core/device.hpp"
#include "sim/platform/functions.hpp"

namespace sim {

namespace {

// The platform's own implementation takes every command and changes nothing.
bool sendRemoteCommand(Process&, unsigned, Object*) { return true; }

void playSystemSound(Process&, unsigned) {}

// The route to an address. The only one that is asked for is the all-zero IPv4 address.
Owned<Object> createReachability(Process& process, Pointer, Pointer address) {
  unsigned char given[16];
  const unsigned char expected[16] = {sizeof expected, 2};  // length, IPv4
  process.library().read(address.address, given, sizeof given);
  if (std::memcmp(given, expected, sizeof given) != 0)
    throw Fault("reachability of an address that is not the all-zero one");
  return {process.make<Object>("NSObject")};
}

// Where the flags cannot be had, what is written all the same means nothing.
bool reachabilityFlags(Process& process, Object* reachability, Pointer flags) {
  if (!reachability) throw Fault("SCNetworkReachabilityGetFlags of NULL");
  constexpr std::uint32_t kReachable = 0x2;
  const auto& answer = process.device.state.networkFlags;
  const std::uint32_t value = answer.value_or(kReachable);
  process.library().write(flags.address, &value, sizeof value);
  return answer.has_value();
}

NativeCode of(Framework framework, NativeCode code) {
  code.framework = framework;
  return code;
}

}  // namespace

Functions frameworkFunctions() {
  return {
      of(Framework::MediaRemote,
         effect(bindFunction("MRMediaRemoteSendCommand", sendRemoteCommand))),
      of(Framework::AudioToolbox,
         effect(bindFunction("AudioServicesPlaySystemSound", &playSystemSound))),
      of(Framework::SystemConfiguration,
         bindFunction("SCNetworkReachabilityCreateWithAddress", &createReachability)),
      of(Framework::SystemConfiguration,
         bindFunction("SCNetworkReachabilityGetFlags", &reachabilityFlags)),
  };
}

}  // namespace sim
