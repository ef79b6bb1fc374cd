// Pairs of doubles in the form that this compiler gives.
#include "DoublePair.h"

#include "geometry/DoublePairCases.h"

TEST(DoublePair, WorksAsDoublesDo) {
  expectPairsWorkAsDoublesDo<CDoublePair>();
}
