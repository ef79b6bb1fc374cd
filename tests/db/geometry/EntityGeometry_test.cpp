// Measuring and transforming: laws that hold for entities of all kinds.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <random>

#include "dbmtext.h"
#include "dbpl.h"
#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

AcGeMatrix3d turnAndMove() {
  AcGeMatrix3d turn;
  turn.setToRotation(0.7, AcGeVector3d(1, 2, 3), AcGePoint3d(4, 5, 6));
  return turn;
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

TEST(Transform, SingularAndEndlessMatricesAreRefused) {
  AcDbLine line({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
  EXPECT_EQ(line.transformBy(AcGeMatrix3d().setToScaling(0.0)), Acad::eSingularMatrix);
  AcGeMatrix3d endless;
  endless(0, 3) = std::numeric_limits<double>::infinity();
  EXPECT_EQ(line.transformBy(endless), Acad::eInvalidInput);
  EXPECT_TRUE(line.startPoint() == AcGePoint3d(1.0, 2.0, 3.0));
  EXPECT_TRUE(line.endPoint() == AcGePoint3d(4.0, 5.0, 6.0));
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

TEST(EntityExtents, OddRecordsAnswerAndDoNoHarm) {
  const char* const kinds[] = {"SOLID",       "TRACE",
                               "ELLIPSE",     "SPLINE",
                               "HELIX",       "HATCH",
                               "MLINE",       "MPOLYGON",
                               "VIEWPORT",    "IMAGE",
                               "WIPEOUT",     "MESH",
                               "OLE2FRAME",   "PDFUNDERLAY",
                               "LIGHT",       "SECTIONOBJECT",
                               "LEADER",      "TOLERANCE",
                               "MULTILEADER", "DIMENSION",
                               "ACAD_TABLE",  "ACAD_PROXY_ENTITY"};
  const int codes[] = {10, 20, 30, 11, 21, 31, 12, 13, 40, 41, 42,  50,  51,  70,  71,  72, 73,
                       74, 75, 76, 91, 92, 93, 94, 95, 96, 97, 140, 170, 171, 210, 290, 296};
  const char* const values[] = {"0", "1", "-1", "2", "3", "4", "1e300", "-7", "32767", "1e-300"};
  std::mt19937 random(20261123);
  for (int round = 0; round < 600; ++round) {
    std::string tags;
    for (std::size_t i = random() % 60; i > 0; --i) {
      const int code = codes[random() % std::size(codes)];
      const bool isReal = code < 60 || (code >= 140 && code < 150) || code >= 210;
      const char* value = values[random() % std::size(values)];
      const bool isExponent = std::string(value).find('e') != std::string::npos;
      value = !isReal && isExponent ? "5" : value;
      tags += std::to_string(code) + " " + (code >= 280 ? "1" : value) + "\n";
      if (random() % 12 == 0) {
        const char* const braces[] = {"300 CONTEXT_DATA{\n",
                                      "302 LEADER{\n",
                                      "304 LEADER_LINE{\n",
                                      "305 }\n",
                                      "303 }\n",
                                      "301 }\n",
                                      "310 0011\n",
                                      "2 Door\n"};
        tags += braces[random() % std::size(braces)];
      }
    }
    const char* const kind = kinds[random() % std::size(kinds)];
    const Measured measured(std::string("0 ") + kind + "\n5 40\n330 1F\n8 0\n" + tags);
    const bool isFinite = measured.box.minPoint().x <= measured.box.maxPoint().x;
    EXPECT_TRUE(measured.status != Acad::eOk || isFinite) << kind << "\n" << tags;
  }
}

TEST(EntityTransforms, TheIdentityLeavesEveryKindByteForByte) {
  for (const auto& [kind, tags] : sampleRecords()) {
    OneEntity one(kind);
    const std::string before = one.saved();
    EXPECT_EQ(one.transform(AcGeMatrix3d::kIdentity), Acad::eOk) << kind;
    EXPECT_EQ(one.saved(), before) << kind;
  }
}

TEST(EntityTransforms, EveryKindRejectsSingularMatricesAndStays) {
  AcGeMatrix3d flat;
  flat.entry[2][2] = 0.0;
  AcGeMatrix3d infinite;
  infinite.entry[0][3] = std::numeric_limits<double>::infinity();
  for (const auto& [kind, tags] : sampleRecords()) {
    OneEntity one(kind);
    const std::string before = one.saved();
    EXPECT_EQ(one.transform(AcGeMatrix3d().setToScaling(0.0)), Acad::eSingularMatrix) << kind;
    EXPECT_EQ(one.transform(flat), Acad::eSingularMatrix) << kind;
    EXPECT_EQ(one.transform(infinite), Acad::eInvalidInput) << kind;
    EXPECT_EQ(one.saved(), before) << kind;
    EXPECT_TRUE(hostx::canTransform(one.drawing.id(0x40))) << kind;
  }
}

TEST(EntityTransforms, WithANumberThatCannotBeReadNothingOfItMoves) {
  for (const std::string tags : {"100 AcDbLine|10 north|20 2.0|30 3.0|11 4.0|21 6.0|31 3.0",
                                 "100 AcDbLine|10 1.0|20 2.0|30 3.0|11 4.0|21 1e999|31 3.0",
                                 "100 AcDbLine|10 1e308|20 2.0|30 3.0|11 4.0|21 6.0|31 3.0"}) {
    OneEntity one("LINE", tags);
    const std::string before = one.saved();
    EXPECT_EQ(one.transform(AcGeMatrix3d().setToScaling(10.0)), Acad::eInvalidInput) << tags;
    EXPECT_EQ(one.saved(), before) << tags;
  }
  OneEntity circle("CIRCLE", "100 AcDbCircle|10 1.0|20 2.0|30 0.0|40 wide");
  EXPECT_EQ(circle.transform(AcGeMatrix3d().setToScaling(10.0)), Acad::eInvalidInput);
}

TEST(EntityTransforms, OfTheExtentsAreTheExtentsOfTheTransformed) {
  AcGeMatrix3d mirror;
  mirror.setToMirroring(AcGePoint3d(1, 0, 0), AcGeVector3d::kXAxis);
  AcGeMatrix3d below;
  below.setToMirroring(AcGePoint3d(), AcGeVector3d::kZAxis);
  AcGeMatrix3d quarter;
  quarter.setToRotation(std::acos(-1.0) / 2.0, AcGeVector3d::kZAxis, AcGePoint3d(1, 1, 0));
  for (const auto& [kind, tags] : sampleRecords()) {
    if (kind == "TOLERANCE" || kind == "LEADER" || kind == "ACAD_TABLE") {
      continue;  // sizes come from a style, or from a block that is not there
    }
    for (const AcGeMatrix3d& matrix : {AcGeMatrix3d().setToTranslation({3, -4, 5}),
                                       AcGeMatrix3d().setToScaling(2.5), mirror, below, quarter}) {
      OneEntity one(kind);
      AcDbExtents expected = one.extents();
      if (expected.isFresh()) {
        continue;
      }
      expected.transformBy(matrix);
      ASSERT_EQ(one.transform(matrix), Acad::eOk) << kind;
      const AcDbExtents actual = one.extents();
      EXPECT_LT(actual.minPoint().distanceTo(expected.minPoint()), 1e-8) << kind;
      EXPECT_LT(actual.maxPoint().distanceTo(expected.maxPoint()), 1e-8) << kind;
    }
  }
}

TEST(EntityTransforms, TheInverseTakesEveryKindBack) {
  for (const auto& [kind, tags] : sampleRecords()) {
    OneEntity one(kind);
    const AcDbExtents before = one.extents();
    ASSERT_EQ(one.transform(turnAndMove()), Acad::eOk) << kind;
    ASSERT_EQ(one.transform(turnAndMove().inverse()), Acad::eOk) << kind;
    const AcDbExtents after = one.extents();
    if (!before.isFresh()) {
      EXPECT_LT(after.minPoint().distanceTo(before.minPoint()), 1e-8) << kind;
      EXPECT_LT(after.maxPoint().distanceTo(before.maxPoint()), 1e-8) << kind;
    }
  }
}

TEST(EntityTransforms, MirroredTwiceNumbersAreWhatTheyWere) {
  AcGeMatrix3d mirror;
  mirror.setToMirroring(AcGePoint3d(), AcGeVector3d::kXAxis);
  for (const auto& [kind, tags] : sampleRecords()) {
    if (kind == "TEXT" || kind == "MTEXT") {
      continue;  // their flags have tests of their own
    }
    OneEntity one(kind);
    std::map<int, std::vector<double>> before;
    for (const int code : {10, 20, 11, 21, 40, 41, 42, 45, 46, 50, 51, 53}) {
      before[code] = one.numbers(code);
    }
    ASSERT_EQ(one.transform(mirror), Acad::eOk) << kind;
    ASSERT_EQ(one.transform(mirror), Acad::eOk) << kind;
    for (const auto& [code, values] : before) {
      const std::vector<double> after = one.numbers(code);
      ASSERT_GE(after.size(), values.size()) << kind << " " << code;
      for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_NEAR(std::remainder(after[i] - values[i], code >= 50 ? 360.0 : 1e300), 0.0, 1e-9)
            << kind << " " << code;
      }
    }
  }
}

TEST(EntityTransforms, OddRecordsAnswerAndNeverCrash) {
  std::mt19937_64 random(7);
  AcGeMatrix3d stretch;
  stretch.entry[0][0] = 2.0;
  int transformed = 0;
  for (const auto& [kind, tags] : sampleRecords()) {
    std::vector<std::string> parts;
    for (std::size_t at = 0; at <= tags.size();) {
      const std::size_t next = std::min(tags.find('|', at), tags.size());
      parts.push_back(tags.substr(at, next - at));
      at = next + 1;
    }
    for (int round = 0; round < 60; ++round) {
      std::string odd;
      for (const std::string& part : parts) {
        const bool isDropped = random() % 8 == 0;
        const bool isDoubled = random() % 12 == 0;
        for (int i = isDropped ? 0 : isDoubled ? 2 : 1; i > 0; --i) {
          odd += (odd.empty() ? "" : "|") + part;
        }
      }
      const Drawing drawing(smallDrawing(sampleEntity(kind, odd)));
      const AcDbObjectPointer<AcDbEntity> open(drawing.id(0x40), AcDb::kForWrite);
      if (open.openStatus() == Acad::eOk) {
        const AcGeMatrix3d matrix = round % 2 == 0 ? turnAndMove() : stretch;
        transformed += open->transformBy(matrix) == Acad::eOk ? 1 : 0;
      }
    }
  }
  EXPECT_GT(transformed, 500);
}

TEST(EntityTransforms, WhatHasLengthsWithoutDirectionIsNotStretched) {
  AcGeMatrix3d stretch;
  stretch.entry[0][0] = 3.0;
  for (const char* const kind : {"CIRCLE", "ARC", "HATCH", "MLINE", "TEXT", "DIMENSION", "HELIX",
                                 "MULTILEADER", "SHAPE", "PDFUNDERLAY", "ACAD_TABLE"}) {
    OneEntity one(kind);
    const std::string before = one.saved();
    EXPECT_EQ(one.transform(stretch), Acad::eCannotScaleNonUniformly) << kind;
    EXPECT_EQ(one.saved(), before) << kind;
  }
  for (const char* const kind : {"LINE", "RAY", "XLINE", "SPLINE", "SOLID", "3DFACE", "MESH",
                                 "IMAGE", "WIPEOUT", "ELLIPSE"}) {
    EXPECT_EQ(OneEntity(kind).transform(stretch), Acad::eOk) << kind;
  }
}

TEST(EntityTransforms, AStoredPictureGoesWhenItIsNoLongerTrue) {
  const std::string tags = sampleRecords().at("MULTILEADER");
  const auto withPicture = [&] {
    return "0 MULTILEADER\n5 40\n330 1F\n100 AcDbEntity\n8 0\n92 4\n310 0C030000\n" +
           tagLines(tags);
  };
  const Drawing drawing(smallDrawing(withPicture()));
  ASSERT_EQ(drawing.status, Acad::eOk);
  {
    const AcDbObjectPointer<AcDbEntity> open(drawing.id(0x40), AcDb::kForWrite);
    ASSERT_EQ(open->transformBy(AcGeMatrix3d::kIdentity), Acad::eOk);
  }
  EXPECT_NE(drawing.saved("1.dxf").find("0C030000"), std::string::npos);
  {
    const AcDbObjectPointer<AcDbEntity> open(drawing.id(0x40), AcDb::kForWrite);
    ASSERT_EQ(open->transformBy(AcGeMatrix3d().setToTranslation({1, 0, 0})), Acad::eOk);
  }
  EXPECT_EQ(drawing.saved("2.dxf").find("0C030000"), std::string::npos);
}

}  // namespace
}  // namespace quoin::test
