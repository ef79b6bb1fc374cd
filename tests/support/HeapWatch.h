// Counts what operator new hands out, and lets it fail, for tests of what is kept and of what
// happens without memory. HeapWatch.cpp replaces the operators of a test executable and of the
// libraries that it uses.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace quoin::test {

struct HeapWatch {
  static inline std::atomic<long> handedOut = 0;
  static inline std::atomic<long> takenBack = 0;
  /// So many more requests succeed and all later ones fail; negative: none fails.
  static inline std::atomic<long> left = -1;

  static void* allocate(std::size_t size) noexcept {
    if (left == 0) {
      return nullptr;
    }
    if (left > 0) {
      --left;
    }
    ++handedOut;
    return std::malloc(size > 0 ? size : 1);
  }
  static void release(void* memory) noexcept {
    if (memory) {
      ++takenBack;
    }
    std::free(memory);
  }
};

/// Lets all but the next so many requests fail while it stands.
class NoMemoryAfter {
 public:
  explicit NoMemoryAfter(long requests) { HeapWatch::left = requests; }
  ~NoMemoryAfter() { HeapWatch::left = -1; }
  NoMemoryAfter(const NoMemoryAfter&) = delete;
  NoMemoryAfter& operator=(const NoMemoryAfter&) = delete;
};

}  // namespace quoin::test
