#include "gemat3d.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

constexpr double kPi = 3.14159265358979323846;

AcGeMatrix3d turn(double angle, const AcGeVector3d& axis, const AcGePoint3d& centre) {
  return AcGeMatrix3d().setToRotation(angle, axis, centre);
}

TEST(Matrix3d, DefaultIsTheIdentity) {
  EXPECT_EQ(AcGeMatrix3d(), AcGeMatrix3d::kIdentity);
  EXPECT_EQ(AcGeMatrix3d() * AcGePoint3d(1, 2, 3), AcGePoint3d(1, 2, 3));
}

TEST(Matrix3d, TranslationMovesPointsAndNotVectors) {
  const AcGeMatrix3d move = AcGeMatrix3d().setToTranslation(AcGeVector3d(10, 20, 30));
  EXPECT_EQ(move * AcGePoint3d(1, 2, 3), AcGePoint3d(11, 22, 33));
  EXPECT_EQ(move * AcGeVector3d(1, 2, 3), AcGeVector3d(1, 2, 3));
  EXPECT_EQ(move.translation(), AcGeVector3d(10, 20, 30));
}

TEST(Matrix3d, ScalingKeepsItsCentre) {
  const AcGeMatrix3d grow = AcGeMatrix3d().setToScaling(80.0, AcGePoint3d(1, 1, 0));
  EXPECT_EQ(grow * AcGePoint3d(1, 1, 0), AcGePoint3d(1, 1, 0));
  EXPECT_EQ(grow * AcGePoint3d(2, 1, 1), AcGePoint3d(81, 1, 80));
  EXPECT_EQ(grow.scale(), 80.0);
}

TEST(Matrix3d, AboutTheOriginScalingHasNoTranslationBits) {
  const AcGeMatrix3d grow = AcGeMatrix3d().setToScaling(0.1, AcGePoint3d::kOrigin);
  EXPECT_EQ((grow * AcGePoint3d(3, 7, 11)).x, 3 * 0.1);
  EXPECT_EQ((grow * AcGePoint3d(3, 7, 11)).y, 7 * 0.1);
}

TEST(Matrix3d, RotationKeepsItsCentreAndTurnsCounterClockwise) {
  const AcGeMatrix3d quarter = turn(kPi / 2, AcGeVector3d::kZAxis, AcGePoint3d(10, 0, 0));
  EXPECT_TRUE((quarter * AcGePoint3d(10, 0, 5)).isEqualTo(AcGePoint3d(10, 0, 5)));
  EXPECT_TRUE((quarter * AcGePoint3d(11, 0, 0)).isEqualTo(AcGePoint3d(10, 1, 0)));
}

TEST(Matrix3d, MirroringTwiceIsTheIdentity) {
  const AcGeMatrix3d mirror =
      AcGeMatrix3d().setToMirroring(AcGePoint3d(3, 0, 0), AcGeVector3d(1, 1, 0));
  EXPECT_EQ(mirror * mirror, AcGeMatrix3d::kIdentity);
  EXPECT_LT(mirror.det(), 0.0);
  EXPECT_TRUE((AcGeMatrix3d().setToMirroring(AcGePoint3d(3, 0, 0), AcGeVector3d(5, 0, 0)) *
               AcGePoint3d(4, 7, 8))
                  .isEqualTo(AcGePoint3d(2, 7, 8)));
}

TEST(Matrix3d, AProductAppliesItsRightHandFactorFirst) {
  const AcGeMatrix3d move = AcGeMatrix3d().setToTranslation(AcGeVector3d(1, 0, 0));
  const AcGeMatrix3d grow = AcGeMatrix3d().setToScaling(2.0);
  EXPECT_EQ((move * grow) * AcGePoint3d(1, 0, 0), AcGePoint3d(3, 0, 0));
  EXPECT_EQ((grow * move) * AcGePoint3d(1, 0, 0), AcGePoint3d(4, 0, 0));
  EXPECT_EQ(AcGeMatrix3d(move).preMultBy(grow), grow * move);
  EXPECT_EQ(AcGeMatrix3d(move).postMultBy(grow), move * grow);
}

TEST(Matrix3d, TheInverseUndoesTheMap) {
  std::mt19937_64 random(11);
  std::uniform_real_distribution<double> number(-5, 5);
  for (int i = 0; i < 500; ++i) {
    AcGeMatrix3d m = turn(number(random), AcGeVector3d(number(random), number(random), 1),
                          AcGePoint3d(number(random), number(random), 0));
    m = m * AcGeMatrix3d().setToScaling(0.5 + std::fabs(number(random)));
    const AcGePoint3d p(number(random), number(random), number(random));
    ASSERT_LT((m.inverse() * (m * p)).distanceTo(p), 1e-12);
  }
}

TEST(Matrix3d, ASingularMatrixIsKnownAndInvertsToTheIdentity) {
  const AcGeMatrix3d flat = AcGeMatrix3d().setToScaling(0.0);
  EXPECT_TRUE(flat.isSingular());
  EXPECT_EQ(flat.inverse(), AcGeMatrix3d::kIdentity);
  EXPECT_FALSE(AcGeMatrix3d().setToScaling(1e-7).isSingular());
  EXPECT_FALSE(AcGeMatrix3d().setToScaling(1e7).isSingular());
  EXPECT_TRUE(AcGeMatrix3d().setToScaling(std::nan("")).isSingular());
}

