// Entities of every kind as the text of their records, and what a test looks at.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

#include "support/Drawings.h"
#include "support/GeometryText.h"

namespace quoin::test {

inline constexpr double kPi = std::numbers::pi;

/// An entityText of a kind, with its subclass; each tag of `tags` on a line.
inline std::string entityText(const std::string& kind, const std::string& subclass,
                              const std::string& tags) {
  return "0 " + kind + "\n5 40\n330 1F\n100 AcDbEntity\n8 0\n100 " + subclass + "\n" + tags;
}

struct Measured {
  explicit Measured(const std::string& entities, const std::string& blocks = {})
      : drawing(blocks.empty() ? smallDrawing(entities) : blocks) {
    const AcDbObjectPointer<AcDbEntity> object(drawing.id(0x40));
    status = object.openStatus() == Acad::eOk ? object->getGeomExtents(box) : object.openStatus();
  }
  Drawing drawing;
  AcDbExtents box;
  Acad::ErrorStatus status = Acad::eOk;
};

inline void expectBox(const Measured& measured, const AcGePoint3d& low, const AcGePoint3d& high,
                      double tolerance = 1e-12) {
  ASSERT_EQ(measured.status, Acad::eOk);
  for (unsigned int axis = 0; axis < 3; ++axis) {
    EXPECT_NEAR(measured.box.minPoint()[axis], low[axis], tolerance) << "low, axis " << axis;
    EXPECT_NEAR(measured.box.maxPoint()[axis], high[axis], tolerance) << "high, axis " << axis;
  }
}

inline std::string number(double value) {
  std::ostringstream text;
  text.precision(17);
  text << value;
  return text.str();
}

inline std::string point(int code, double x, double y, double z = 0.0) {
  return std::to_string(code) + " " + number(x) + "\n" + std::to_string(code + 10) + " " +
         number(y) + "\n" + std::to_string(code + 20) + " " + number(z) + "\n";
}

/// What the block that most tests insert reaches.
inline AcDbExtents boxOfDoor() {
  const Drawing drawing(smallDrawing());
  AcDbObjectId door;
  acdbSymUtil()->getBlockId(door, L"Door", &drawing.db());
  const AcDbObjectPointer<AcDbBlockTableRecord> record(door);
  AcDbExtents box;
  EXPECT_EQ(box.addBlockExt(record.object()), Acad::eOk);
  return box;
}

inline const AcGeTol kClose = [] {
  AcGeTol tolerance;
  tolerance.setEqualPoint(1e-9);
  tolerance.setEqualVector(1e-9);
  return tolerance;
}();

inline void expectBox(const AcDbEntity& entity, const AcGePoint3d& low, const AcGePoint3d& high) {
  AcDbExtents box;
  ASSERT_EQ(entity.getGeomExtents(box), Acad::eOk);
  EXPECT_TRUE(box.minPoint().isEqualTo(low, kClose))
      << box.minPoint().x << " " << box.minPoint().y << " " << box.minPoint().z;
  EXPECT_TRUE(box.maxPoint().isEqualTo(high, kClose))
      << box.maxPoint().x << " " << box.maxPoint().y << " " << box.maxPoint().z;
}

inline void expectNear(const AcGePoint3d& actual, const AcGePoint3d& expected) {
  EXPECT_LT(actual.distanceTo(expected), 1e-12) << text(actual) << " is not " << text(expected);
}

/// The tags of a kind behind its sampleEntity subclass, blanks between code and value, '|' between
/// tags.
inline const std::map<std::string, std::string>& sampleRecords() {
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

inline std::string tagLines(std::string tags) {
  for (char& letter : tags) {
    letter = letter == '|' ? '\n' : letter;
  }
  return tags + "\n";
}

inline std::string sampleEntity(const std::string& kind, const std::string& tags) {
  return "0 " + kind + "\n5 40\n330 1F\n100 AcDbEntity\n8 0\n" + tagLines(tags);
}

struct OneEntity {
  explicit OneEntity(const std::string& kind) : OneEntity(kind, sampleRecords().at(kind)) {}
  OneEntity(const std::string& kind, const std::string& tags)
      : drawing(smallDrawing(sampleEntity(kind, tags))) {
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

inline constexpr std::string_view kHeavyR12 =
    "0 POLYLINE\n8 A\n66 1\n10 0.0\n20 0.0\n30 0.0\n70 1\n"
    "0 VERTEX\n8 A\n10 0.0\n20 0.0\n30 0.0\n"
    "0 VERTEX\n8 A\n10 4.0\n20 0.0\n30 0.0\n42 1.0\n"
    "0 VERTEX\n8 A\n10 4.0\n20 3.0\n30 0.0\n"
    "0 SEQEND\n8 A\n";

/// The small drawing as R2007, which knows every tag that entities share.
inline std::string drawingOfR2007(std::string_view entities) {
  std::string text = smallR2000(entities);
  text.replace(text.find("AC1015"), 6, "AC1021");
  return asciiDxf(text);
}

}  // namespace quoin::test
