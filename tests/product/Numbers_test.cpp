#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "host/DataConvert.h"
#include "host/GeomDegree.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(FloatEqual, TheDefaultPrecisionIsNineDecimalsBothEndsIncluded) {
  EXPECT_TRUE(DataConvert::FloatEqual(1e-9, 0.0, -1));
  EXPECT_TRUE(DataConvert::FloatEqual(0.0, 1e-9, -1));
  EXPECT_FALSE(DataConvert::FloatEqual(std::nextafter(1e-9, 1.0), 0.0, -1));
  EXPECT_TRUE(DataConvert::FloatEqual(-1e-9, 0.0, -1));
  EXPECT_TRUE(DataConvert::FloatEqual(5.0, 5.0, -1));
}

TEST(FloatEqual, AnotherPrecisionCountsDecimalPlaces) {
  EXPECT_TRUE(DataConvert::FloatEqual(1.005, 1.0, 2));
  EXPECT_FALSE(DataConvert::FloatEqual(1.02, 1.0, 2));
  EXPECT_TRUE(DataConvert::FloatEqual(1.5, 1.0, 0));
  EXPECT_FALSE(DataConvert::FloatEqual(2.5, 1.0, 0));
  EXPECT_FALSE(DataConvert::FloatEqual(1e-9, 0.0, 12));
}

TEST(FloatEqual, IsSymmetric) {
  for (const double b : {0.0, 1e-9, 2e-9, -1e-9, 1.0, kInfinity}) {
    for (const int decimals : {-1, 0, 3, 9}) {
      EXPECT_EQ(DataConvert::FloatEqual(0.0, b, decimals),
                DataConvert::FloatEqual(b, 0.0, decimals));
    }
  }
}

TEST(FloatEqual, WhatIsNoNumberEqualsNothing) {
  EXPECT_FALSE(DataConvert::FloatEqual(std::nan(""), std::nan(""), -1));
  EXPECT_FALSE(DataConvert::FloatEqual(kInfinity, kInfinity, -1));
  EXPECT_FALSE(DataConvert::FloatEqual(kInfinity, 0.0, -1));
}

TEST(GeomDegree, ConvertsRadiansKeepingSignAndTurns) {
  EXPECT_DOUBLE_EQ(CGeomDegree(std::numbers::pi, CGeomDegree::eAngleRadian).GetAngleDegree(),
                   180.0);
  EXPECT_DOUBLE_EQ(CGeomDegree(-std::numbers::pi / 2.0, 1).GetAngleDegree(), -90.0);
  EXPECT_DOUBLE_EQ(CGeomDegree(3.0 * std::numbers::pi, 1).GetAngleDegree(), 540.0);
  EXPECT_EQ(CGeomDegree(0.0, 1).GetAngleDegree(), 0.0);
  EXPECT_EQ(CGeomDegree(2.5, 1).GetAngleRadian(), 2.5);
}

TEST(GeomDegree, DegreesStayAsTheyAre) {
  EXPECT_EQ(CGeomDegree(-370.0, CGeomDegree::eAngleDegree).GetAngleDegree(), -370.0);
  EXPECT_EQ(CGeomDegree(30.0, 0).GetAngleDegree(), 30.0);
  EXPECT_DOUBLE_EQ(CGeomDegree(180.0, 0).GetAngleRadian(), std::numbers::pi);
}

}  // namespace
