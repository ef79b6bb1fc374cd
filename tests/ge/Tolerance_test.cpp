#include "getol.h"

#include <gtest/gtest.h>

#include "gepnt3d.h"

namespace {

TEST(Tolerance, GlobalToleranceIsOneTenBillionthForPointsAndVectors) {
  EXPECT_EQ(AcGeContext::gTol.equalPoint(), 1e-10);
  EXPECT_EQ(AcGeContext::gTol.equalVector(), 1e-10);
}

TEST(Tolerance, PointAndVectorToleranceAreSetApart) {
  AcGeTol tol;
  tol.setEqualPoint(0.5);
  EXPECT_EQ(tol.equalPoint(), 0.5);
  EXPECT_EQ(tol.equalVector(), 1e-10);
  tol.setEqualVector(0.25);
  EXPECT_EQ(tol.equalPoint(), 0.5);
  EXPECT_EQ(tol.equalVector(), 0.25);
}

TEST(Tolerance, TheGlobalOneIsMeantWhereNoneIsPassed) {
  const AcGeTol before = AcGeContext::gTol;
  AcGeContext::gTol.setEqualPoint(0.5);
  const bool equalWhileLoose = AcGePoint3d(0, 0, 0) == AcGePoint3d(0.4, 0, 0);
  AcGeContext::gTol = before;
  EXPECT_TRUE(equalWhileLoose);
  EXPECT_FALSE(AcGePoint3d(0, 0, 0) == AcGePoint3d(0.4, 0, 0));
}

}  // namespace
