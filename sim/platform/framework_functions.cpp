// C functions of frameworks that are found by name: MediaRemote, AudioToolbox, SystemConfiguration.
#include "sim/platform/functions.hpp"

namespace sim {

namespace {

// The platform's own implementation takes every command and changes nothing.
bool sendCommand(Process&, unsigned, Object*) { return true; }

void playSystemSound(Process&, unsigned) {}

}  // namespace

Functions frameworkFunctions() {
  return {
      effect(bindFunction("MRMediaRemoteSendCommand", &sendCommand)),
      effect(bindFunction("AudioServicesPlaySystemSound", &playSystemSound)),
  };
}

}  // namespace sim
