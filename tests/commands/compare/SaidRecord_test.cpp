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

}  // namespace
