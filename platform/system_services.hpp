// C functions of frameworks that are loaded only when they are needed: a system sound, and whether
// there is a network. Stands in for the headers of AudioToolbox and SystemConfiguration; leaves out
// everything else of them, so also being told when the network changes.
#pragma once
#include "platform/framework.hpp"

namespace platform {

// Plays a system sound by its number. Stands on AudioServicesPlaySystemSound.
inline void playSystemSound(uint32_t sound) {
  auto* const play =
      functionIn<void(uint32_t)>(framework::kAudioToolbox, "AudioServicesPlaySystemSound");
  if (play) play(sound);
}

// SCNetworkReachabilityFlags.
enum ReachabilityFlags : uint32_t {
  kReachable = 1 << 1,
  kConnectionRequired = 1 << 2,
  kConnectionOnTraffic = 1 << 3,
  kInterventionRequired = 1 << 4,
  kConnectionOnDemand = 1 << 5,
  kCellular = 1 << 18,
};

// An IPv4 socket address as the system lays it out.
struct SocketAddress {
  uint8_t length = 16;
  uint8_t family = 2;  // IPv4
  uint16_t port = 0;
  uint32_t address = 0;
  uint8_t zero[8] = {};
};
static_assert(sizeof(SocketAddress) == 16);

// The flags of the route to an address. False if they cannot be had. Stands on
// SCNetworkReachabilityCreateWithAddress and SCNetworkReachabilityGetFlags.
inline bool reachabilityFlags(const SocketAddress& address, uint32_t* flags) {
  auto* const create = functionIn<CFTypeRef(CFTypeRef, const void*)>(
      framework::kSystemConfiguration, "SCNetworkReachabilityCreateWithAddress");
  auto* const getFlags = functionIn<Boolean(CFTypeRef, uint32_t*)>(framework::kSystemConfiguration,
                                                                   "SCNetworkReachabilityGetFlags");
  if (!create || !getFlags) return false;
  const CFTypeRef reachability = create(nullptr, &address);
  if (!reachability) return false;
  const bool obtained = getFlags(reachability, flags) != 0;
  CFRelease(reachability);
  return obtained;
}

}  // namespace platform
