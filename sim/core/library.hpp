// The library as one process has it loaded. There are several ways of running it; the simulated
// world knows only this interface: it calls code at an address, and reads and writes the memory
// that the ABI hands over. Stands in for the dynamic loader and for the process's memory; leaves
// out unloading while the process runs.
#pragma once
#include <filesystem>
#include <memory>
#include <vector>

#include "sim/core/class.hpp"

namespace sim {

class Library {
 public:
  virtual ~Library() = default;

  // Runs the load-time constructor. May throw Fault.
  virtual void runInitialisers() = 0;

  // Maps the settings bundle's executable beside the library, as one more image of the process, and
  // runs its constructor. May throw Fault.
  virtual void loadBundle() = 0;

  // Calls code in the library or the bundle: `fixed` are all its arguments, hidden ones included.
  // May throw Fault.
  virtual Value call(Address code, Kind result, const std::vector<Value>& fixed) = 0;

  // An address at which the library can call platform code: as a method with the two hidden
  // arguments (`isMethod`), or as a C function. Valid for the process's life.
  virtual Address expose(std::shared_ptr<const NativeCode> code, bool isMethod) = 0;

  // The address of one of the platform's variables that the library links against.
  virtual Address variable(const std::string& name) = 0;

  // Memory. Reads and writes outside of what the process may touch throw Fault.
  virtual void read(Address from, void* to, std::size_t size) const = 0;
  virtual void write(Address to, const void* from, std::size_t size) = 0;
  virtual Address allocate(std::size_t size) = 0;  // zeroed; freed memory is never handed out again
  virtual void deallocate(Address memory) = 0;

  virtual unsigned pointerSize() const = 0;
  // Ranges of the library's own variables, for the search for leaks: (address, size).
  virtual std::vector<std::pair<Address, std::size_t>> data() const = 0;
  // Only those that the image itself has: its variables.
  virtual std::vector<std::pair<Address, std::size_t>> variables() const = 0;
  // Whether the platform or the library has code at that address.
  virtual bool isCode(Address address) const = 0;
  // A pointer-wide word within data(), whatever it means.
  virtual Address dataWord(Address at) const { return readPointer(at); }

  // The text that a zero byte ends.
  virtual std::string readText(Address from) const;
  Address readPointer(Address from) const;
  void writePointer(Address to, Address value);
};

// Makes the library of a process that starts.
class LibraryLoader {
 public:
  virtual ~LibraryLoader() = default;
  virtual std::unique_ptr<Library> load(Process& process) = 0;
  // kCFCoreFoundationVersionNumber, for every process.
  virtual void setVersion(double version) = 0;

  // The settings bundle's folder on the host, with its entry in the Settings app beside it.
  std::filesystem::path bundle;
  static constexpr const char* kBundleName = "CorvalenPro.bundle";
  std::filesystem::path bundleExecutable() const { return bundle / "CorvalenPro"; }
};

}  // namespace sim
