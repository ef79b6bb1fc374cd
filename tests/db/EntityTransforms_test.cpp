// transformBy of every entity kind: laws that hold for all, and what each kind is about.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <limits>
#include <map>
#include <random>

#include "dbsymtb.h"
#include "support/Drawings.h"

namespace {

using quoin::test::Drawing;
using quoin::test::smallDrawing;

/// The tags of a kind behind its entity subclass, blanks between code and value, '|' between
/// tags.
const std::map<std::string, std::string>& records() {
  static const std::map<std::string, std::string> all{
      {"POINT", "100 AcDbPoint|10 1.0|20 2.0|30 3.0"},
      {"LINE", "100 AcDbLine|10 1.0|20 2.0|30 3.0|11 4.0|21 6.0|31 3.0"},
      {"RAY", "100 AcDbRay|10 1.0|20 2.0|30 0.0|11 0.6|21 0.8|31 0.0"},
      {"XLINE", "100 AcDbXline|10 1.0|20 2.0|30 0.0|11 0.6|21 0.8|31 0.0"},
      {"CIRCLE", "100 AcDbCircle|10 1.0|20 2.0|30 0.0|40 3.0"},
      {"ARC", "100 AcDbCircle|10 1.0|20 2.0|30 0.0|40 3.0|100 AcDbArc|50 10.0|51 100.0"},
      {"ELLIPSE",
       "100 AcDbEllipse|10 1.0|20 2.0|30 0.0|11 4.0|21 1.0|31 0.0|210 0.0|220 0.0|230 1.0|40 0.5|"
       "41 0.5|42 2.5"},
      {"SPLINE",
       "100 AcDbSpline|210 0.0|220 0.0|230 1.0|70 8|71 3|72 8|73 4|74 0|42 0.000001|43 0.000001|"
       "40 0.0|40 0.0|40 0.0|40 0.0|40 1.0|40 1.0|40 1.0|40 1.0|10 0.0|20 0.0|30 0.0|"
       "10 1.0|20 5.0|30 0.0|10 4.0|20 -2.0|30 0.0|10 6.0|20 3.0|30 0.0"},
      {"3DFACE",
       "100 AcDbFace|10 0.0|20 0.0|30 1.0|11 5.0|21 0.0|31 1.0|12 5.0|22 4.0|32 1.0|13 0.0|23 4.0|"
       "33 1.0"},
      {"SOLID",
       "100 AcDbTrace|10 0.0|20 0.0|30 0.0|11 5.0|21 0.0|31 0.0|12 0.0|22 4.0|32 0.0|13 5.0|"
       "23 4.0|33 0.0"},
      {"LWPOLYLINE", "100 AcDbPolyline|90 3|70 1|10 0.0|20 0.0|42 0.5|10 4.0|20 0.0|10 2.0|20 3.0"},
      {"TEXT", "100 AcDbText|10 1.0|20 2.0|30 0.0|40 2.5|1 Wall|50 15.0|100 AcDbText"},
      {"MTEXT",
       "100 AcDbMText|10 1.0|20 2.0|30 0.0|40 2.5|41 0.0|71 1|72 5|1 Wall|11 1.0|21 0.0|31 0.0"},
      {"HATCH",
       "100 AcDbHatch|10 0.0|20 0.0|30 2.0|210 0.0|220 0.0|230 1.0|2 ANSI31|70 0|71 0|91 2|"
       "92 3|72 1|73 1|93 2|10 0.0|20 0.0|42 0.5|10 4.0|20 0.0|42 0.5|97 0|"
       "92 1|93 3|72 1|10 9.0|20 9.0|11 12.0|21 9.0|72 2|10 9.0|20 9.0|40 3.0|50 0.0|51 90.0|"
       "73 1|72 1|10 9.0|20 12.0|11 9.0|21 9.0|97 0|"
       "75 0|76 1|52 30.0|41 2.0|77 0|78 1|53 75.0|43 0.5|44 0.25|45 -1.0|46 1.5|79 1|49 3.0|"
       "47 0.1|98 1|10 1.0|20 0.5"},
      {"MLINE",
       "100 AcDbMline|2 STANDARD|40 2.0|70 0|71 1|72 2|73 2|10 0.0|20 0.0|30 0.0|210 0.0|220 0.0|"
       "230 1.0|11 0.0|21 0.0|31 0.0|12 1.0|22 0.0|32 0.0|13 0.0|23 1.0|33 0.0|74 2|41 0.0|41 0.0|"
       "75 0|74 2|41 -2.0|41 0.0|75 0|11 9.0|21 0.0|31 0.0|12 1.0|22 0.0|32 0.0|13 0.0|23 1.0|"
       "33 0.0|74 2|41 0.0|41 0.0|75 0|74 2|41 -2.0|41 0.0|75 0"},
      {"LEADER",
       "100 AcDbLeader|3 Standard|71 0|72 0|73 3|74 1|75 0|40 0.5|41 0.5|76 2|10 0.0|20 0.0|30 0.0|"
       "10 5.0|20 5.0|30 0.0"},
      {"TOLERANCE", "100 AcDbFcf|3 Standard|10 1.0|20 2.0|30 0.0|1 x"},
      {"IMAGE",
       "100 AcDbRasterImage|90 0|10 1.0|20 2.0|30 0.0|11 0.1|21 0.0|31 0.0|12 0.0|22 0.1|32 0.0|"
       "13 64.0|23 48.0|70 3|280 0|71 1|91 2|14 -0.5|24 -0.5|14 63.5|24 47.5"},
      {"WIPEOUT",
       "100 AcDbWipeout|90 0|10 1.0|20 2.0|30 0.0|11 8.0|21 0.0|31 0.0|12 0.0|22 8.0|32 0.0|"
       "13 1.0|23 1.0|70 7|280 1|71 1|91 2|14 -0.5|24 -0.5|14 0.5|24 0.5"},
      {"LIGHT",
       "100 AcDbLight|90 0|1 L|70 1|10 1.0|20 2.0|30 3.0|11 0.0|21 0.0|31 0.0|41 1.0|42 9.0"},
      {"MESH",
       "100 AcDbSubDMesh|71 2|72 0|91 0|92 3|10 0.0|20 0.0|30 0.0|10 4.0|20 0.0|30 0.0|10 0.0|"
       "20 3.0|30 1.0|93 4|90 3|90 0|90 1|90 2|94 0|95 0|90 0"},
      {"HELIX",
       "100 AcDbSpline|70 8|71 3|72 8|73 4|74 0|40 0.0|40 0.0|40 0.0|40 0.0|40 1.0|40 1.0|40 1.0|"
       "40 1.0|10 0.0|20 0.0|30 0.0|10 1.0|20 5.0|30 0.0|10 4.0|20 -2.0|30 0.0|10 6.0|20 3.0|30 "
       "0.0|"
       "100 AcDbHelix|90 29|91 63|10 0.0|20 0.0|30 0.0|11 1.0|21 0.0|31 0.0|12 0.0|22 0.0|32 1.0|"
       "40 1.0|41 3.0|42 0.5|290 1|280 1"},
      {"DIMENSION",
       "100 AcDbDimension|2 *D1|10 5.0|20 9.0|30 0.0|11 2.5|21 9.5|31 0.0|70 32|3 Standard|"
       "100 AcDbAlignedDimension|13 0.0|23 0.0|33 0.0|14 5.0|24 0.0|34 0.0|50 0.0|"
       "100 AcDbRotatedDimension"},
      {"PDFUNDERLAY",
       "100 AcDbUnderlayReference|340 0|10 1.0|20 2.0|30 0.0|41 1.0|42 1.0|43 1.0|50 30.0|280 0|"
       "281 100|282 0"},
      {"SHAPE", "100 AcDbShape|10 1.0|20 2.0|30 0.0|40 2.0|2 TRACK1|50 30.0"},
      {"MULTILEADER",
       "100 AcDbMLeader|270 2|300 CONTEXT_DATA{|40 1.0|10 8.0|20 3.0|30 0.0|41 0.2|140 0.2|145 0.1|"
       "290 1|304 note|11 0.0|21 0.0|31 1.0|340 0|12 8.0|22 3.0|32 0.0|13 1.0|23 0.0|33 0.0|42 0.0|"
       "43 0.0|44 0.0|110 1.0|120 1.0|130 0.0|111 1.0|121 0.0|131 0.0|112 0.0|122 1.0|132 0.0|"
       "297 0|302 LEADER{|290 1|291 1|10 7.0|20 3.0|30 0.0|11 1.0|21 0.0|31 0.0|90 0|40 0.4|"
       "304 LEADER_LINE{|10 1.0|20 1.0|30 0.0|91 0|305 }|271 0|303 }|301 }|340 0|90 0|170 1|41 0.4|"
       "42 0.2|172 2|45 1.0"},
      {"ACAD_TABLE",
       "100 AcDbBlockReference|2 *T1|10 1.0|20 2.0|30 0.0|100 AcDbTable|280 0|11 1.0|21 0.0|31 0.0|"
       "91 1|92 1|141 9.0|142 60.0"}};
  return all;
}

std::string lines(std::string tags) {
  for (char& letter : tags) {
    letter = letter == '|' ? '\n' : letter;
  }
  return tags + "\n";
}

std::string entity(const std::string& kind, const std::string& tags) {
  return "0 " + kind + "\n5 40\n330 1F\n100 AcDbEntity\n8 0\n" + lines(tags);
}

struct One {
  explicit One(const std::string& kind) : One(kind, records().at(kind)) {}
  One(const std::string& kind, const std::string& tags)
      : drawing(smallDrawing(entity(kind, tags))) {
    EXPECT_EQ(drawing.status, Acad::eOk) << kind;
  }
  Acad::ErrorStatus transform(const AcGeMatrix3d& matrix) {
    const AcDbObjectPointer<AcDbEntity> open(drawing.id(0x40), AcDb::kForWrite);
    EXPECT_EQ(open.openStatus(), Acad::eOk);
    return open->transformBy(matrix);
  }
  /// The record as text, a blank for every line's end.
  std::string saved() {
    std::string bytes = drawing.saved();
    for (std::size_t at; (at = bytes.find("\r\n")) != std::string::npos;) {
      bytes.replace(at, 2, " ");
    }
    return bytes;
  }
  /// What the record has under a code, in order.
  std::vector<double> numbers(int code) {
    const std::string bytes = drawing.saved();
    std::vector<double> found;
    std::size_t at = bytes.find("\r\n40\r\n", bytes.find("ENTITIES"));
    const std::size_t end = bytes.find("\r\n  0\r\n", at);
    std::vector<std::string> parts;
    for (at += 6; at < std::min(end, bytes.size());) {
      const std::size_t next = bytes.find("\r\n", at);
      parts.push_back(bytes.substr(at, next - at));
      at = next + 2;
    }
    for (std::size_t i = 0; i + 1 < parts.size(); i += 2) {
      if (std::atoi(parts[i].c_str()) == code) {
        found.push_back(std::atof(parts[i + 1].c_str()));
      }
    }
    return found;
  }
  AcDbExtents extents() {
    AcDbExtents box;
    AcDbObjectPointer<AcDbEntity>(drawing.id(0x40))->getGeomExtents(box);
    return box;
  }
  Drawing drawing;
};

AcGeMatrix3d turnAndMove() {
  AcGeMatrix3d turn;
  turn.setToRotation(0.7, AcGeVector3d(1, 2, 3), AcGePoint3d(4, 5, 6));
  return turn;
}

// --- laws ---------------------------------------------------------------------------------------

TEST(EntityTransforms, TheIdentityLeavesEveryKindByteForByte) {
  for (const auto& [kind, tags] : records()) {
    One one(kind);
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
  for (const auto& [kind, tags] : records()) {
    One one(kind);
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
    One one("LINE", tags);
    const std::string before = one.saved();
    EXPECT_EQ(one.transform(AcGeMatrix3d().setToScaling(10.0)), Acad::eInvalidInput) << tags;
    EXPECT_EQ(one.saved(), before) << tags;
  }
  One circle("CIRCLE", "100 AcDbCircle|10 1.0|20 2.0|30 0.0|40 wide");
  EXPECT_EQ(circle.transform(AcGeMatrix3d().setToScaling(10.0)), Acad::eInvalidInput);
}

TEST(EntityTransforms, OfTheExtentsAreTheExtentsOfTheTransformed) {
  AcGeMatrix3d mirror;
  mirror.setToMirroring(AcGePoint3d(1, 0, 0), AcGeVector3d::kXAxis);
  AcGeMatrix3d below;
  below.setToMirroring(AcGePoint3d(), AcGeVector3d::kZAxis);
  AcGeMatrix3d quarter;
  quarter.setToRotation(std::acos(-1.0) / 2.0, AcGeVector3d::kZAxis, AcGePoint3d(1, 1, 0));
  for (const auto& [kind, tags] : records()) {
    if (kind == "TOLERANCE" || kind == "LEADER" || kind == "ACAD_TABLE") {
      continue;  // sizes come from a style, or from a block that is not there
    }
    for (const AcGeMatrix3d& matrix : {AcGeMatrix3d().setToTranslation({3, -4, 5}),
                                       AcGeMatrix3d().setToScaling(2.5), mirror, below, quarter}) {
      One one(kind);
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

/// A dimension whose block shows a table, whose block shows a dimension, and so on; the last block
/// shows `last`.
std::string nestedOwnBlocks(int depth, const std::string& last) {
  const auto shown = [](int i) {
    const std::string kind = i % 2 == 0 ? "DIMENSION" : "ACAD_TABLE";
    std::string tags = records().at(kind);
    const std::string named = i % 2 == 0 ? "*D1" : "*T1";
    tags.replace(tags.find(named), named.size(), "*D" + std::to_string(i));
    return "0 " + kind + "\n5 " + std::to_string(100000 + i) + "\n100 AcDbEntity\n8 0\n" +
           lines(tags);
  };
  std::string blocks;
  for (int i = 0; i < depth; ++i) {
    blocks += "0 BLOCK\n8 0\n2 *D" + std::to_string(i) + "\n70 1\n10 0.0\n20 0.0\n30 0.0\n" +
              (i + 1 < depth ? shown(i + 1) : last) + "0 ENDBLK\n8 0\n";
  }
  return "0 SECTION\n2 BLOCKS\n" + blocks + "0 ENDSEC\n0 SECTION\n2 ENTITIES\n" + shown(0) +
         "0 ENDSEC\n0 EOF\n";
}

TEST(EntityTransforms, DimensionsAndTablesInEachOtherFollowTenThousandDeep) {
  const std::string line =
      "0 LINE\n5 99999\n100 AcDbEntity\n8 0\n100 AcDbLine\n10 1.0\n20 2.0\n30 0.0\n11 4.0\n"
      "21 6.0\n31 0.0\n";
  const Drawing drawing(quoin::test::asciiDxf(nestedOwnBlocks(10000, line)));
  ASSERT_EQ(drawing.status, Acad::eOk);
  {
    const AcDbObjectPointer<AcDbEntity> open(drawing.id(0x100000), AcDb::kForWrite);
    ASSERT_EQ(open.openStatus(), Acad::eOk);
    EXPECT_EQ(open->transformBy(AcGeMatrix3d().setToScaling(2.0)), Acad::eOk);
  }
  const AcDbObjectPointer<AcDbLine> last(drawing.id(0x99999), AcDb::kForRead);
  ASSERT_EQ(last.openStatus(), Acad::eOk);
  EXPECT_EQ(last->startPoint().distanceTo(last->endPoint()), 10.0);
}

TEST(EntityTransforms, ADimensionWhoseBlockShowsItselfInATableFollowsOnce) {
  std::string tags = records().at("DIMENSION");
  tags.replace(tags.find("*D1"), 3, "*D0");
  const std::string ring = "0 DIMENSION\n5 88888\n100 AcDbEntity\n8 0\n" + lines(tags);
  const Drawing drawing(quoin::test::asciiDxf(nestedOwnBlocks(2, ring)));
  ASSERT_EQ(drawing.status, Acad::eOk);
  const AcDbObjectPointer<AcDbEntity> open(drawing.id(0x100000), AcDb::kForWrite);
  ASSERT_EQ(open.openStatus(), Acad::eOk);
  EXPECT_EQ(open->transformBy(AcGeMatrix3d().setToScaling(2.0)), Acad::eOk);
}

TEST(EntityTransforms, TheInverseTakesEveryKindBack) {
  for (const auto& [kind, tags] : records()) {
    One one(kind);
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
  for (const auto& [kind, tags] : records()) {
    if (kind == "TEXT" || kind == "MTEXT") {
      continue;  // their flags have tests of their own
    }
    One one(kind);
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
  for (const auto& [kind, tags] : records()) {
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
      const Drawing drawing(smallDrawing(entity(kind, odd)));
      const AcDbObjectPointer<AcDbEntity> open(drawing.id(0x40), AcDb::kForWrite);
      if (open.openStatus() == Acad::eOk) {
        const AcGeMatrix3d matrix = round % 2 == 0 ? turnAndMove() : stretch;
        transformed += open->transformBy(matrix) == Acad::eOk ? 1 : 0;
      }
    }
  }
  EXPECT_GT(transformed, 500);
}

// --- single kinds -------------------------------------------------------------------------------

TEST(EntityTransforms, AStretchedEllipseIsAnotherEllipse) {
  One one("ELLIPSE",
          "100 AcDbEllipse|10 0.0|20 0.0|30 0.0|11 2.0|21 2.0|31 0.0|210 0.0|220 0.0|230 1.0|"
          "40 1.0|41 0.0|42 6.283185307179586");
  AcGeMatrix3d stretch;
  stretch.entry[0][0] = 3.0;
  ASSERT_EQ(one.transform(stretch), Acad::eOk);
  const double radius = std::sqrt(8.0);
  EXPECT_NEAR(std::fabs(one.numbers(11)[0]), 3.0 * radius, 1e-12);
  EXPECT_NEAR(one.numbers(21)[0], 0.0, 1e-12);
  EXPECT_NEAR(one.numbers(40)[0], 1.0 / 3.0, 1e-12);
}

TEST(EntityTransforms, WhatHasLengthsWithoutDirectionIsNotStretched) {
  AcGeMatrix3d stretch;
  stretch.entry[0][0] = 3.0;
  for (const char* const kind : {"CIRCLE", "ARC", "HATCH", "MLINE", "TEXT", "DIMENSION", "HELIX",
                                 "MULTILEADER", "SHAPE", "PDFUNDERLAY", "ACAD_TABLE"}) {
    One one(kind);
    const std::string before = one.saved();
    EXPECT_EQ(one.transform(stretch), Acad::eCannotScaleNonUniformly) << kind;
    EXPECT_EQ(one.saved(), before) << kind;
  }
  for (const char* const kind : {"LINE", "RAY", "XLINE", "SPLINE", "SOLID", "3DFACE", "MESH",
                                 "IMAGE", "WIPEOUT", "ELLIPSE"}) {
    EXPECT_EQ(One(kind).transform(stretch), Acad::eOk) << kind;
  }
}

TEST(EntityTransforms, ARayKeepsAUnitDirection) {
  One one("RAY");
  ASSERT_EQ(one.transform(AcGeMatrix3d().setToScaling(80.0)), Acad::eOk);
  EXPECT_EQ(one.numbers(10)[0], 80.0);
  EXPECT_NEAR(one.numbers(11)[0], 0.6, 1e-15);
}

TEST(EntityTransforms, AHatchTurnsItsPatternAndMirrorsItsArcs) {
  One one("HATCH");
  AcGeMatrix3d turn;
  turn.setToRotation(std::acos(-1.0) / 6.0, AcGeVector3d::kZAxis);
  ASSERT_EQ(one.transform(turn), Acad::eOk);
  EXPECT_NEAR(one.numbers(52)[0], 60.0, 1e-12);
  EXPECT_NEAR(one.numbers(53)[0], 105.0, 1e-12);
  EXPECT_NEAR(one.numbers(50)[0], 30.0, 1e-12);
  EXPECT_NEAR(one.numbers(51)[0], 120.0, 1e-12);
  One other("HATCH");
  AcGeMatrix3d mirror;
  mirror.setToMirroring(AcGePoint3d(), AcGeVector3d::kXAxis);
  ASSERT_EQ(other.transform(mirror), Acad::eOk);
  EXPECT_EQ(other.numbers(42), (std::vector<double>{-0.5, -0.5}));
  EXPECT_EQ(other.numbers(73).back(), 0.0);  // the arc runs clockwise now
  ASSERT_EQ(other.transform(AcGeMatrix3d().setToScaling(2.0)), Acad::eOk);
  EXPECT_EQ(other.numbers(41)[0], 4.0);
  EXPECT_EQ(other.numbers(49)[0], 6.0);
}

TEST(EntityTransforms, ADirectionThatStoodForTheXAxisIsWrittenWhenItTurns) {
  for (const char* const kind : {"LEADER", "TOLERANCE"}) {
    One one(kind);
    AcGeMatrix3d turn;
    turn.setToRotation(std::acos(-1.0) / 2.0, AcGeVector3d::kZAxis);
    ASSERT_EQ(one.transform(turn), Acad::eOk);
    const std::vector<double> direction = one.numbers(kind == std::string("LEADER") ? 221 : 21);
    ASSERT_FALSE(direction.empty()) << kind;
    EXPECT_EQ(direction.back(), 1.0) << kind;
  }
}

TEST(EntityTransforms, AStoredPictureGoesWhenItIsNoLongerTrue) {
  const std::string tags = records().at("MULTILEADER");
  const auto withPicture = [&] {
    return "0 MULTILEADER\n5 40\n330 1F\n100 AcDbEntity\n8 0\n92 4\n310 0C030000\n" + lines(tags);
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

TEST(EntityTransforms, TheBlockOfADimensionComesAlong) {
  AcDbDatabase database(false, true);
  ASSERT_EQ(
      database.readDwgFile(quoin::os::fromUtf8(QUOIN_SOURCE_DIR "/examples/flat/flat.dxf").c_str()),
      Acad::eOk);
  int dimensions = 0;
  for (const AcDbObjectId& id : quoin::test::entitiesOf(database)) {
    if (hostx::kindName(id) != L"DIMENSION") {
      continue;
    }
    ++dimensions;
    const AcDbObjectPointer<AcDbEntity> open(id, AcDb::kForWrite);
    AcDbExtents expected;
    ASSERT_EQ(open->getGeomExtents(expected), Acad::eOk);
    const AcGeMatrix3d matrix = AcGeMatrix3d().setToScaling(2.0, AcGePoint3d(100, 0, 0));
    expected.transformBy(matrix);
    ASSERT_EQ(open->transformBy(matrix), Acad::eOk);
    AcDbExtents actual;
    ASSERT_EQ(open->getGeomExtents(actual), Acad::eOk);
    EXPECT_LT(actual.minPoint().distanceTo(expected.minPoint()), 1e-8);
    EXPECT_LT(actual.maxPoint().distanceTo(expected.maxPoint()), 1e-8);
  }
  EXPECT_GT(dimensions, 5);
}

TEST(EntityTransforms, ADimensionWhoseBlockIsDisplacedMovesOnce) {
  One one("DIMENSION",
          "100 AcDbDimension|2 *D1|10 5.0|20 9.0|30 0.0|11 2.5|21 9.5|31 0.0|"
          "12 3.0|22 4.0|32 0.0|70 33|100 AcDbAlignedDimension|13 0.0|23 0.0|33 0.0|"
          "14 5.0|24 0.0|34 0.0");
  ASSERT_EQ(one.transform(AcGeMatrix3d().setToTranslation({100, 0, 0})), Acad::eOk);
  EXPECT_EQ(one.numbers(12)[0], 3.0);  // the block has come along already
  EXPECT_EQ(one.numbers(10)[0], 105.0);
  ASSERT_EQ(one.transform(AcGeMatrix3d().setToScaling(2.0)), Acad::eOk);
  EXPECT_EQ(one.numbers(12)[0], 6.0);
}

TEST(EntityTransforms, ABlockThatTwoDimensionsShareMovesOnceWithBoth) {
  std::ifstream file(QUOIN_SOURCE_DIR "/examples/flat/flat.dxf", std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(file), {}};
  // The second dimension gets the block of the first.
  const auto nameAt = [&](std::size_t from) {
    const std::size_t dimension = bytes.find("\nDIMENSION\r\n", from);
    return bytes.find("\n*D", dimension) + 1;
  };
  const std::size_t first = nameAt(bytes.find("\nENTITIES\r\n"));
  const std::string name = bytes.substr(first, bytes.find('\r', first) - first);
  const std::size_t second = nameAt(first);
  bytes.replace(second, bytes.find('\r', second) - second, name);
  const Drawing drawing(bytes);
  ASSERT_EQ(drawing.status, Acad::eOk);
  std::vector<AcDbObjectId> dimensions;
  for (const AcDbObjectId& id : quoin::test::entitiesOf(drawing.db())) {
    if (hostx::kindName(id) == L"DIMENSION" && dimensions.size() < 2) {
      dimensions.push_back(id);
    }
  }
  ASSERT_EQ(dimensions.size(), 2u);
  for (int times = 1; times <= 2; ++times) {
    AcDbExtents before;
    AcDbObjectPointer<AcDbEntity>(dimensions[0])->getGeomExtents(before);
    for (const AcDbObjectId& id : dimensions) {
      const AcDbObjectPointer<AcDbEntity> open(id, AcDb::kForWrite);
      ASSERT_EQ(open->transformBy(AcGeMatrix3d().setToTranslation({100, 0, 0})), Acad::eOk);
    }
    for (const AcDbObjectId& id : dimensions) {
      AcDbExtents after;
      AcDbObjectPointer<AcDbEntity>(id)->getGeomExtents(after);
      EXPECT_DOUBLE_EQ(after.minPoint().x, before.minPoint().x + 100.0);
    }
  }
}

TEST(EntityTransforms, AMirroredHelixTurnsTheOtherWay) {
  One one("HELIX");
  AcGeMatrix3d mirror;
  mirror.setToMirroring(AcGePoint3d(), AcGeVector3d::kXAxis);
  ASSERT_EQ(one.transform(mirror), Acad::eOk);
  EXPECT_EQ(one.numbers(290)[0], 0.0);
  ASSERT_EQ(one.transform(AcGeMatrix3d().setToScaling(2.0)), Acad::eOk);
  EXPECT_EQ(one.numbers(290)[0], 0.0);
}

TEST(EntityTransforms, ATurnedOrdinateStillMeasuresAlongItsAxis) {
  One one("DIMENSION",
          "100 AcDbDimension|2 *D1|10 0.0|20 0.0|30 0.0|11 2.5|21 9.5|31 0.0|70 102|"
          "100 AcDbOrdinateDimension|13 5.0|23 1.0|33 0.0|14 5.0|24 9.0|34 0.0");
  AcGeMatrix3d turn;
  turn.setToRotation(std::acos(-1.0) / 2.0, AcGeVector3d::kZAxis);
  ASSERT_EQ(one.transform(turn), Acad::eOk);
  ASSERT_EQ(one.numbers(51).size(), 1u);
  EXPECT_NEAR(one.numbers(51)[0], -90.0, 1e-12);
  ASSERT_EQ(one.transform(turn.inverse()), Acad::eOk);
  EXPECT_NEAR(std::remainder(one.numbers(51)[0], 360.0), 0.0, 1e-9);
}

}  // namespace
