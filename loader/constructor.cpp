// The library's one load-time constructor. It runs in every process that the library is injected
// into, before that process's own start-up code.
#include "loader/installer.hpp"

namespace {

[[gnu::constructor]] void libraryLoaded() { corvalen::loader::install(); }

}  // namespace
