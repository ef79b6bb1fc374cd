// Pairs of doubles one after the other, as for a compiler that has no names for both at once. In a
// namespace of its own beside the other form.
#include <algorithm>

#define QUOIN_PLAIN_PAIRS
namespace {
#include "DoublePair.h"
}  // namespace

#include "geometry/DoublePairCases.h"

TEST(PlainDoublePair, WorksAsDoublesDo) {
  expectPairsWorkAsDoublesDo<CDoublePair>();
}
