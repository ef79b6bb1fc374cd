// How a row of the table is measured: the forms of a workload at one size take turns, round after
// round, so that what disturbs the machine disturbs all of them. `prepare` is not timed, `work` is,
// each time on fresh input; medians over the rounds count, and the spread about them. The memory at
// its highest is taken in a round of its own, since counting takes time.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace quoin::bench {

/// From now on counts what operator new hands out, or stops counting.
void startCountingMemory();
/// The most bytes that were in use at once since then.
std::size_t stopCountingMemory();

/// How many rounds a row of this size has: odd, so that a median is one of them.
inline int roundsFor(std::size_t size) {
  return size <= 1000 ? 101 : size <= 10000 ? 51 : size <= 100000 ? 15 : 5;
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

/// What a form found, so that forms which do the same can be held against each other: how many
/// results, and the sum of their lengths, areas or bytes.
struct Found {
  double count = 0.0;
  double sum = 0.0;

  /// Sums are taken in another order by each form, so that their last digits differ.
  bool isSameAs(const Found& other) const {
    constexpr double kSummation = 1.0e-9;
    return count == other.count &&
           std::abs(sum - other.sum) <= kSummation * std::max(std::abs(sum), std::abs(other.sum));
  }
};

/// The median of some values, and half the distance between their quartiles.
struct Spread {
  double median;
  double halfRange;
};

inline Spread spreadOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t last = values.size() - 1;
  return {values[last / 2], (values[last - last / 4] - values[last / 4]) / 2.0};
}

/// A row: what is measured under "workload/size". The first form is ours, the others are peers.
class Row {
 public:
  explicit Row(std::string workload, std::size_t size, int rounds = 0)
      : m_name(std::move(workload) + "/" + std::to_string(size)),
        m_size(size),
        m_rounds(rounds > 0 ? rounds : roundsFor(size)) {}

  /// `prepare(size)` returns a pointer to what `work` takes and leaves its results in.
  template <class Prepare, class Work>
  Row& form(const std::string& name, Prepare prepare, Work work) {
    return form(name, prepare, work, [](const auto&) { return std::optional<Found>(); });
  }
  /// `tell` says what was found; all forms that can tell must have found the same.
  template <class Prepare, class Work, class Tell>
  Row& form(const std::string& name, Prepare prepare, Work work, Tell tell) {
    const std::size_t size = m_size;
    const auto run = [=] {
      const auto input = prepare(size);
      const auto begin = std::chrono::steady_clock::now();
      work(*input);
      const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
      return seconds.count();
    };
    const auto look = [=] {
      const auto input = prepare(size);
      startCountingMemory();
      work(*input);
      const std::size_t bytes = stopCountingMemory();
      return Look{static_cast<double>(bytes), tell(*input)};
    };
    m_forms.push_back({name, run, look});
    return *this;
  }

  /// Registers the row under its name.
  void add() const {
    benchmark::RegisterBenchmark(m_name.c_str(),
                                 [row = *this](benchmark::State& state) { row.measure(state); })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Iterations(1);
  }

 private:
  struct Look {
    double peakBytes;
    std::optional<Found> found;
  };
  struct Form {
    std::string name;
    std::function<double()> run;
    std::function<Look()> look;
  };

  void measure(benchmark::State& state) const {
    std::vector<std::vector<double>> seconds(m_forms.size());
    for (auto _ : state) {
      for (int round = 0; round < m_rounds; ++round) {
        // To and fro, so that none always comes behind the same other one.
        for (std::size_t i = 0; i < m_forms.size(); ++i) {
          const std::size_t which = round % 2 == 0 ? i : m_forms.size() - 1 - i;
          seconds[which].push_back(m_forms[which].run());
        }
      }
      state.SetIterationTime(spreadOf(seconds[0]).median);
    }
    std::optional<Found> first;
    for (std::size_t i = 0; i < m_forms.size(); ++i) {
      const Form& form = m_forms[i];
      const Spread time = spreadOf(seconds[i]);
      state.counters[form.name + ".median_s"] = time.median;
      state.counters[form.name + ".spread_s"] = time.halfRange;
      if (i > 0) {
        // Round by round: what slowed one down slowed its neighbour down, too.
        std::vector<double> ratios;
        for (std::size_t round = 0; round < seconds[i].size(); ++round) {
          ratios.push_back(seconds[0][round] / seconds[i][round]);
        }
        const Spread ratio = spreadOf(std::move(ratios));
        state.counters[form.name + ".ours_over"] = ratio.median;
        state.counters[form.name + ".ours_over_spread"] = ratio.halfRange;
      }
      const Look look = form.look();
      state.counters[form.name + ".peak_bytes"] = look.peakBytes;
      if (!look.found) {
        continue;
      }
      state.counters[form.name + ".found"] = look.found->count;
      if (first && !look.found->isSameAs(*first)) {
        state.SkipWithError((form.name + " found " + std::to_string(look.found->count) + " (" +
                             std::to_string(look.found->sum) + "), others found " +
                             std::to_string(first->count) + " (" + std::to_string(first->sum) + ")")
                                .c_str());
        return;
      }
      first = look.found;
    }
  }

  std::string m_name;
  std::size_t m_size;
  int m_rounds;
  std::vector<Form> m_forms;
};

}  // namespace quoin::bench
