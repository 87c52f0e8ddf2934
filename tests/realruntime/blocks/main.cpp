// compiled-blocks: the library's categories with blocks made by a compiler.
#include <filesystem>

#include "../host.hpp"

extern "C" int testBlocks(const char* library);

int main() {
  const auto program = std::filesystem::read_symlink("/proc/self/exe");
  const real::Host host("");
  return testBlocks((program.parent_path() / "proCorvalen.so").c_str());
}
