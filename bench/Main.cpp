// The benchmark program: starts the host, registers the workloads and runs those that are asked
// for. Memory stays with the process once it has it, as in a host that has run for a while: each
// form is measured by its work, not by how often the system hands out and clears pages.
#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <iostream>
#include <new>

#include "bench/Measure.h"
#include "bench/Registration.h"
#include "embedded/product/HostApplication.h"

namespace {

std::atomic<bool> g_isCounting{false};
std::atomic<std::ptrdiff_t> g_inUse{0};
std::atomic<std::ptrdiff_t> g_most{0};

void count(std::ptrdiff_t bytes) {
  const std::ptrdiff_t inUse = g_inUse += bytes;
  if (inUse > g_most) {
    g_most = inUse;
  }
}

void* allocate(std::size_t size) {
  void* const memory = std::malloc(size > 0 ? size : 1);
  if (!memory) {
    throw std::bad_alloc();
  }
  if (g_isCounting.load(std::memory_order_relaxed)) {
    count(static_cast<std::ptrdiff_t>(malloc_usable_size(memory)));
  }
  return memory;
}

void release(void* memory) noexcept {
  if (memory && g_isCounting.load(std::memory_order_relaxed)) {
    count(-static_cast<std::ptrdiff_t>(malloc_usable_size(memory)));
  }
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
  return allocate(size);
}
void* operator new[](std::size_t size) {
  return allocate(size);
}
void operator delete(void* memory) noexcept {
  release(memory);
}
void operator delete[](void* memory) noexcept {
  release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  release(memory);
}

namespace quoin::bench {

void startCountingMemory() {
  g_inUse = 0;
  g_most = 0;
  g_isCounting = true;
}

std::size_t stopCountingMemory() {
  g_isCounting = false;
  return static_cast<std::size_t>(g_most);
}

}  // namespace quoin::bench

int main(int argc, char** argv) {
  mallopt(M_MMAP_THRESHOLD, 1 << 30);
  mallopt(M_TRIM_THRESHOLD, -1);
  mallopt(M_TOP_PAD, 64 << 20);
  const quoin::HostApplication host;
  quoin::bench::registerAll();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 2;
  }
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