TEST(Matrix3d, UniformAndOrthogonalAreToldApart) {
  EXPECT_TRUE(turn(1.0, AcGeVector3d(1, 2, 3), AcGePoint3d(4, 5, 6)).isUniScaledOrtho());
  EXPECT_TRUE(AcGeMatrix3d().setToScaling(-3.0).isUniScaledOrtho());
  AcGeMatrix3d stretched;
  stretched.setCoordSystem(AcGePoint3d(), AcGeVector3d(2, 0, 0), AcGeVector3d(0, 1, 0),
                           AcGeVector3d(0, 0, 1));
  EXPECT_FALSE(stretched.isUniScaledOrtho());
  EXPECT_TRUE(stretched.isScaledOrtho());
  AcGeMatrix3d sheared;
  sheared.setCoordSystem(AcGePoint3d(), AcGeVector3d(1, 0, 0), AcGeVector3d(1, 1, 0),
                         AcGeVector3d(0, 0, 1));
  EXPECT_FALSE(sheared.isScaledOrtho());
}

TEST(Matrix3d, PlaneToWorldFollowsTheArbitraryAxisAlgorithm) {
  // For the world's own Z the object system is the world; for -Z, X points the other way.
  EXPECT_EQ(AcGeMatrix3d().setToPlaneToWorld(AcGeVector3d::kZAxis), AcGeMatrix3d::kIdentity);
  const AcGeMatrix3d below = AcGeMatrix3d().setToPlaneToWorld(-AcGeVector3d::kZAxis);
  EXPECT_TRUE((below * AcGePoint3d(1, 2, 3)).isEqualTo(AcGePoint3d(-1, 2, -3)));
  // Beyond 1/64 of the Z axis the world's Z takes the place of its Y in the product.
  const AcGeMatrix3d side = AcGeMatrix3d().setToPlaneToWorld(AcGeVector3d::kXAxis);
  EXPECT_TRUE((side * AcGePoint3d(1, 0, 0)).isEqualTo(AcGePoint3d(0, 1, 0)));
  EXPECT_TRUE((side * AcGePoint3d(0, 1, 0)).isEqualTo(AcGePoint3d(0, 0, 1)));
}

TEST(Matrix3d, WorldToPlaneUndoesPlaneToWorld) {
  const AcGeVector3d normal(1, -2, 0.5);
  EXPECT_EQ(AcGeMatrix3d().setToWorldToPlane(normal) * AcGeMatrix3d().setToPlaneToWorld(normal),
            AcGeMatrix3d::kIdentity);
}

TEST(Matrix3d, AligningTakesOneSystemToTheOther) {
  AcGeMatrix3d m;
  m.setToAlignCoordSys(AcGePoint3d(1, 1, 0), AcGeVector3d::kXAxis, AcGeVector3d::kYAxis,
                       AcGeVector3d::kZAxis, AcGePoint3d(5, 5, 0), AcGeVector3d::kYAxis,
                       -AcGeVector3d::kXAxis, AcGeVector3d::kZAxis);
  EXPECT_TRUE((m * AcGePoint3d(2, 1, 0)).isEqualTo(AcGePoint3d(5, 6, 0)));
  AcGePoint3d origin;
  AcGeVector3d x, y, z;
  m.getCoordSystem(origin, x, y, z);
  EXPECT_EQ(x, AcGeVector3d::kYAxis);
}

TEST(Matrix3d, NewValuesAreTheSameMapsAsTheSetters) {
  const AcGeVector3d v(1, 2, 3);
  const AcGePoint3d c(4, 5, 6);
  EXPECT_EQ(AcGeMatrix3d::translation(v), AcGeMatrix3d().setToTranslation(v));
  EXPECT_EQ(AcGeMatrix3d::rotation(0.5, v, c), turn(0.5, v, c));
  EXPECT_EQ(AcGeMatrix3d::scaling(3.0, c), AcGeMatrix3d().setToScaling(3.0, c));
  EXPECT_EQ(AcGeMatrix3d::planeToWorld(v), AcGeMatrix3d().setToPlaneToWorld(v));
  EXPECT_EQ(AcGeMatrix3d::worldToPlane(v) * AcGeMatrix3d::planeToWorld(v), AcGeMatrix3d::kIdentity);
  EXPECT_TRUE(AcGeMatrix3d::translation(v) != AcGeMatrix3d::kIdentity);
  EXPECT_EQ(AcGeMatrix3d::alignCoordSys(AcGePoint3d(), AcGeVector3d::kXAxis, AcGeVector3d::kYAxis,
                                        AcGeVector3d::kZAxis, c, AcGeVector3d::kXAxis,
                                        AcGeVector3d::kYAxis, AcGeVector3d::kZAxis),
            AcGeMatrix3d::translation(c.asVector()));
}

TEST(Matrix3d, MirroringInAPlaneWithoutANormalIsTheIdentity) {
  EXPECT_EQ(AcGeMatrix3d().setToMirroring(AcGePoint3d(3, 0, 0), AcGeVector3d()),
            AcGeMatrix3d::kIdentity);
}

TEST(Matrix3d, PointReflectionKeepsItsPoint) {
  const AcGeMatrix3d mirror = AcGeMatrix3d().setToMirroring(AcGePoint3d(1, 2, 3));
  EXPECT_EQ(mirror * AcGePoint3d(1, 2, 3), AcGePoint3d(1, 2, 3));
  EXPECT_EQ(mirror * AcGePoint3d(2, 2, 3), AcGePoint3d(0, 2, 3));
}

}  // namespace
