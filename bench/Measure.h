// How a form of a workload is measured: `prepare` is not timed, `work` is, in every iteration anew,
// and the best iteration counts, since what disturbs a run only makes it slower. The memory at its
// highest is taken in one more iteration, since counting takes time.
#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quoin::bench {

/// From now on counts what operator new hands out, or stops counting.
void startCountingMemory();
/// The most bytes that were in use at once since then.
std::size_t stopCountingMemory();

/// How often a form of this size is measured.
inline int iterationsFor(std::size_t size) {
  return size <= 1000 ? 200 : size <= 10000 ? 100 : size <= 100000 ? 20 : 5;
}

/// Takes the records and their pointers out of the processor's caches, as they are out of them when
/// other work was done since they were made or last used. Does nothing where it cannot be done.
template <class Record>
void dropFromCaches([[maybe_unused]] const std::vector<Record*>& records) {
#if defined(__SSE2__)
  constexpr std::size_t kCacheLine = 64;
  const auto drop = [](const void* first, std::size_t size) {
    const auto* const bytes = static_cast<const char*>(first);
    for (std::size_t i = 0; i < size; i += kCacheLine) {
      _mm_clflush(bytes + i);
    }
    _mm_clflush(bytes + size - 1);
  };
  for (const Record* record : records) {
    drop(record, sizeof(Record));
  }
  drop(records.data(), records.size() * sizeof(Record*));
  _mm_mfence();
#endif
}

/// Registers "workload/form/size". `prepare(size)` answers what `work` takes; `work` answers a
/// count of results, which goes into the table and must be the same for every form whose
/// `isComparable` is true.
template <class Prepare, class Work>
void measure(const std::string& workload, const std::string& form, std::size_t size,
             Prepare prepare, Work work, int iterations = 0) {
  const auto run = [=](benchmark::State& state) {
    double best = std::numeric_limits<double>::infinity();
    double results = 0.0;
    for (auto _ : state) {
      auto input = prepare(size);
      const auto begin = std::chrono::steady_clock::now();
      results = static_cast<double>(work(*input));
      const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
      state.SetIterationTime(seconds.count());
      best = std::min(best, seconds.count());
    }
    state.counters["best_s"] = best;
    state.counters["results"] = results;
    auto input = prepare(size);
    startCountingMemory();
    work(*input);
    state.counters["peak_bytes"] = static_cast<double>(stopCountingMemory());
  };
  benchmark::RegisterBenchmark((workload + "/" + form + "/" + std::to_string(size)).c_str(), run)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond)
      ->Iterations(iterations > 0 ? iterations : iterationsFor(size));
}

}  // namespace quoin::bench
