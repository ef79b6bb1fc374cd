#include "AcadCommonTool.h"

#include <gtest/gtest.h>

#include <cmath>

#include "acedads.h"
#include "adscodes.h"
#include "support/GeometryText.h"
#include "support/RunningHost.h"

namespace {

const double kPi = std::acos(-1.0);

AcGePoint3d lockAt(double degrees, double distance = 100.0) {
  const AcGePoint3d base(10, 20, 3);
  const AcGePoint3d picked(10 + distance * std::cos(degrees * kPi / 180.0),
                           20 + distance * std::sin(degrees * kPi / 180.0), 3);
  const AcGeVector3d locked = CAcadCommonTool::GetAngleLockPnt(base, picked) - base;
  return AcGePoint3d::kOrigin + locked;
}

void expectNear(const AcGePoint3d& actual, const AcGePoint3d& expected) {
  EXPECT_LT(actual.distanceTo(expected), 1e-9)
      << quoin::test::text(actual) << " is not " << quoin::test::text(expected);
}

AcGePoint3d polar(double degrees) {
  return {100 * std::cos(degrees * kPi / 180.0), 100 * std::sin(degrees * kPi / 180.0), 0};
}

TEST(AngleLock, TurnsToTheNearestFifteenDegrees) {
  expectNear(lockAt(7.4), polar(0));
  expectNear(lockAt(7.6), polar(15));
  expectNear(lockAt(100), polar(105));
  expectNear(lockAt(-50), polar(-45));
}

TEST(AngleLock, HalfWayAnglesGoUp) {
  // 7.5 degrees as the lock computes it: the angle whose sum with the half step is one step.
  const AcGePoint3d base;
  const AcGePoint3d picked(100 * std::cos(kPi / 24), 100 * std::sin(kPi / 24), 0);
  const AcGePoint3d locked = CAcadCommonTool::GetAngleLockPnt(base, picked);
  const double angle = std::atan2(picked.y, picked.x);
  const int steps = static_cast<int>((angle + kPi / 24) / (kPi / 12));
  expectNear(locked, polar(15.0 * steps));
  expectNear(lockAt(7.5000001), polar(15));
}

TEST(AngleLock, NearlyAFullTurnIsThePositiveXAxis) {
  expectNear(lockAt(352.5000001), polar(0));
}

TEST(AngleLock, APointOnItselfStaysThere) {
  const AcGePoint3d base(1, 2, 3);
  EXPECT_EQ(quoin::test::text(CAcadCommonTool::GetAngleLockPnt(base, base)), "1,2,3");
}

TEST(AngleLock, HeightCountsInTheDistanceAndIsDropped) {
  const AcGePoint3d base(0, 0, 7);
  EXPECT_EQ(quoin::test::text(CAcadCommonTool::GetAngleLockPnt(base, AcGePoint3d(3, 0, 11))),
            "5,0,7");
}

TEST(AngleLock, MultiplesOfARightAngleAreExact) {
  EXPECT_EQ(quoin::test::text(CAcadCommonTool::GetAngleLockPnt({}, AcGePoint3d(1e-3, 50, 0)))
                .substr(0, 2),
            "0,");
}

TEST(View, TheScaleIsTheViewsHeightOverTheScreens) {
  quoin::test::RunningHost host;
  resbuf size = {};
  ASSERT_EQ(acedGetVar(L"SCREENSIZE", &size), RTNORM);
  resbuf height = {};
  ASSERT_EQ(acedGetVar(L"VIEWSIZE", &height), RTNORM);
  EXPECT_EQ(CAcadCommonTool::GetCurScale(), height.resval.rreal / size.resval.rpoint[Y]);
}

TEST(View, APlainTopViewIsOneOnlyInStandardDisplay) {
  quoin::test::RunningHost host;
  EXPECT_TRUE(CAcadCommonTool::GetWcsViewDir().isCodirectionalTo(AcGeVector3d::kZAxis));
  EXPECT_TRUE(CAcadCommonTool::IsZAxisViewPort(kAcGiStandardDisplay));
  EXPECT_FALSE(CAcadCommonTool::IsZAxisViewPort(kAcGiHideOrShadeCommand));
  EXPECT_FALSE(CAcadCommonTool::IsZAxisViewPort(kAcGiShadedDisplay));
}

}  // namespace
