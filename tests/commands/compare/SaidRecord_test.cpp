#include "commands/compare/SaidRecord.h"

#include <gtest/gtest.h>

#include <string>

#include "commands/compare/PropertyChanges.h"
#include "commands/compare/Signature.h"

namespace {

using quoin::commands::changeOf;
using quoin::commands::EntityChange;
using quoin::commands::Nearness;
using quoin::commands::RecordReader;
using quoin::commands::SaidRecord;
using quoin::commands::Signature;
using quoin::commands::signatureOf;
using quoin::dxf::RecordStore;

/// Codes and values separated by blanks, as the one entity of a drawing.
SaidRecord said(const std::string& words) {
  std::string file = "0\nSECTION\n2\nENTITIES\n";
  for (const char c : words) {
    file += c == ' ' ? '\n' : c;
  }
  RecordStore store;
  store.load(file + "\n0\nENDSEC\n0\nEOF\n", "test.dxf");
  RecordReader reader(store);
  SaidRecord record;
  reader.read(*store.modelSpace().entities.at(0), record);
  return record;
}

std::string differences(const std::string& before, const std::string& after) {
  const EntityChange change = changeOf(said(before), said(after), Nearness());
  std::string text;
  for (const auto& property : change.properties) {
    text += (text.empty() ? "" : "; ") + property.name + " " + property.before + " -> " +
            property.after;
  }
  if (change.move) {
    text += " moved " + std::to_string(change.move->x) + "," + std::to_string(change.move->y);
  }
  return text;
}

bool hasOneSignature(const std::string& before, const std::string& after) {
  const Signature a = signatureOf(said(before), Nearness(), 1000.0);
  const Signature b = signatureOf(said(after), Nearness(), 1000.0);
  return a.place == b.place && a.properties == b.properties;
}

TEST(SaidRecord, HandlesMarkersOwnersAndOrderSayNothing) {
  const std::string one = "0 LINE 5 2F 8 WALL 62 3 10 0 20 0 30 0 11 5 21 0 31 0";
  const std::string other =
      "0 LINE 5 AA 330 1F 100 AcDbEntity 62 3 8 wall 100 AcDbLine 10 0.0 20 0.0 11 5.0 21 0.0";
  EXPECT_EQ(differences(one, other), "");
  EXPECT_TRUE(hasOneSignature(one, other));
}

TEST(SaidRecord, DefaultsAreAsGoodAsUnsaid) {
  EXPECT_EQ(differences("0 LINE 8 0 10 0 20 0 11 1 21 1",
                        "0 LINE 8 0 6 ByLayer 62 256 370 -1 48 1.0 60 0 39 0.0 10 0 20 0 30 0 "
                        "11 1 21 1 31 0 210 0 220 0 230 1"),
            "");
  EXPECT_EQ(differences("0 INSERT 8 0 2 DOOR 10 0 20 0",
                        "0 INSERT 8 0 66 0 2 door 10 0 20 0 30 0 41 1 42 1 43 1 50 0 70 1 71 1"),
            "");
}

TEST(SaidRecord, PropertiesAreNamedWithBothValues) {
  const std::string line = "0 LINE 8 WALL 10 0 20 0 11 5 21 0";
  EXPECT_EQ(differences(line, "0 LINE 8 DOOR 10 0 20 0 11 5 21 0"), "layer WALL -> DOOR");
  EXPECT_EQ(differences(line, "0 LINE 8 WALL 62 1 10 0 20 0 11 5 21 0"), "colour ByLayer -> 1");
  EXPECT_EQ(differences(line, "0 LINE 8 WALL 62 1 420 16711680 10 0 20 0 11 5 21 0"),
            "colour ByLayer -> #ff0000");
  EXPECT_EQ(differences(line, "0 LINE 8 WALL 6 DASHED 370 25 10 0 20 0 11 5 21 0"),
            "linetype ByLayer -> DASHED; line weight ByLayer -> 0.25 mm");
  EXPECT_EQ(differences(line, "0 LINE 8 WALL 10 0 20 0 11 6 21 0"), "end 5,0 -> 6,0");
  EXPECT_EQ(differences("0 TEXT 8 0 10 0 20 0 40 2.5 1 Old", "0 TEXT 8 0 10 0 20 0 40 2.5 1 New"),
            "text Old -> New");
}

TEST(SaidRecord, GeometryElsewhereIsAMove) {
  EXPECT_EQ(differences("0 LINE 8 WALL 10 0 20 0 11 5 21 0", "0 LINE 8 WALL 10 3 20 4 11 8 21 4"),
            " moved 3.000000,4.000000");
  EXPECT_EQ(differences("0 CIRCLE 8 WALL 10 0 20 0 40 5", "0 CIRCLE 8 DOOR 10 3 20 4 40 5"),
            "layer WALL -> DOOR moved 3.000000,4.000000");
  // Seen from below, the plane's own x runs the other way.
  EXPECT_EQ(differences("0 CIRCLE 8 0 10 0 20 0 40 5 210 0 220 0 230 -1",
                        "0 CIRCLE 8 0 10 3 20 4 40 5 210 0 220 0 230 -1"),
            " moved -3.000000,4.000000");
}

TEST(SaidRecord, DirectionsDoNotMoveAlong) {
  EXPECT_EQ(differences("0 ELLIPSE 8 0 10 0 20 0 11 5 21 0 40 0.5 41 0 42 6",
                        "0 ELLIPSE 8 0 10 7 20 0 11 5 21 0 40 0.5 41 0 42 6"),
            " moved 7.000000,0.000000");
}

TEST(SaidRecord, NumbersAgreeToTheirDigits) {
  EXPECT_TRUE(hasOneSignature("0 LINE 8 0 10 0.1 20 123456.7 11 1000 21 1",
                              "0 LINE 8 0 10 0.10000000000000001 20 123456.70000000000073 "
                              "11 999.99999999999989 21 1"));
  EXPECT_EQ(differences("0 LINE 8 0 10 0.1 20 0 11 1000 21 1",
                        "0 LINE 8 0 10 0.1 20 1e-17 11 999.99999999999989 21 1"),
            "");
  EXPECT_EQ(
      differences("0 LINE 8 0 10 0.1 20 0 11 1000 21 1", "0 LINE 8 0 10 0.1 20 0 11 1000.001 21 1"),
      "end 1000,1 -> 1000.001,1");
}

TEST(SaidRecord, LightPolylinesSayTheirWidthsAndBulgesOrNot) {
  const std::string plain = "0 LWPOLYLINE 8 0 90 2 70 0 10 0 20 0 10 5 20 0";
  EXPECT_EQ(differences(plain,
                        "0 LWPOLYLINE 8 0 90 2 43 0.0 10 0 20 0 40 0 41 0 42 0 91 0 10 5 "
                        "20 0 42 0"),
            "");
  EXPECT_EQ(differences(plain, "0 LWPOLYLINE 8 0 90 2 70 0 10 0 20 0 42 1 10 5 20 0"),
            "vertices 1: bulge 0 -> 1: bulge 1");
  EXPECT_EQ(differences(plain, "0 LWPOLYLINE 8 0 90 3 70 0 10 0 20 0 10 5 20 0 10 5 20 5"),
            "vertices 2 -> 3");
}

TEST(SaidRecord, BytesThatAreNoTagsDoNoHarm) {
  EXPECT_NE(differences("0 LINE 8 0 10 abc 20 0 11 1 21 1", "0 LINE 8 0 10 5 20 0 11 1 21 1"), "");
}

TEST(SaidRecord, ASplineIsTheSameByFitPointsAndByControlPoints) {
  const std::string head = "0 SPLINE 8 0 71 3 ";
  const std::string fitted =
      head + "70 0 74 3 44 1e-10 12 6 22 18 13 6 23 -18 11 0 21 0 11 3 21 1.5 11 6 21 0";
  const std::string knots = "40 0 40 0 40 0 40 0 40 0.5 40 1 40 1 40 1 40 1 ";
  const std::string curve = head + "210 0 220 0 230 1 70 1160 72 9 73 5 74 0 42 1e-9 43 1e-10 " +
                            knots + "10 0 20 0 10 1 20 3 10 3 20 0 10 5 20 3 10 6 20 0";
  EXPECT_EQ(differences(fitted, curve), "");
  EXPECT_EQ(differences(curve, fitted), "");
  EXPECT_EQ(differences(fitted, curve + " 11 0 21 0 11 3 21 1.5 11 6 21 0"), "");
  // Another middle, tangent, knot, degree, layer or fit point is another spline.
  const auto with = [&](const std::string& from, const std::string& to) {
    std::string other = curve;
    other.replace(other.find(from), from.size(), to);
    return differences(fitted, other);
  };
  for (const auto& [from, to] :
       {std::pair("10 3 20 0", "10 3 20 0.001"), std::pair("10 1 20 3", "10 1.001 20 3"),
        std::pair("40 0.5", "40 0.4"), std::pair("71 3", "71 2"),
        std::pair("70 1160", "70 1161")}) {
    EXPECT_NE(with(from, to), "") << to;
  }
  EXPECT_EQ(with("8 0 ", "8 WALL "), "layer 0 -> WALL");
  EXPECT_NE(differences(fitted, curve + " 11 0 21 0 11 3 21 1.6 11 6 21 0"), "");
}

TEST(SaidRecord, PlaneAndToleranceOfASplineFollowFromItsPoints) {
  const std::string head = "0 SPLINE 8 0 71 3 ";
  const std::string points =
      "40 0 40 0 40 0 40 0 40 1 40 1 40 1 40 1 10 0 20 0 10 1 20 3 10 3 20 0 "
      "10 5 20 ";
  EXPECT_EQ(differences(head + "70 0 42 1e-7 " + points + "3",
                        head + "210 0 220 0 230 1 70 8 72 8 73 4 74 0 42 1e-9 " + points + "3"),
            "");
  EXPECT_EQ(differences(head + "70 8 " + points + "3", head + "70 9 " + points + "3"),
            "closed 0 -> 1");
  EXPECT_EQ(differences(head + points + "3", head + points + "4"),
            "control points 4: 5,3 -> 4: 5,4");
}

TEST(SaidRecord, ALeaderIsTheSameWithoutTheHookThatDwgLeavesOut) {
  const auto change = [](const std::string& dwg, const std::string& dxf) {
    SaidRecord before = said("0 LEADER 8 0 75 1 " + dwg);
    before.isFromDwg = true;
    return changeOf(before, said("0 LEADER 8 0 75 1 40 1.8 41 16 " + dxf), Nearness());
  };
  const std::string bare = "76 3 10 0 20 0 10 5 20 9 10 9 20 9";
  EXPECT_TRUE(change(bare, "76 4 10 0 20 0 10 5 20 9 10 7 20 9 10 9 20 9").isNone());
  // A vertex that is no hook, another vertex, and two hooks.
  EXPECT_FALSE(change(bare, "76 4 10 0 20 0 10 5 20 9 10 7 20 8 10 9 20 9").isNone());
  EXPECT_FALSE(change(bare, "76 4 10 0 20 0 10 5 20 8 10 7 20 9 10 9 20 9").isNone());
  EXPECT_FALSE(change(bare, "76 5 10 0 20 0 10 5 20 9 10 6 20 9 10 7 20 9 10 9 20 9").isNone());
  // Two DXF files both have it.
  EXPECT_NE(differences("0 LEADER 8 0 75 1 " + bare,
                        "0 LEADER 8 0 75 1 76 4 10 0 20 0 10 5 20 9 10 7 20 9 10 9 20 9"),
            "");
}

TEST(SaidRecord, DataForNewerVersionsIsNone) {
  const std::string line = "0 LINE 8 WALL 10 0 20 0 11 5 21 0";
  EXPECT_EQ(differences(line, line + " 1001 ACAD 1000 RTTcAl 1070 3 1000 $$NoName$$"), "");
  EXPECT_EQ(differences(line, line + " 1001 ACAD 1000 RTMaterial 1005 0 1001 MINE 1070 1"),
            "extended data  -> ");
  EXPECT_EQ(differences(line + " 1001 ACAD 1000 DSTYLE 1070 1",
                        line + " 1001 ACAD 1000 RTTcAl 1070 3 1000 x 1000 DSTYLE 1070 1"),
            "");
  EXPECT_EQ(differences(line + " 1001 ACAD 1000 DSTYLE 1070 1",
                        line + " 1001 ACAD 1000 RTTcAl 1070 3 1000 x 1000 DSTYLE 1070 2"),
            "extended data  -> ");
  // An application that says nothing but its name is no such data.
  EXPECT_EQ(differences(line, line + " 1001 MINE"), "extended data  -> ");
}

TEST(SaidRecord, TheIndexBesideATrueColorIsNoDifference) {
  const std::string text = "0 MTEXT 8 0 10 0 20 0 40 1 1 A 90 1 63 ";
  EXPECT_EQ(differences(text + "95 421 3568962", text + "97 421 3568962"), "");
  EXPECT_EQ(differences(text + "95", text + "97"), "background 95 -> 97");
}

}  // namespace
