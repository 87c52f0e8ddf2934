// Decides what this process gets, and installs it.
#pragma once

namespace corvalen::loader {

// Runs once a process, when the library is loaded: nothing outside of the supported versions, else
// one of five sets, chosen by the process's bundle identifier. Nothing is installed later.
void install();

}  // namespace corvalen::loader
