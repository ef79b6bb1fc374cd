// Lines, arcs, points and texts: values, extents and transforms.
#include <gtest/gtest.h>

#include <numbers>
#include <random>

#include "dbmtext.h"
#include "dbpl.h"
#include "support/Drawings.h"

namespace quoin::test {
namespace {

constexpr double kPi = std::numbers::pi;
const AcGeTol kClose = [] {
  AcGeTol tolerance;
  tolerance.setEqualPoint(1e-9);
  tolerance.setEqualVector(1e-9);
  return tolerance;
}();

void expectBox(const AcDbEntity& entity, const AcGePoint3d& low, const AcGePoint3d& high) {
  AcDbExtents box;
  ASSERT_EQ(entity.getGeomExtents(box), Acad::eOk);
  EXPECT_TRUE(box.minPoint().isEqualTo(low, kClose))
      << box.minPoint().x << " " << box.minPoint().y << " " << box.minPoint().z;
  EXPECT_TRUE(box.maxPoint().isEqualTo(high, kClose))
      << box.maxPoint().x << " " << box.maxPoint().y << " " << box.maxPoint().z;
}

// --- the box itself -------------------------------------------------------------------------

TEST(Extents, AFreshBoxIsInvertedAndAddsNothing) {
  AcDbExtents fresh;
  EXPECT_TRUE(fresh.isFresh());
  EXPECT_EQ(fresh.minPoint().x, 1.0e20);
  EXPECT_EQ(fresh.maxPoint().z, -1.0e20);
  AcDbExtents box;
  box.addExt(fresh);
  EXPECT_TRUE(box.isFresh());
  box.addPoint(AcGePoint3d(1.0, -2.0, 3.0));
  box.addExt(fresh);
  EXPECT_TRUE(box.minPoint() == box.maxPoint());
  box.addPoint(AcGePoint3d(0.0, 5.0, 3.0));
  EXPECT_TRUE(box.minPoint() == AcGePoint3d(0.0, -2.0, 3.0));
  EXPECT_TRUE(box.maxPoint() == AcGePoint3d(1.0, 5.0, 3.0));
  EXPECT_EQ(box.set(AcGePoint3d(1.0, 0.0, 0.0), AcGePoint3d(0.0, 0.0, 0.0)), Acad::eInvalidInput);
}

TEST(Extents, ATransformedBoxHoldsItsCorners) {
  AcDbExtents box(AcGePoint3d(0.0, 0.0, 0.0), AcGePoint3d(2.0, 1.0, 0.0));
  box.transformBy(AcGeMatrix3d().setToRotation(kPi / 2.0, AcGeVector3d::kZAxis));
  EXPECT_TRUE(box.minPoint().isEqualTo(AcGePoint3d(-1.0, 0.0, 0.0), kClose));
  EXPECT_TRUE(box.maxPoint().isEqualTo(AcGePoint3d(0.0, 2.0, 0.0), kClose));
}

// --- extents --------------------------------------------------------------------------------

TEST(Extents, OfLinesWithThickness) {
  AcDbLine line(AcGePoint3d(3.0, 4.0, 1.0), AcGePoint3d(1.0, 6.0, 2.0));
  expectBox(line, {1.0, 4.0, 1.0}, {3.0, 6.0, 2.0});
  line.setThickness(-5.0);
  expectBox(line, {1.0, 4.0, -4.0}, {3.0, 6.0, 2.0});
}

TEST(Extents, OfArcsReachAsFarAsTheyBulge) {
  expectBox(AcDbArc({1.0, 1.0, 0.0}, 2.0, 0.0, kPi / 2.0), {1.0, 1.0, 0.0}, {3.0, 3.0, 0.0});
  expectBox(AcDbArc({0.0, 0.0, 0.0}, 2.0, kPi / 4.0, 3.0 * kPi / 4.0),
            {-std::sqrt(2.0), std::sqrt(2.0), 0.0}, {std::sqrt(2.0), 2.0, 0.0});
  expectBox(AcDbArc({0.0, 0.0, 0.0}, 2.0, 7.0 * kPi / 4.0, kPi / 4.0),
            {std::sqrt(2.0), -std::sqrt(2.0), 0.0}, {2.0, std::sqrt(2.0), 0.0});
  expectBox(AcDbArc({0.0, 0.0, 0.0}, 2.0, 1.0, 1.0), {-2.0, -2.0, 0.0}, {2.0, 2.0, 0.0});
}

TEST(Extents, OfACircleInATiltedPlane) {
  const double half = std::sqrt(0.5);
  expectBox(AcDbCircle({1.0, 2.0, 3.0}, AcGeVector3d(0.0, 1.0, 1.0), 2.0),
            {-1.0, 2.0 - 2.0 * half, 3.0 - 2.0 * half}, {3.0, 2.0 + 2.0 * half, 3.0 + 2.0 * half});
}

TEST(Extents, OfPolylinesWithBulgesAndWidths) {
  AcDbPolyline polyline;
  polyline.addVertexAt(0, {0.0, 0.0}, 1.0);  // a half circle below the chord
  polyline.addVertexAt(1, {4.0, 0.0});
  expectBox(polyline, {0.0, -2.0, 0.0}, {4.0, 0.0, 0.0});
  polyline.setBulgeAt(0, -1.0);
  expectBox(polyline, {0.0, 0.0, 0.0}, {4.0, 2.0, 0.0});
  polyline.setBulgeAt(0, 0.0);
  polyline.setConstantWidth(1.0);
  expectBox(polyline, {0.0, -0.5, 0.0}, {4.0, 0.5, 0.0});
}

TEST(Extents, OfThePolylineOfEntitiesAreThoseOfTheLightOne) {
  AcGePoint3dArray points;
  points.append({0.0, 0.0, 2.0});
  points.append({4.0, 0.0, 2.0});
  points.append({4.0, 3.0, 2.0});
  const double bulges[] = {0.3, -0.7, 1.5};
  const AcDb2dPolyline heavy(points, 2.0, true, bulges);
  AcDbPolyline light;
  for (int i = 0; i < 3; ++i) {
    light.addVertexAt(static_cast<unsigned int>(i), {points[i].x, points[i].y}, bulges[i]);
  }
  light.setClosed(true);
  light.setElevation(2.0);
  AcDbExtents box;
  ASSERT_EQ(light.getGeomExtents(box), Acad::eOk);
  expectBox(heavy, box.minPoint(), box.maxPoint());
}

TEST(Extents, OfEmptyPolylinesAreNone) {
  AcDbExtents box;
  EXPECT_EQ(AcDbPolyline().getGeomExtents(box), Acad::eNullExtents);
  EXPECT_EQ(AcDb2dPolyline().getGeomExtents(box), Acad::eNullExtents);
  EXPECT_TRUE(box.isFresh());
}

TEST(Extents, OfTextLieByItsAlignment) {
  AcDbText text({10.0, 10.0, 0.0}, L"ABC", AcDbObjectId::kNull, 2.0);
  AcDbExtents box;
  ASSERT_EQ(text.getGeomExtents(box), Acad::eOk);
  EXPECT_TRUE(box.minPoint().isEqualTo({10.0, 10.0, 0.0}));
  EXPECT_EQ(box.maxPoint().y, 12.0);
  const double width = box.maxPoint().x - box.minPoint().x;
  EXPECT_GT(width, 2.0);
  text.setHorizontalMode(AcDb::kTextRight);
  text.setVerticalMode(AcDb::kTextTop);
  text.setAlignmentPoint({0.0, 0.0, 0.0});
  expectBox(text, {-width, -2.0, 0.0}, {0.0, 0.0, 0.0});
  text.mirrorInX(true);
  expectBox(text, {0.0, -2.0, 0.0}, {width, 0.0, 0.0});
}

TEST(Extents, OfMultilineTextGrowWithItsLines) {
  AcDbMText text;
  text.setContents(L"{\\fArial|b0;one}\\Ptwo two");
  text.setTextHeight(3.0);
  EXPECT_EQ(text.actualHeight(), 3.0 * (1.0 + 5.0 / 3.0));
  text.setAttachment(AcDbMText::kBottomLeft);
  expectBox(text, {0.0, 0.0, 0.0}, {text.actualWidth(), text.actualHeight(), 0.0});
  text.setWidth(6.0);  // the second line breaks at its blank
  EXPECT_EQ(text.actualHeight(), 3.0 * (1.0 + 10.0 / 3.0));
}

TEST(Extents, OfArraysReachToTheirFarCells) {
  const Drawing drawing(smallDrawing(
      "0 INSERT\n5 40\n330 1F\n100 AcDbEntity\n8 0\n100 AcDbMInsertBlock\n2 Door\n10 5.0\n20 0.0\n"
      "30 0.0\n41 2.0\n50 90.0\n70 3\n71 2\n44 10.0\n45 4.0\n"));
  const AcDbObjectPointer<AcDbMInsertBlock> array(drawing.id(0x40));
  ASSERT_EQ(array.openStatus(), Acad::eOk);
  EXPECT_EQ(array->columns(), 3);
  EXPECT_EQ(array->rowSpacing(), 4.0);
  // One door is a line of length 2 upwards; columns go up by 10, rows to the left by 4.
  expectBox(*array, {1.0, 0.0, 0.0}, {5.0, 22.0, 0.0});
}

TEST(Extents, ABlockThatHoldsItselfEnds) {
  std::string text = smallR2000(
      "0 INSERT\n5 40\n330 1F\n100 AcDbEntity\n8 0\n100 AcDbBlockReference\n2 Door\n10 5.0\n"
      "20 0.0\n30 0.0\n");
  const std::string self =
      "0 INSERT\n5 41\n330 30\n100 AcDbEntity\n8 0\n100 AcDbBlockReference\n2 Door\n10 0.0\n"
      "20 7.0\n30 0.0\n";
  text.insert(text.find("0 ENDBLK\n5 33"), self);
  const Drawing drawing(asciiDxf(text));
  const AcDbObjectPointer<AcDbBlockReference> reference(drawing.id(0x40));
  expectBox(*reference, {5.0, 0.0, 0.0}, {6.0, 0.0, 0.0});
}

TEST(Extents, BlocksNestedTwentyFoldAreMeasuredInTime) {
  // Every block holds the one before ten times: 10^20 lines, if each were visited.
  std::string text = smallR2000(
      "0 INSERT\n5 40\n330 1F\n100 AcDbEntity\n8 0\n100 AcDbBlockReference\n2 B20\n10 0.0\n20 0.0\n"
      "30 0.0\n");
  std::string blocks;
  for (int level = 1; level <= 20; ++level) {
    const std::string inner = level == 1 ? "Door" : "B" + std::to_string(level - 1);
    blocks += "0 BLOCK\n8 0\n2 B" + std::to_string(level) + "\n70 0\n10 0.0\n20 0.0\n30 0.0\n";
    for (int i = 0; i < 10; ++i) {
      blocks += "0 INSERT\n8 0\n2 " + inner + "\n10 0.0\n20 " + std::to_string(i) + ".0\n30 0.0\n";
    }
    blocks += "0 ENDBLK\n8 0\n";
  }
  text.insert(text.find("0 ENDSEC\n0 SECTION\n2 ENTITIES"), blocks);
  const Drawing drawing(asciiDxf(text));
  ASSERT_EQ(drawing.status, Acad::eOk) << os::toUtf8(hostx::lastFileError(&drawing.db()));
  const AcDbObjectPointer<AcDbBlockReference> reference(drawing.id(0x40));
  expectBox(*reference, {0.0, 0.0, 0.0}, {1.0, 180.0, 0.0});
}

TEST(Extents, OfABlockAreThoseOfItsEntities) {
  const Drawing drawing(smallDrawing(lineTags("40")));
  const AcDbObjectPointer<AcDbBlockTableRecord> space(
      acdbSymUtil()->blockModelSpaceId(&drawing.db()));
  AcDbExtents box;
  EXPECT_EQ(box.addBlockExt(space.object()), Acad::eOk);
  EXPECT_TRUE(box.maxPoint().isEqualTo({2.0, 0.0, 0.0}));
  EXPECT_EQ(box.addBlockExt(nullptr), Acad::eNullObjectPointer);
  const Drawing empty(smallDrawing());
  const AcDbObjectPointer<AcDbBlockTableRecord> emptySpace(
      acdbSymUtil()->blockModelSpaceId(&empty.db()));
  AcDbExtents fresh;
  EXPECT_EQ(fresh.addBlockExt(emptySpace.object()), Acad::eNullExtents);
  EXPECT_TRUE(fresh.isFresh());
}

// --- transforms -----------------------------------------------------------------------------

TEST(Transform, SingularAndEndlessMatricesAreRefused) {
  AcDbLine line({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
  EXPECT_EQ(line.transformBy(AcGeMatrix3d().setToScaling(0.0)), Acad::eSingularMatrix);
  AcGeMatrix3d endless;
  endless(0, 3) = std::numeric_limits<double>::infinity();
  EXPECT_EQ(line.transformBy(endless), Acad::eInvalidInput);
  EXPECT_TRUE(line.startPoint() == AcGePoint3d(1.0, 2.0, 3.0));
  EXPECT_TRUE(line.endPoint() == AcGePoint3d(4.0, 5.0, 6.0));
}

TEST(Transform, CirclesDoNotBecomeEllipses) {
  AcGeMatrix3d stretch;
  stretch(0, 0) = 2.0;
  AcDbCircle circle({1.0, 0.0, 0.0}, AcGeVector3d::kZAxis, 1.0);
  EXPECT_EQ(circle.transformBy(stretch), Acad::eCannotScaleNonUniformly);
  EXPECT_EQ(circle.center().x, 1.0);
  AcDbPolyline curved;
  curved.addVertexAt(0, {0.0, 0.0}, 1.0);
  curved.addVertexAt(1, {4.0, 0.0});
  EXPECT_EQ(curved.transformBy(stretch), Acad::eCannotScaleNonUniformly);
  AcDbPolyline straight;
  straight.addVertexAt(0, {1.0, 0.0});
  straight.addVertexAt(1, {4.0, 0.0});
  EXPECT_EQ(straight.transformBy(stretch), Acad::eOk);
  AcGePoint2d point;
  straight.getPointAt(1, point);
  EXPECT_EQ(point.x, 8.0);
}

TEST(Transform, AMirroredArcRunsTheOtherWayRound) {
  AcDbArc arc({3.0, 0.0, 0.0}, 1.0, 0.0, kPi / 2.0);
  EXPECT_EQ(arc.transformBy(AcGeMatrix3d().setToMirroring({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0})),
            Acad::eOk);
  EXPECT_TRUE(arc.center().isEqualTo({-3.0, 0.0, 0.0}));
  EXPECT_TRUE(arc.normal() == AcGeVector3d::kZAxis);
  EXPECT_NEAR(arc.startAngle(), kPi / 2.0, 1e-12);
  EXPECT_NEAR(arc.endAngle(), kPi, 1e-12);
}

TEST(Transform, MirroredTextIsWrittenBackwards) {
  AcDbText text({5.0, 1.0, 0.0}, L"AB", AcDbObjectId::kNull, 2.0);
  EXPECT_EQ(text.transformBy(AcGeMatrix3d().setToMirroring({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0})),
            Acad::eOk);
  EXPECT_TRUE(text.isMirroredInX());
  EXPECT_NEAR(std::remainder(text.rotation(), 2.0 * kPi), 0.0, 1e-12);
  EXPECT_TRUE(text.position().isEqualTo({-5.0, 1.0, 0.0}));
}

TEST(Transform, AReferenceStretchesAlongItsAxesOnly) {
  const Drawing drawing(smallDrawing());
  AcDbObjectId door;
  acdbSymUtil()->getBlockId(door, L"Door", &drawing.db());
  AcDbBlockReference reference({1.0, 2.0, 0.0}, door);
  AcGeMatrix3d stretch;
  stretch(0, 0) = 3.0;
  EXPECT_EQ(reference.transformBy(stretch), Acad::eOk);
  EXPECT_EQ(reference.scaleFactors().sx, 3.0);
  EXPECT_EQ(reference.scaleFactors().sy, 1.0);
  EXPECT_EQ(reference.rotation(), 0.0);
  reference.setRotation(0.5);
  EXPECT_EQ(reference.transformBy(stretch), Acad::eCannotScaleNonUniformly);
  EXPECT_EQ(reference.scaleFactors().sx, 3.0);
}

TEST(Transform, WhatCannotBeTransformedAnswersAndStays) {
  const Drawing drawing(
      smallDrawing("0 3DSOLID\n5 40\n330 1F\n100 AcDbEntity\n8 0\n100 AcDbModelerGeometry\n70 1\n"
                   "100 AcDb3dSolid\n350 0\n"));
  const AcDbObjectPointer<AcDbEntity> solid(drawing.id(0x40), AcDb::kForWrite);
  ASSERT_EQ(solid.openStatus(), Acad::eOk);
  EXPECT_EQ(solid->isA(), AcDbEntity::desc());
  EXPECT_EQ(solid->transformBy(AcGeMatrix3d().setToTranslation({1.0, 0.0, 0.0})),
            Acad::eNotApplicable);
  AcDbExtents box;
  EXPECT_EQ(solid->getGeomExtents(box), Acad::eNotApplicable);
  EXPECT_FALSE(hostx::canTransform(drawing.id(0x40)));
  EXPECT_FALSE(hostx::hasExtents(drawing.id(0x40)));
  EXPECT_FALSE(hostx::isModified(&drawing.db()));
}

TEST(Transform, ExtendedDataThatNamesThePlaceComesAlong) {
  const Drawing drawing(smallDrawing(lineTags("40") +
                                     "1001 ACAD\n1010 1.0\n1020 1.0\n1030 0.0\n1011 1.0\n1021 1.0\n"
                                     "1031 0.0\n1041 2.0\n1040 2.0\n"));
  {
    const AcDbObjectPointer<AcDbLine> line(drawing.id(0x40), AcDb::kForWrite);
    EXPECT_EQ(line->transformBy(AcGeMatrix3d().setToScaling(3.0)), Acad::eOk);
  }
  const std::string saved = drawing.saved();
  EXPECT_NE(saved.find("1010\r\n1.0\r\n1020\r\n1.0\r\n1030\r\n0.0\r\n1011\r\n3.0\r\n1021\r\n3.0\r\n"
                       "1031\r\n0.0\r\n1041\r\n6.0\r\n1040\r\n2.0\r\n"),
            std::string::npos);
}

/// Entities of every kind that is transformed exactly, in planes that lie askew too.
std::vector<std::unique_ptr<AcDbEntity>> samples(std::mt19937& random) {
  std::uniform_real_distribution<double> number(-10.0, 10.0);
  const auto point = [&] { return AcGePoint3d(number(random), number(random), number(random)); };
  const auto direction = [&] { return AcGeVector3d(number(random), number(random), 3.0); };
  std::vector<std::unique_ptr<AcDbEntity>> made;
  made.push_back(std::make_unique<AcDbLine>(point(), point()));
  made.push_back(std::make_unique<AcDbPoint>(point()));
  made.push_back(std::make_unique<AcDbFace>(point(), point(), point(), point()));
  made.push_back(std::make_unique<AcDbCircle>(point(), direction(), 2.0));
  auto arc = std::make_unique<AcDbArc>(point(), direction(), 3.0, number(random), number(random));
  arc->setThickness(1.5);
  made.push_back(std::move(arc));
  auto polyline = std::make_unique<AcDbPolyline>();
  for (unsigned int i = 0; i < 5; ++i) {
    polyline->addVertexAt(i, {number(random), number(random)}, number(random) / 5.0);
  }
  polyline->setNormal(direction());
  polyline->setElevation(number(random));
  polyline->setConstantWidth(0.25);
  made.push_back(std::move(polyline));
  AcGePoint3dArray points;
  for (int i = 0; i < 4; ++i) {
    points.append(point());
  }
  const double bulges[] = {0.5, 0.0, -2.0, 0.1};
  auto heavy = std::make_unique<AcDb2dPolyline>(points, number(random), true, bulges);
  heavy->setNormal(direction());
  made.push_back(std::move(heavy));
  made.push_back(std::make_unique<AcDb3dPolyline>(points, true));
  auto text =
      std::make_unique<AcDbText>(point(), L"Wall", AcDbObjectId::kNull, 2.0, number(random));
  text->setNormal(direction());
  text->setOblique(0.2);
  made.push_back(std::move(text));
  auto lines = std::make_unique<AcDbMText>();
  lines->setContents(L"one\\Ptwo");
  lines->setLocation(point());
  lines->setRotation(number(random));
  made.push_back(std::move(lines));
  return made;
}

TEST(Transform, ThereAndBackIsWhereItWas) {
  constexpr unsigned kSeed = 20101;
  std::mt19937 random(kSeed);
  for (int round = 0; round < 50; ++round) {
    const AcGeMatrix3d matrices[] = {
        AcGeMatrix3d().setToRotation(1.0 + round, AcGeVector3d(1.0, round, 2.0), {1.0, 2.0, 3.0}),
        AcGeMatrix3d().setToMirroring({1.0, 0.0, 2.0}, AcGeVector3d(1.0, 2.0 - round, 0.5)),
        AcGeMatrix3d().setToScaling(0.1 + round, {3.0, 1.0, 0.0}),
        AcGeMatrix3d().setToMirroring({1.0, 0.0, 2.0}),
        AcGeMatrix3d().setToTranslation({1e6, -2e6, round * 1.0})};
    for (const auto& entity : samples(random)) {
      AcDbExtents before;
      ASSERT_EQ(entity->getGeomExtents(before), Acad::eOk);
      for (const AcGeMatrix3d& matrix : matrices) {
        ASSERT_EQ(entity->transformBy(matrix), Acad::eOk);
        ASSERT_EQ(entity->transformBy(matrix.inverse()), Acad::eOk);
      }
      AcDbExtents after;
      ASSERT_EQ(entity->getGeomExtents(after), Acad::eOk);
      AcGeTol tolerance;
      tolerance.setEqualPoint(1e-6);
      EXPECT_TRUE(before.minPoint().isEqualTo(after.minPoint(), tolerance))
          << os::toUtf8(entity->isA()->name()) << " seed " << kSeed << " round " << round;
      EXPECT_TRUE(before.maxPoint().isEqualTo(after.maxPoint(), tolerance))
          << os::toUtf8(entity->isA()->name()) << " seed " << kSeed << " round " << round;
    }
  }
}

TEST(Transform, TurningByAQuarterTurnsTheBox) {
  // The box of a turned entity is the turned box, whatever the kind: axes go to axes.
  constexpr unsigned kSeed = 4711;
  std::mt19937 random(kSeed);
  const AcGeMatrix3d turns[] = {
      AcGeMatrix3d().setToRotation(kPi / 2.0, AcGeVector3d::kZAxis, {1.0, 2.0, 0.0}),
      AcGeMatrix3d().setToRotation(kPi / 2.0, AcGeVector3d::kXAxis, {0.0, 1.0, 3.0}),
      AcGeMatrix3d().setToMirroring({4.0, 0.0, 0.0}, AcGeVector3d::kXAxis),
      AcGeMatrix3d().setToMirroring({0.0, 0.0, 1.0}, AcGeVector3d::kZAxis)};
  for (int round = 0; round < 20; ++round) {
    for (const AcGeMatrix3d& turn : turns) {
      for (const auto& entity : samples(random)) {
        AcDbExtents expected;
        ASSERT_EQ(entity->getGeomExtents(expected), Acad::eOk);
        expected.transformBy(turn);
        ASSERT_EQ(entity->transformBy(turn), Acad::eOk);
        AcDbExtents box;
        ASSERT_EQ(entity->getGeomExtents(box), Acad::eOk);
        EXPECT_TRUE(box.minPoint().isEqualTo(expected.minPoint(), kClose) &&
                    box.maxPoint().isEqualTo(expected.maxPoint(), kClose))
            << os::toUtf8(entity->isA()->name()) << " seed " << kSeed << " round " << round;
      }
    }
  }
}

TEST(Transform, ACopyIsTransformedAndTheSourceStays) {
  const AcDbLine line({1.0, 0.0, 0.0}, {2.0, 0.0, 0.0});
  AcDbEntity* copy = nullptr;
  ASSERT_EQ(line.getTransformedCopy(AcGeMatrix3d().setToScaling(2.0), copy), Acad::eOk);
  EXPECT_EQ(AcDbLine::cast(copy)->endPoint().x, 4.0);
  EXPECT_EQ(line.endPoint().x, 2.0);
  delete copy;
  EXPECT_EQ(line.getTransformedCopy(AcGeMatrix3d().setToScaling(0.0), copy), Acad::eSingularMatrix);
  EXPECT_EQ(copy, nullptr);
}

// --- values ---------------------------------------------------------------------------------

TEST(Arcs, ChangeTheirPlaneAroundTheirCentre) {
  AcDbCircle circle({1.0, 2.0, 3.0}, AcGeVector3d::kZAxis, 2.0);
  EXPECT_EQ(circle.setNormal(AcGeVector3d(1.0, 0.0, 0.0)), Acad::eOk);
  EXPECT_TRUE(circle.center().isEqualTo({1.0, 2.0, 3.0}));
  EXPECT_EQ(circle.setNormal(AcGeVector3d()), Acad::eInvalidNormal);
  EXPECT_EQ(circle.setRadius(-1.0), Acad::eInvalidInput);
  EXPECT_TRUE(circle.isClosed());
}

TEST(Arcs, StartAndEndLieOnTheCircle) {
  const AcDbArc arc({1.0, 1.0, 0.0}, 2.0, kPi / 2.0, kPi);
  AcGePoint3d point;
  EXPECT_EQ(arc.getStartPoint(point), Acad::eOk);
  EXPECT_TRUE(point.isEqualTo({1.0, 3.0, 0.0}));
  EXPECT_EQ(arc.getEndPoint(point), Acad::eOk);
  EXPECT_TRUE(point.isEqualTo({-1.0, 1.0, 0.0}));
}

TEST(MultilineText, PlainTextIsWithoutCodes) {
  const auto plain = [](const wchar_t* contents) {
    AcDbMText text;
    text.setContents(contents);
    return taken(text.text());
  };
  EXPECT_EQ(plain(L"a\\Pb"), L"a\nb");
  EXPECT_EQ(plain(L"{\\fArial|b1|i0;bold} \\H2.5x;big"), L"bold big");
  EXPECT_EQ(plain(L"\\S1/2; \\C1;red\\L under\\l"), L"1/2 red under");
  EXPECT_EQ(plain(L"\\\\ \\{x\\} \\~"), L"\\ {x} \u00A0");
  EXPECT_EQ(plain(L"   "), L"   ");
  EXPECT_EQ(plain(L"end\\"), L"end\\");
}

TEST(MultilineText, LongContentsAreWrittenInPieces) {
  const Drawing drawing;
  std::wstring contents;
  for (int i = 0; i < 900; ++i) {
    contents += static_cast<wchar_t>(L'a' + i % 26);
  }
  auto* const text = new AcDbMText;
  EXPECT_EQ(text->setContents(contents.c_str()), Acad::eOk);
  const AcDbObjectId id = append(drawing.db(), text);
  const Drawing again(drawing.saved());
  const AcDbObjectPointer<AcDbMText> read(again.id(id.handle().asUInt64()));
  EXPECT_EQ(taken(read->contents()), contents);
}

TEST(Text, StyleAndStringAreKept) {
  const Drawing drawing;
  AcDbObjectId standard;
  ASSERT_EQ(acdbSymUtil()->getTextStyleId(standard, L"standard", &drawing.db()), Acad::eOk);
  auto* const text = new AcDbText({0.0, 0.0, 0.0}, L"Tür %%d", standard, 2.5);
  EXPECT_EQ(text->setTextStyle(AcDbObjectId::kNull), Acad::eInvalidInput);
  const AcDbObjectId id = append(drawing.db(), text);
  const Drawing again(drawing.saved());
  const AcDbObjectPointer<AcDbText> read(again.id(id.handle().asUInt64()));
  EXPECT_EQ(std::wstring(read->textStringConst()), L"Tür %%d");
  EXPECT_EQ(read->height(), 2.5);
  EXPECT_FALSE(read->textStyle().isNull());
  EXPECT_TRUE(read->isDefaultAlignment());
}

TEST(Attributes, BelongToTheirReference) {
  const Drawing drawing(smallDrawing());
  AcDbObjectId door;
  acdbSymUtil()->getBlockId(door, L"Door", &drawing.db());
  auto* const reference = new AcDbBlockReference({1.0, 2.0, 0.0}, door);
  auto* const attribute = new AcDbAttribute({1.0, 3.0, 0.0}, L"T30", L"FIRE");
  attribute->setHeight(0.5);
  EXPECT_EQ(reference->appendAttribute(attribute), Acad::eOk);
  EXPECT_EQ(reference->appendAttribute(attribute), Acad::eAlreadyInDb);
  const AcDbObjectId id = append(drawing.db(), reference);
  const Drawing again(drawing.saved());
  const AcDbObjectPointer<AcDbBlockReference> read(again.id(id.handle().asUInt64()),
                                                   AcDb::kForWrite);
  ASSERT_EQ(read.openStatus(), Acad::eOk);
  EXPECT_EQ(read->transformBy(AcGeMatrix3d().setToTranslation({10.0, 0.0, 0.0})), Acad::eOk);
  const std::unique_ptr<AcDbObjectIterator> walk(read->attributeIterator());
  ASSERT_FALSE(walk->done());
  const AcDbObjectPointer<AcDbAttribute> found(walk->objectId());
  EXPECT_EQ(std::wstring(found->tagConst()), L"FIRE");
  EXPECT_EQ(taken(found->textString()), L"T30");
  EXPECT_TRUE(found->position().isEqualTo({11.0, 3.0, 0.0}));
  walk->step();
  EXPECT_TRUE(walk->done());
}

}  // namespace
}  // namespace quoin::test
