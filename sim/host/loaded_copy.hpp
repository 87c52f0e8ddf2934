// Copies of a shared object, each loaded into the program: one for each simulated process, so that
// each has variables of its own.
//
// Loading one takes longer than most of what a process does, so a copy that its process is done
// with stays loaded. The next process gets it with its variables as they were when it had just been
// loaded, and its constructor runs again: to the code, that is the same as a fresh copy. Where the
// sanitizers watch (they put guards between the variables), and where CORVALEN_FRESH_COPIES is set,
// each process gets a copy that was loaded for it. Stands in for dyld's mapping of an image into a
// process; leaves out the images that it would load along, which the program has already.
#pragma once
#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

namespace sim {

// One copy, loaded, its constructor not yet run.
class LoadedCopy {
 public:
  // Copies the file and loads the copy. Throws std::runtime_error.
  explicit LoadedCopy(const std::filesystem::path& file);
  ~LoadedCopy();
  LoadedCopy(const LoadedCopy&) = delete;
  LoadedCopy& operator=(const LoadedCopy&) = delete;

  struct Range {
    std::uintptr_t start, size;
    bool writable;
  };
  // Its segments, as the dynamic loader mapped them.
  const std::vector<Range>& ranges() const { return ranges_; }

  // Puts every variable back to what it was when the copy had just been loaded.
  void reset();
  // Runs its constructor.
  void initialise() const;

 private:
  // A part of memory that the copy's code can write to, and what it held after loading.
  struct Saved {
    void* at;
    std::vector<char> bytes;
  };
  void findSegments();
  void findConstructor();

  void* handle_ = nullptr;
  std::uintptr_t base_ = 0;
  std::vector<Range> ranges_;
  std::vector<Saved> saved_;
  void (*constructor_)() = nullptr;
};

// The copies of one file.
class LoadedCopies {
 public:
  explicit LoadedCopies(std::filesystem::path file) : file_(std::move(file)) {}
  // One that is as freshly loaded.
  std::unique_ptr<LoadedCopy> take();
  // Its process has ended.
  void giveBack(std::unique_ptr<LoadedCopy> copy);

 private:
  std::filesystem::path file_;
  std::vector<std::unique_ptr<LoadedCopy>> spare_;
};

// The dynamic loader runs the constructor too, outside of any process: every platform function then
// answers nothing, and the version is none that the code acts on.
bool isLoadingCopy();

}  // namespace sim
