// Two doubles worked on together, for the few loops that do nothing but compare the coordinates of
// all records. Not exported. Where the compiler has no names for it, or QUOIN_PLAIN_PAIRS is set,
// one comes after the other, with the same results.
#pragma once

#include <algorithm>

#if !defined(QUOIN_PLAIN_PAIRS) && (defined(__SSE2__) || defined(_M_X64))
#define QUOIN_PAIRS_BY_COMPILER 1
#include <emmintrin.h>
#else
#define QUOIN_PAIRS_BY_COMPILER 0
#endif

/// Every operation works on either by itself. Min and Max are std::min and std::max, also of
/// NaN.
#if QUOIN_PAIRS_BY_COMPILER

class CDoublePair {
 public:
  CDoublePair(double first, double second) : m_pair(_mm_set_pd(second, first)) {}
  double First() const { return _mm_cvtsd_f64(m_pair); }
  double Second() const { return _mm_cvtsd_f64(_mm_unpackhi_pd(m_pair, m_pair)); }

  friend CDoublePair Min(CDoublePair a, CDoublePair b) {
    return CDoublePair(_mm_min_pd(b.m_pair, a.m_pair));
  }
  friend CDoublePair Max(CDoublePair a, CDoublePair b) {
    return CDoublePair(_mm_max_pd(b.m_pair, a.m_pair));
  }
  friend CDoublePair operator+(CDoublePair a, CDoublePair b) {
    return CDoublePair(_mm_add_pd(a.m_pair, b.m_pair));
  }
  friend CDoublePair operator-(CDoublePair a, CDoublePair b) {
    return CDoublePair(_mm_sub_pd(a.m_pair, b.m_pair));
  }

  /// Whether the ranges from `low` to `high` both lie outside of those from `min` to `max`.
  friend bool AreOutside(CDoublePair low, CDoublePair high, CDoublePair min, CDoublePair max) {
    return _mm_movemask_pd(_mm_or_pd(_mm_cmpgt_pd(low.m_pair, max.m_pair),
                                     _mm_cmplt_pd(high.m_pair, min.m_pair))) == kBoth;
  }
  /// Whether both values are at least those of `min` and at most those of `max`.
  friend bool AreWithin(CDoublePair values, CDoublePair min, CDoublePair max) {
    return _mm_movemask_pd(_mm_and_pd(_mm_cmpge_pd(values.m_pair, min.m_pair),
                                      _mm_cmple_pd(values.m_pair, max.m_pair))) == kBoth;
  }

 private:
  static constexpr int kBoth = 3;
  explicit CDoublePair(__m128d pair) : m_pair(pair) {}

  __m128d m_pair;
};

#else

class CDoublePair {
 public:
  CDoublePair(double first, double second) : m_first(first), m_second(second) {}
  double First() const { return m_first; }
  double Second() const { return m_second; }

  friend CDoublePair Min(CDoublePair a, CDoublePair b) {
    return {std::min(a.m_first, b.m_first), std::min(a.m_second, b.m_second)};
  }
  friend CDoublePair Max(CDoublePair a, CDoublePair b) {
    return {std::max(a.m_first, b.m_first), std::max(a.m_second, b.m_second)};
  }
  friend CDoublePair operator+(CDoublePair a, CDoublePair b) {
    return {a.m_first + b.m_first, a.m_second + b.m_second};
  }
  friend CDoublePair operator-(CDoublePair a, CDoublePair b) {
    return {a.m_first - b.m_first, a.m_second - b.m_second};
  }
  friend bool AreOutside(CDoublePair low, CDoublePair high, CDoublePair min, CDoublePair max) {
    return (low.m_first > max.m_first || high.m_first < min.m_first) &&
           (low.m_second > max.m_second || high.m_second < min.m_second);
  }
  friend bool AreWithin(CDoublePair values, CDoublePair min, CDoublePair max) {
    return values.m_first >= min.m_first && values.m_first <= max.m_first &&
           values.m_second >= min.m_second && values.m_second <= max.m_second;
  }

 private:
  double m_first;
  double m_second;
};

#endif

#undef QUOIN_PAIRS_BY_COMPILER
