// Frameworks that are reached by name and loaded where they are needed: linking one would load it,
// and what it needs, into every process. Each is loaded before anything of it is looked up, as the
// process may not have it yet. Stands in for a list of linked libraries; leaves out unloading: what
// is loaded stays.
// docs/decisions.md: Four linked libraries
#pragma once
#include "platform/object.hpp"

namespace platform {

namespace framework {
inline constexpr const char* kAccounts = "/System/Library/Frameworks/Accounts.framework/Accounts";
inline constexpr const char* kSocial = "/System/Library/Frameworks/Social.framework/Social";
inline constexpr const char* kAudioToolbox =
    "/System/Library/Frameworks/AudioToolbox.framework/AudioToolbox";
inline constexpr const char* kSystemConfiguration =
    "/System/Library/Frameworks/SystemConfiguration.framework/SystemConfiguration";
inline constexpr const char* kMediaRemote =
    "/System/Library/PrivateFrameworks/MediaRemote.framework/MediaRemote";
}  // namespace framework

// docs/decisions.md: Frameworks come before their names
// A class of a framework. Stands on dlopen and objc_getClass; nil where it cannot be loaded.
template <Literal Name>
ClassObject classIn(const char* framework) {
  dlopen(framework, kLoadLazily);
  return classNamed<Name>();
}

// The address of what a framework exports under that name, or null. Stands on dlopen and dlsym.
inline void* symbolIn(const char* framework, const char* symbol) {
  void* const image = dlopen(framework, kLoadLazily);
  return image ? dlsym(image, symbol) : nullptr;
}

// A function of a framework, or null where it cannot be loaded.
template <class Function>
Function* functionIn(const char* framework, const char* symbol) {
  return reinterpret_cast<Function*>(symbolIn(framework, symbol));
}

// An object constant that a framework exports, borrowed; nil where it cannot be loaded.
template <class View>
View constantIn(const char* framework, const char* symbol) {
  auto* const variable = static_cast<const id*>(symbolIn(framework, symbol));
  return view<View>(variable ? *variable : nullptr);
}

}  // namespace platform
