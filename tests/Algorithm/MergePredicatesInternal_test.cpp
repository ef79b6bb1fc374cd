// The merge's questions about two ends against their plain forms, where numbers are close, vanish,
// overflow or are none.
#include "MergePredicatesInternal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

struct Ends {
  AcGePoint3d ptStart;
  AcGePoint3d ptEnd;
};

/// Often equal, often a rounding apart, sometimes far too small or large, or NaN.
class CloseNumbers {
 public:
  explicit CloseNumbers(std::uint64_t seed) : m_random(seed) {}

  double next() {
    switch (m_random() % 12) {
      case 0:
        return 0.0;
      case 1:
        return m_last;
      case 2:
        return std::nextafter(m_last, 1e308);
      case 3:
        return -m_last;
      case 4:
        return 1e-162 * m_unit(m_random);
      case 5:
        return 1e160 * m_unit(m_random);
      case 6:
        return m_random() % 8 == 0 ? std::numeric_limits<double>::infinity() : 3.0;
      case 7:
        return m_random() % 8 == 0 ? std::numeric_limits<double>::quiet_NaN() : 4.0;
      default:
        return m_last = 10.0 * m_unit(m_random);
    }
  }
  AcGePoint3d point() {
    const double x = next();
    const double y = next();
    return {x, y, m_random() % 4 == 0 ? next() : 0.0};
  }
  std::uint64_t pick() { return m_random(); }

 private:
  std::mt19937_64 m_random;
  std::uniform_real_distribution<double> m_unit{-1.0, 1.0};
  double m_last = 1.0;
};

TEST(MergePredicates, TheNearerEndIsTheOneOfTheSmallerDistanceAndOfTwoTheStart) {
  CloseNumbers numbers(97);
  int ties = 0;
  for (int round = 0; round < 300000; ++round) {
    const AcGePoint3d ptMeet = numbers.point();
    Ends seg{numbers.point(), numbers.point()};
    if (round % 3 == 0) {
      // As far from the meeting point, or nearly.
      seg.ptEnd = ptMeet - (seg.ptStart - ptMeet);
      seg.ptEnd.x = std::nextafter(seg.ptEnd.x, round % 2 == 0 ? -1e308 : 1e308);
    }
    const bool isTie = seg.ptStart.distanceTo(ptMeet) == seg.ptEnd.distanceTo(ptMeet) &&
                       (seg.ptStart - ptMeet).lengthSqrd() > (seg.ptEnd - ptMeet).lengthSqrd();
    ties += isTie ? 1 : 0;
    ASSERT_EQ(MergeSegInternal::NearIsStart(seg, ptMeet),
              !(seg.ptStart.distanceTo(ptMeet) > seg.ptEnd.distanceTo(ptMeet)));
  }
  EXPECT_GT(ties, 100) << "roots that are the same, of squares that are not";
}

TEST(MergePredicates, AnEndTouchesByTheSmallerOfTwoDistances) {
  CloseNumbers numbers(98);
  int touching = 0;
  for (int round = 0; round < 300000; ++round) {
    const AcGePoint3d pt = numbers.point();
    const Ends seg{numbers.point(), numbers.point()};
    const double toStart = pt.distanceTo(seg.ptStart);
    const double toEnd = pt.distanceTo(seg.ptEnd);
    for (const double tolerance :
         {toStart, toEnd, std::nextafter(toStart, 1e308), numbers.next()}) {
      const bool touches = tolerance > std::min(toStart, toEnd);
      ASSERT_EQ(MergeSegInternal::Touches(pt, seg, CDistanceLimit(tolerance)), touches)
          << tolerance << " " << toStart << " " << toEnd;
      touching += touches ? 1 : 0;
    }
  }
  EXPECT_GT(touching, 50000);
}

TEST(MergePredicates, DirectionsAreOppositeToWithinADegreeAsTheAngleSays) {
  CloseNumbers numbers(99);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  std::mt19937_64 random(100);
  int opposite = 0;
  for (int round = 0; round < 300000; ++round) {
    const AcGePoint3d pt1 = numbers.point();
    AcGeVector3d vec1(pt1.x, pt1.y, pt1.z);
    AcGeVector3d vec2;
    if (round % 2 == 0) {
      const double turn = 3.14159265358979 * (1.0 + 0.02 * unit(random));
      vec2 = AcGeVector3d(vec1.x * std::cos(turn) - vec1.y * std::sin(turn),
                          vec1.x * std::sin(turn) + vec1.y * std::cos(turn), 0.0);
    } else {
      const AcGePoint3d pt2 = numbers.point();
      vec2 = AcGeVector3d(pt2.x, pt2.y, pt2.z);
    }
    const double turn = vec1.angleTo(vec2, AcGeVector3d::kZAxis) - GeomConst::kPi;
    const double degrees = CGeomDegree(turn, CGeomDegree::eAngleRadian).GetAngleDegree();
    const bool isOpposite = !(std::fabs(degrees) > MergeSegInternal::kMaxBendDegrees);
    ASSERT_EQ(MergeSegInternal::LeadOppositeWays(vec1, vec2), isOpposite)
        << vec1.x << "," << vec1.y << "," << vec1.z << " and " << vec2.x << "," << vec2.y << ","
        << vec2.z << ": " << degrees;
    opposite += isOpposite ? 1 : 0;
  }
  EXPECT_GT(opposite, 30000);
}

}  // namespace
