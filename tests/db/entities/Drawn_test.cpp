// What each kind shows: a record in, primitives out. In blocks the same is seen through their
// transformation, mirrored and scaled unevenly.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <set>
#include <string>
#include <vector>

#include "support/DrawnText.h"

namespace quoin::test {
namespace {

/// A small drawing with header variables and more blocks, tables and objects.
std::string drawingWith(const std::string& entities, const std::string& header = {},
                        const std::string& objects = {}) {
  std::string text = smallR2000(entities);
  const std::string units = "9 $INSUNITS\n";
  text.insert(text.find(units), header);
  const std::string end = "0 ENDSEC\n0 SECTION\n2 THUMBNAILIMAGE";
  text.insert(text.find(end), objects);
  return asciiDxf(text);
}

std::string shown(const std::string& entities, const std::string& header = {},
                  const std::string& objects = {}, const hostx::DrawOptions& options = {}) {
  return DrawnSpace(Drawing(drawingWith(entities, header, objects)), options).sink.all();
}

/// An entity without handles that can stand anywhere.
std::string loose(const std::string& kind, const std::string& subclass, const std::string& tags) {
  return "0 " + kind + "\n8 0\n100 AcDbEntity\n8 0\n100 " + subclass + "\n" + tags;
}

/// What entities show as the contents of the block Door, which is referred to with these tags.
std::string shownInBlock(const std::string& entities, const std::string& reference) {
  std::string text = smallR2000(
      "0 INSERT\n5 41\n330 1F\n100 AcDbEntity\n8 0\n100 "
      "AcDbBlockReference\n2 Door\n10 0\n20 0\n30 0\n" +
      reference);
  const std::size_t first = text.find("0 LINE\n5 32");
  const std::size_t end = text.find("0 ENDBLK\n5 33");
  text.replace(first, end - first, entities);
  return DrawnSpace(Drawing(asciiDxf(text))).sink.all();
}

const std::string kMirrored = "41 -1\n42 1\n43 1\n";
const std::string kUneven = "41 2\n42 1\n43 1\n";

std::string circle() {
  return loose("CIRCLE", "AcDbCircle", point(10, 1, 2) + "40 3\n");
}
std::string arc() {
  return loose("CIRCLE", "AcDbCircle", point(10, 0, 0) + "40 1\n100 AcDbArc\n50 0\n51 90\n")
      .replace(2, 6, "ARC");
}

TEST(Drawn, CirclesAndArcs) {
  EXPECT_EQ(shown(circle()), "stroke 4,2 -> arc(1,2 by 360) 4,2 close\n");
  EXPECT_EQ(shown(arc()), "stroke 1,0 -> arc(0,0 by 90) 0,1\n");
  EXPECT_EQ(shownInBlock(arc(), kMirrored), "stroke -1,0 -> arc(0,0 by -90) 0,1\n");
  EXPECT_EQ(shownInBlock(arc(), kUneven), "stroke 2,0 -> arc(0,0 by 90) 0,1\n");
  // Seen from behind.
  EXPECT_EQ(shown(loose("CIRCLE", "AcDbCircle", point(10, 1, 2) + "40 3\n" + point(210, 0, 0, -1))),
            "stroke -4,2 -> arc(-1,2 by -360) -4,2 close\n");
}

TEST(Drawn, EllipsesAreExact) {
  const std::string half =
      loose("ELLIPSE", "AcDbEllipse",
            point(10, 1, 1) + point(11, 4, 0) + "40 0.5\n41 0\n42 " + number(kPi) + "\n");
  EXPECT_EQ(shown(half), "stroke 5,1 -> arc(1,1 by 180) -3,1\n");
  EXPECT_EQ(shownInBlock(half, kUneven), "stroke 10,1 -> arc(2,1 by 180) -6,1\n");
}

TEST(Drawn, PolylinesJoinTheirSegments) {
  const std::string bent =
      loose("LWPOLYLINE", "AcDbPolyline", "90 3\n70 1\n10 0\n20 0\n10 2\n20 0\n42 1\n10 2\n20 2\n");
  EXPECT_EQ(shown(bent), "stroke 0,0 -> 2,0 -> arc(2,1 by 180) 2,2 -> 0,0 close\n");
  EXPECT_EQ(shownInBlock(bent, kMirrored),
            "stroke 0,0 -> -2,0 -> arc(-2,1 by -180) -2,2 -> 0,0 close\n");
  EXPECT_EQ(shown(loose("LWPOLYLINE", "AcDbPolyline", "90 1\n70 0\n10 3\n20 4\n")), "stroke 3,4\n");
}

TEST(Drawn, WidthsOfPolylinesAreAreas) {
  // A corner is mitred, a taper ends in its widths.
  EXPECT_EQ(shown(loose("LWPOLYLINE", "AcDbPolyline",
                        "90 3\n70 0\n43 2\n10 0\n20 0\n10 10\n20 0\n10 10\n20 10\n")),
            "fill 0,-1 -> 11,-1 -> 9,1 -> 0,1 close\n"
            "fill 11,-1 -> 11,10 -> 9,10 -> 9,1 close\n");
  EXPECT_EQ(shown(loose("LWPOLYLINE", "AcDbPolyline",
                        "90 2\n70 0\n10 0\n20 0\n40 2\n41 0\n10 10\n20 0\n")),
            "fill 0,-1 -> 10,0 -> 10,0 -> 0,1 close\n");
  EXPECT_EQ(shown(loose("LWPOLYLINE", "AcDbPolyline",
                        "90 2\n70 0\n43 1\n10 0\n20 0\n42 1\n10 2\n20 0\n")),
            "fill -0.5,0 -> arc(1,0 by 180) 2.5,0 -> 1.5,0 -> arc(1,0 by -180) 0.5,0 close\n");
  EXPECT_EQ(shown(loose("LWPOLYLINE", "AcDbPolyline", "90 2\n43 2\n10 0\n20 0\n10 9\n20 0\n"),
                  "9 $FILLMODE\n70 0\n"),
            "stroke 0,-1 -> 9,-1 -> 9,1 -> 0,1 close\n");
}

std::string heavy(int flags, const std::string& vertices, const std::string& more = {}) {
  return "0 POLYLINE\n8 0\n66 1\n70 " + std::to_string(flags) + "\n" + more + vertices +
         "0 SEQEND\n8 0\n";
}
std::string vertex(double x, double y, double z = 0.0, const std::string& more = {}) {
  return "0 VERTEX\n8 0\n" + point(10, x, y, z) + more;
}

/// Drawings before R13, whose records have no subclasses.
std::string shownOld(const std::string& entities) {
  return DrawnSpace(Drawing(asciiDxf("0 SECTION\n2 HEADER\n9 $ACADVER\n1 AC1009\n0 ENDSEC\n"
                                     "0 SECTION\n2 ENTITIES\n" +
                                     entities + "0 ENDSEC\n0 EOF\n")))
      .sink.all();
}

TEST(Drawn, HeavyPolylinesOfEverySort) {
  EXPECT_EQ(shownOld(heavy(1, vertex(0, 0) + vertex(2, 0) + vertex(2, 2, 0, "70 16\n") +
                                  vertex(1, 1, 0, "70 8\n"))),
            "stroke 0,0 -> 2,0 -> 1,1 -> 0,0 close\n");
  EXPECT_EQ(shownOld(heavy(8, vertex(0, 0, 1, "70 32\n") + vertex(2, 0, 5, "70 32\n"))),
            "stroke 0,0,1 -> 2,0,5\n");
  EXPECT_EQ(shownOld(heavy(16, vertex(0, 0) + vertex(1, 0) + vertex(0, 1) + vertex(1, 1),
                           "71 2\n72 2\n")),
            "stroke 0,0 -> 1,0\nstroke 0,1 -> 1,1\nstroke 0,0 -> 0,1\nstroke 1,0 -> 1,1\n");
  // A face whose second edge is hidden.
  EXPECT_EQ(shownOld(heavy(64, vertex(0, 0, 0, "70 192\n") + vertex(1, 0, 0, "70 192\n") +
                                   vertex(1, 1, 0, "70 192\n") +
                                   "0 VERTEX\n8 0\n10 0\n20 0\n30 0\n70 128\n71 1\n72 -2\n73 3\n")),
            "stroke 0,0 -> 1,0\nstroke 1,1 -> 0,0\n");
}

TEST(Drawn, SplinesAreAsFineAsNeeded) {
  const std::string curve =
      loose("SPLINE", "AcDbSpline",
            "70 8\n71 3\n72 8\n73 4\n40 0\n40 0\n40 0\n40 0\n40 1\n40 1\n40 1\n40 1\n" +
                point(10, 0, 0) + point(10, 1, 2) + point(10, 3, 2) + point(10, 4, 0));
  hostx::DrawOptions coarse;
  coarse.pixel = 2.0;
  hostx::DrawOptions fine;
  fine.pixel = 1e-4;
  const auto pieces = [&](const hostx::DrawOptions& options) {
    const std::string text = shown(curve, {}, {}, options);
    EXPECT_EQ(text.substr(0, 10), "stroke 0,0");
    EXPECT_EQ(text.substr(text.size() - 4), "4,0\n");
    return std::count(text.begin(), text.end(), '>');
  };
  EXPECT_LT(pieces(coarse), pieces(fine));
  EXPECT_LE(pieces(fine), 256);
  // Through fit points, a straight one among them.
  EXPECT_EQ(shown(loose("SPLINE", "AcDbSpline",
                        "70 8\n71 3\n74 2\n" + point(11, 0, 0) + point(11, 4, 4))),
            "stroke 0,0 -> 4,4\n");
}

TEST(Drawn, SolidsFacesAndMeshes) {
  const std::string corners = point(10, 0, 0) + point(11, 2, 0) + point(12, 0, 1) + point(13, 2, 1);
  EXPECT_EQ(shown(loose("SOLID", "AcDbTrace", corners)), "fill 0,0 -> 2,0 -> 2,1 -> 0,1 close\n");
  EXPECT_EQ(shownInBlock(loose("TRACE", "AcDbTrace", corners), kMirrored),
            "fill 0,0 -> -2,0 -> -2,1 -> 0,1 close\n");
  EXPECT_EQ(shown(loose("3DFACE", "AcDbFace", corners)),
            "stroke 0,0 -> 2,0 -> 0,1 -> 2,1 -> 0,0 close\n");
  EXPECT_EQ(shown(loose("3DFACE", "AcDbFace", corners + "70 2\n")),
            "stroke 0,0 -> 2,0\nstroke 0,1 -> 2,1 -> 0,0\n");
  EXPECT_EQ(shown(loose("3DFACE", "AcDbFace", corners + "70 15\n")), "");
  EXPECT_EQ(shown(loose("MESH", "AcDbSubDMesh",
                        "71 2\n72 0\n91 0\n92 4\n" + point(10, 0, 0) + point(10, 1, 0) +
                            point(10, 1, 1) + point(10, 0, 1) +
                            "93 8\n90 3\n90 0\n90 1\n90 2\n90 3\n90 0\n90 2\n90 3\n94 0\n95 0\n")),
            "stroke 0,0 -> 1,0\nstroke 0,0 -> 1,1\nstroke 0,0 -> 0,1\nstroke 1,0 -> 1,1\n"
            "stroke 1,1 -> 0,1\n");
}

TEST(Drawn, PointsByTheirMode) {
  const std::string place = loose("POINT", "AcDbPoint", point(10, 5, 5));
  const auto mode = [&](int value) {
    return shown(place, "9 $PDMODE\n70 " + std::to_string(value) + "\n9 $PDSIZE\n40 2\n");
  };
  EXPECT_EQ(mode(0), "stroke 5,5\n");
  EXPECT_EQ(mode(1), "");
  EXPECT_EQ(mode(2), "stroke 4,5 -> 6,5\nstroke 5,4 -> 5,6\n");
  EXPECT_EQ(mode(3), "stroke 4,4 -> 6,6\nstroke 4,6 -> 6,4\n");
  EXPECT_EQ(mode(4), "stroke 5,5 -> 5,6\n");
  EXPECT_EQ(mode(33), "stroke 6,5 -> arc(5,5 by 360) 6,5 close\n");
  EXPECT_EQ(mode(64), "stroke 5,5\nstroke 4,4 -> 6,4 -> 6,6 -> 4,6 close\n");
  hostx::DrawOptions options;
  options.view = AcDbExtents({0, 0, 0}, {100, 40, 0});
  EXPECT_EQ(shown(place, "9 $PDMODE\n70 2\n9 $PDSIZE\n40 0\n", {}, options),
            "stroke 4,5 -> 6,5\nstroke 5,4 -> 5,6\n");
}

TEST(Drawn, RaysAreCutOffAtTheView) {
  hostx::DrawOptions options;
  options.view = AcDbExtents({0, 0, 0}, {10, 10, 0});
  const auto ray = [&](const std::string& kind, const std::string& subclass, double x, double y) {
    return shown(loose(kind, subclass, point(10, 5, 5) + point(11, x, y)), {}, {}, options);
  };
  EXPECT_EQ(ray("RAY", "AcDbRay", 1, 0), "stroke 5,5 -> 10,5\n");
  EXPECT_EQ(ray("XLINE", "AcDbXline", 1, 0), "stroke 0,5 -> 10,5\n");
  EXPECT_EQ(ray("XLINE", "AcDbXline", 1, 1), "stroke 0,0 -> 10,10\n");
  EXPECT_EQ(ray("XLINE", "AcDbXline", 0, 0), "");
  // Where nobody looks at anything, the space itself is looked at.
  EXPECT_EQ(shown(loose("XLINE", "AcDbXline", point(10, 5, 1) + point(11, 0, 1)) +
                  loose("LINE", "AcDbLine", point(10, 0, 0) + point(11, 8, 6))),
            "stroke 5,0 -> 5,6\nstroke 0,0 -> 8,6\n");
}

// --- texts ----------------------------------------------------------------------------------

std::string text(const std::string& contents, const std::string& more = {}) {
  return loose("TEXT", "AcDbText", point(10, 1, 2) + "40 2\n1 " + contents + "\n" + more);
}

TEST(Drawn, TextsByTheirAlignment) {
  EXPECT_EQ(shown(text("a")), "text 'a' at 1,2 along 1,0 up 0,2\n");
  EXPECT_EQ(shown(text("a", "72 2\n" + point(11, 9, 9) + "100 AcDbText\n73 3\n")),
            "text 'a' at 9,9 along 1,0 up 0,2 share 1,1\n");
  EXPECT_EQ(shown(text("a", "50 90\n")), "text 'a' at 1,2 along 0,1 up -2,0\n");
  EXPECT_EQ(shown(text("a", "71 2\n")), "text 'a' at 1,2 along -1,0 up 0,2\n");
  EXPECT_EQ(shown(text("a", "71 4\n")), "text 'a' at 1,2 along 1,0 up 0,-2\n");
  EXPECT_EQ(shown(text("a", "51 45\n")), "text 'a' at 1,2 along 1,0 up 2,2\n");
  EXPECT_EQ(shownInBlock(text("a"), kMirrored), "text 'a' at -1,2 along -1,0 up 0,2\n");
  EXPECT_EQ(shownInBlock(text("a"), kUneven), "text 'a' at 2,2 along 1,0 up 0,2\n");
}

TEST(Drawn, TextsAreAsWideAsTheySay) {
  const auto width = [](const std::string& entity) {
    const DrawnSpace space(Drawing(drawingWith(entity)));
    return space.sink.widths.empty() ? 0.0 : space.sink.widths.front();
  };
  const double plain = width(text("wall"));
  EXPECT_GT(plain, 2.0);
  EXPECT_NEAR(width(text("wall", "41 0.5\n")), 0.5 * plain, 1e-9);
  EXPECT_NEAR(width(text("wall", "72 5\n" + point(11, 31, 2))), 30.0, 1e-9);
  const DrawnSpace block(Drawing(drawingWith(text("wall", "72 3\n" + point(11, 1, 12)))));
  EXPECT_EQ(block.sink.all(), "text 'wall' at 1,2 along 0,1 up -2,0\n");
}

TEST(Drawn, CodesOfTextsAreWhatTheyMean) {
  EXPECT_EQ(shown(text("%%uab%%u 45%%d%%p%%c%%%%%065")),
            shown(text("%%uab%%u 45\\U+00B0\\U+00B1\\U+00D8%%%A")));
  const std::string both = shown(text("%%uab%%ucd"));
  EXPECT_EQ(both.substr(0, both.find('\n')), "text 'ab' at 1,2 along 1,0 up 0,2 underlined");
  EXPECT_NE(both.find("text 'cd' at "), std::string::npos);
  EXPECT_EQ(shown(text("%%o%%kx")), "text 'x' at 1,2 along 1,0 up 0,2 overlined struck\n");
}

std::string mtext(const std::string& contents, const std::string& more = {}) {
  return loose("MTEXT", "AcDbMText",
               point(10, 0, 0) + "40 3\n41 0\n71 1\n72 5\n1 " + contents + "\n" + more);
}

TEST(Drawn, ParagraphsOfMultilineTexts) {
  EXPECT_EQ(shown(mtext("a\\Pb")),
            "text 'a' at 0,-3 along 1,0 up 0,3\ntext 'b' at 0,-8 along 1,0 up 0,3\n");
  // Attached at the bottom, twice as far apart.
  EXPECT_EQ(shown(mtext("a\\Pb", "44 2\n").replace(mtext("a\\Pb").find("71 1"), 4, "71 7")),
            "text 'a' at 0,10 along 1,0 up 0,3\ntext 'b' at 0,0 along 1,0 up 0,3\n");
  EXPECT_EQ(shownInBlock(mtext("a"), kMirrored), "text 'a' at 0,-3 along -1,0 up 0,3\n");
  EXPECT_EQ(shown(mtext("a", "50 90\n")), "text 'a' at 3,0 along 0,1 up -3,0\n");
}

TEST(Drawn, MultilineTextsWrapAtTheirWidth) {
  std::string entity = mtext("one two three");
  entity.replace(entity.find("41 0"), 4, "41 12");
  const std::string lines = shown(entity);
  EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), 3) << lines;
  EXPECT_NE(lines.find("text 'one ' at 0,-3"), std::string::npos) << lines;
  EXPECT_NE(lines.find("text 'three' at 0,-13"), std::string::npos) << lines;
}

TEST(Drawn, InlineCodesOfMultilineTexts) {
  EXPECT_EQ(shown(mtext("{\\H6;\\C1;\\Lbig}small")).substr(0, 58),
            std::string("text 'big' at 0,-6 along 1,0 up 0,6 underlined #ff0000\ntext 'small'")
                .substr(0, 58));
  EXPECT_EQ(shown(mtext("\\fArial|b1|i1;x")),
            "text 'x' at 0,-3 along 1,0 up 0,3 bold italic font Arial\n");
  EXPECT_EQ(shown(mtext("\\Q45;x")), "text 'x' at 0,-3 along 1,0 up 3,3\n");
  EXPECT_EQ(shown(mtext("\\c255;x")), "text 'x' at 0,-3 along 1,0 up 0,3 #ff0000\n");
  EXPECT_EQ(shown(mtext("\\U+00B2\\~\\{%%d\\\\")),
            "text '\u00B2\u00A0{\u00B0\\' at 0,-3 along 1,0 up 0,3\n");
  const std::string fraction = shown(mtext("\\S1/2;"));
  EXPECT_NE(fraction.find("text '1' at 0,-1.35 along 1,0 up 0,2.1"), std::string::npos) << fraction;
  EXPECT_NE(fraction.find("text '2' at 0,-4.35 along 1,0 up 0,2.1"), std::string::npos) << fraction;
  EXPECT_NE(fraction.find("stroke 0,-1.8 -> "), std::string::npos) << fraction;
}

TEST(Drawn, ColumnsOfMultilineTexts) {
  const std::string columns = shown(
      mtext("a\\Pb\\Pc",
            "101 Embedded Object\n70 1\n10 1\n20 0\n30 0\n11 0\n21 0\n31 0\n40 10\n41 9\n42 22\n"
            "43 9\n71 1\n72 2\n44 10\n45 2\n73 0\n74 0\n"));
  EXPECT_EQ(columns,
            "text 'a' at 0,-3 along 1,0 up 0,3\ntext 'b' at 0,-8 along 1,0 up 0,3\n"
            "text 'c' at 12,-3 along 1,0 up 0,3\n");
}

// --- areas ----------------------------------------------------------------------------------

std::string hatch(const std::string& name, bool isSolid, const std::string& boundaries,
                  const std::string& behind) {
  return loose("HATCH", "AcDbHatch",
               point(10, 0, 0) + point(210, 0, 0, 1) + "2 " + name + "\n70 " +
                   (isSolid ? "1" : "0") + "\n71 0\n" + boundaries + behind);
}
std::string square(double low, double high, int flags = 3) {
  const std::string a = number(low);
  const std::string b = number(high);
  return "92 " + std::to_string(flags) + "\n72 0\n73 1\n93 4\n10 " + a + "\n20 " + a + "\n10 " + b +
         "\n20 " + a + "\n10 " + b + "\n20 " + b + "\n10 " + a + "\n20 " + b + "\n97 0\n";
}
const std::string kTwoSquares = "91 2\n" + square(0, 10) + square(4, 6);
const std::string kStripes = "75 0\n76 1\n52 0\n41 1\n77 0\n78 1\n53 0\n43 0\n44 0\n45 0\n46 5\n";

TEST(Drawn, HatchesFillWhatLiesBetweenTheirBoundaries) {
  EXPECT_EQ(shown(hatch("SOLID", true, kTwoSquares, "75 0\n76 1\n98 0\n")),
            "fill 0,0 -> 10,0 -> 10,10 -> 0,10 -> 0,0 close | 4,4 -> 6,4 -> 6,6 -> 4,6 -> 4,4 "
            "close\n");
  // The style that ignores islands.
  EXPECT_EQ(shown(hatch("SOLID", true, kTwoSquares, "75 2\n76 1\n98 0\n")),
            "fill 0,0 -> 10,0 -> 10,10 -> 0,10 -> 0,0 close\n");
  // The outer style leaves out what lies in islands.
  EXPECT_EQ(shown(hatch("SOLID", true, "91 3\n" + square(0, 10) + square(2, 8) + square(4, 6),
                        "75 1\n76 1\n98 0\n")),
            "fill 0,0 -> 10,0 -> 10,10 -> 0,10 -> 0,0 close | 2,2 -> 8,2 -> 8,8 -> 2,8 -> 2,2 "
            "close\n");
  EXPECT_EQ(
      shown(hatch("SOLID", true, "91 1\n" + square(0, 1), "75 0\n76 1\n"), "9 $FILLMODE\n70 0\n"),
      "stroke 0,0 -> 1,0 -> 1,1 -> 0,1 -> 0,0 close\n");
}

TEST(Drawn, EdgesOfHatchesMeetInOneRing) {
  // A line, and half a circle that is written the other way round.
  EXPECT_EQ(shown(hatch("SOLID", true,
                        "91 1\n92 1\n93 2\n72 1\n10 -1\n20 0\n11 1\n21 0\n72 2\n10 0\n20 0\n40 "
                        "1\n50 0\n51 180\n73 1\n97 0\n",
                        "75 0\n76 1\n98 0\n")),
            "fill -1,0 -> 1,0 -> arc(0,0 by 180) -1,0 close\n");
  EXPECT_EQ(shown(hatch("SOLID", true,
                        "91 1\n92 1\n93 2\n72 1\n10 1\n20 0\n11 -1\n21 0\n72 2\n10 0\n20 0\n40 "
                        "1\n50 0\n51 180\n73 1\n97 0\n",
                        "75 0\n76 1\n98 0\n")),
            "fill 1,0 -> -1,0 -> arc(0,0 by -180) 1,0 close\n");
}

TEST(Drawn, PatternsAreCutOffAtTheBoundary) {
  EXPECT_EQ(shown(hatch("LINE", false, kTwoSquares, kStripes + "79 0\n")),
            "stroke 0,0 -> 10,0\nstroke 0,5 -> 4,5\nstroke 6,5 -> 10,5\n");
  // Dashes begin at the base of each line.
  EXPECT_EQ(shown(hatch("DASH", false, "91 1\n" + square(1, 9), kStripes + "79 2\n49 3\n49 -3\n")),
            "stroke 1,5 -> 3,5\nstroke 6,5 -> 9,5\n");
  EXPECT_EQ(shown(hatch("DOTS", false, "91 1\n" + square(1, 9), kStripes + "79 2\n49 0\n49 -4\n")),
            "stroke 4,5\nstroke 8,5\n");
}

TEST(Drawn, DensePatternsAreLightAreas) {
  hostx::DrawOptions options;
  options.pixel = 10.0;
  EXPECT_EQ(
      shown(hatch("LINE", false, "91 1\n" + square(0, 10), kStripes + "79 0\n"), {}, {}, options),
      "fill 0,0 -> 10,0 -> 10,10 -> 0,10 -> 0,0 close opacity 0.6\n");
  // So many lines that nobody could paint them.
  EXPECT_EQ(
      shown(hatch("LINE", false, "91 1\n" + square(0, 1e9), kStripes + "79 0\n")).substr(0, 8),
      "fill 0,0");
}

TEST(Drawn, GradientsAreTheirMeanColor) {
  EXPECT_EQ(shown(hatch("SOLID", true, "91 1\n" + square(0, 1),
                        "75 0\n76 1\n98 0\n450 1\n451 0\n460 0\n461 0\n452 0\n462 0\n453 2\n463 "
                        "0\n63 1\n421 16711680\n463 1\n63 5\n421 255\n470 LINEAR\n")),
            "fill 0,0 -> 1,0 -> 1,1 -> 0,1 -> 0,0 close #800080\n");
}

TEST(Drawn, WipeoutsHideAndImagesNameTheirFile) {
  const std::string tags = "90 0\n" + point(10, 1, 1) + point(11, 0.5, 0) + point(12, 0, 0.25) +
                           "13 4\n23 8\n340 60\n70 7\n280 0\n281 50\n282 50\n283 0\n";
  const std::string definition =
      "0 IMAGEDEF\n5 60\n330 C\n100 AcDbRasterImageDef\n90 0\n1 pictures\\house.png\n10 4\n20 8\n";
  EXPECT_EQ(shown(loose("IMAGE", "AcDbRasterImage", tags), {}, definition),
            "image 'pictures\\house.png' 1,1 u 2,0 v 0,2\n");
  EXPECT_EQ(shown(loose("WIPEOUT", "AcDbWipeout",
                        "90 0\n" + point(10, 1, 1) + point(11, 2, 0) + point(12, 0, 2) +
                            "13 1\n23 1\n280 1\n71 2\n91 5\n14 -0.5\n24 -0.5\n14 0.5\n24 -0.5\n14 "
                            "0.5\n24 0.5\n14 -0.5\n24 0.5\n14 -0.5\n24 -0.5\n")),
            "wipe 1,3 -> 3,3 -> 3,1 -> 1,1 -> 1,3 close\n");
}

// --- annotations ----------------------------------------------------------------------------

TEST(Drawn, LeadersHaveAnArrow) {
  EXPECT_EQ(shown(loose("LEADER", "AcDbLeader",
                        "3 Standard\n71 1\n72 0\n73 3\n" + point(10, 0, 0) + point(10, 9, 0))),
            "stroke 0,0 -> 9,0\nfill 0,0 -> 0.18,0.03 -> 0.18,-0.03 close\n");
}

TEST(Drawn, LeadersHaveTheColorOfDimensionLines) {
  const std::string leader = loose(
      "LEADER", "AcDbLeader", "3 Standard\n71 1\n72 0\n73 3\n" + point(10, 0, 0) + point(10, 9, 0));
  const auto with = [&](int color) {
    return shown(leader + "1001 ACAD\n1000 DSTYLE\n1002 {\n1070 176\n1070 " +
                 std::to_string(color) + "\n1002 }\n");
  };
  EXPECT_EQ(with(1),
            "stroke 0,0 -> 9,0 #ff0000\n"
            "fill 0,0 -> 0.18,0.03 -> 0.18,-0.03 close #ff0000\n");
  EXPECT_EQ(with(0), shown(leader));
}

TEST(Drawn, DimensionsWithoutABlockAreTheirLines) {
  const std::string all = shown(loose("DIMENSION", "AcDbDimension",
                                      point(10, 8, 3) + point(11, 4, 3) +
                                          "70 1\n3 Standard\n42 8.0\n"
                                          "100 AcDbAlignedDimension\n" +
                                          point(13, 0, 0) + point(14, 8, 0)));
  EXPECT_EQ(all.substr(0, all.find(" at ")),
            "stroke 0,0 -> 0,3\nstroke 8,0 -> 8,3\nstroke 0,3 -> 8,3\ntext '8'");
  EXPECT_NE(all.find(",2.91 along 1,0 up 0,0.18\n"), std::string::npos) << all;
}

TEST(Drawn, TablesWithoutABlockAreTheirGrid) {
  const std::string all =
      shown("0 ACAD_TABLE\n8 0\n100 AcDbEntity\n8 0\n100 AcDbBlockReference\n" + point(10, 0, 0) +
            "100 AcDbTable\n91 1\n92 2\n141 2\n142 5\n142 5\n171 1\n1 a\n171 1\n1 b\n");
  EXPECT_EQ(all.substr(0, all.find("text")),
            "stroke 0,0 -> 10,0\nstroke 0,-2 -> 10,-2\nstroke 0,0 -> 0,-2\nstroke 5,0 -> 5,-2\n"
            "stroke 10,0 -> 10,-2\n");
  EXPECT_NE(all.find("text 'a'"), std::string::npos);
  EXPECT_NE(all.find("text 'b'"), std::string::npos);
}

TEST(Drawn, TolerancesAreCells) {
  const std::string all =
      shown(loose("TOLERANCE", "AcDbFcf",
                  "3 Standard\n" + point(10, 0, 0) + "1 {\\Fgdt;j}%%v0.1\n" + point(11, 1, 0)));
  // Two cells; the sign of position is a circle and two lines, wherever fonts have it.
  EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 6) << all;
  EXPECT_NE(all.find(" by 360)"), std::string::npos) << all;
  EXPECT_NE(all.find("text '0.1'"), std::string::npos) << all;
  const std::string rows = shown(loose(
      "TOLERANCE", "AcDbFcf", "3 Standard\n" + point(10, 0, 0) + "1 a^Jb\n" + point(11, 1, 0)));
  EXPECT_EQ(std::count(rows.begin(), rows.end(), '\n'), 4) << rows;
}

TEST(Drawn, SignsOfTolerancesAreStrokes) {
  // A capital high, in the middle of the room that the letter has.
  EXPECT_EQ(shown(loose("TEXT", "AcDbText", point(10, 0, 0) + "40 2\n1 \\U+23E4\n")).substr(0, 7),
            "stroke ");
  const std::string circled = shown(text("5\\U+24C2"));
  EXPECT_NE(circled.find("text '5'"), std::string::npos) << circled;
  EXPECT_NE(circled.find(" by 360)"), std::string::npos) << circled;
  EXPECT_NE(circled.find("text 'M'"), std::string::npos) << circled;
  // The font of signs has them for letters.
  EXPECT_EQ(shown(mtext("\\Fgdt;i")), shown(mtext("\\FGDT.SHX;i")));
  const std::string symmetry = shown(mtext("\\Fgdt;i"));
  EXPECT_EQ(std::count(symmetry.begin(), symmetry.end(), '\n'), 3) << symmetry;
  EXPECT_NE(shown(mtext("\\Fgdt;n")).find("text '\u2300'"), std::string::npos);
  // Other letters are texts as ever.
  EXPECT_NE(shown(text("i")).find("text 'i'"), std::string::npos);
}

TEST(Drawn, AttributesOfSeveralLinesAreLaidOut) {
  const std::string attribute =
      "0 ATTRIB\n8 0\n100 AcDbEntity\n8 0\n100 AcDbText\n" + point(10, 5, 5) +
      "40 2\n1 ab\n100 AcDbAttribute\n2 NAME\n70 0\n101 Embedded Object\n" + point(10, 5, 7) +
      "40 2\n41 0\n46 0\n71 1\n72 5\n1 a\\Pb\n";
  EXPECT_EQ(shown("0 INSERT\n8 0\n100 AcDbEntity\n8 0\n62 1\n66 1\n100 AcDbBlockReference\n"
                  "2 None\n" +
                  point(10, 0, 0) + attribute + "0 SEQEND\n8 0\n"),
            "text 'a' at 5,5 along 1,0 up 0,2\ntext 'b' at 5,1.6667 along 1,0 up 0,2\n");
}

TEST(Drawn, TabStopsOfMultilineTexts) {
  const auto second = [](const std::string& stops) {
    const std::string all = shown(mtext("\\p" + stops + ";a^Ibb"));
    return all.substr(0, all.find(" along", all.find("'bb'")));
  };
  EXPECT_EQ(second("xt2,7"), "text 'a' at 0,-3 along 1,0 up 0,3\ntext 'bb' at 6,-3");
  EXPECT_EQ(second("xtz"), "text 'a' at 0,-3 along 1,0 up 0,3\ntext 'bb' at 12,-3");
  EXPECT_EQ(second("xi0,t1"), second("t1"));
  // What stands to the left of a stop ends there.
  const DrawnSpace right(Drawing(drawingWith(mtext("\\pxtr7;a^Ibb"))));
  EXPECT_NEAR(right.sink.box.maxPoint().x, 21.0, 1e-9);
  const DrawnSpace centred(Drawing(drawingWith(mtext("\\pxtc7;a^Ibb"))));
  EXPECT_NEAR(centred.sink.box.maxPoint().x, 21.0 + 0.5 * right.sink.widths.back(), 1e-9);
}

TEST(Drawn, WhatCannotBeDrawnIsCounted) {
  const DrawnSpace space(Drawing(drawingWith(
      loose("SHAPE", "AcDbShape", point(10, 0, 0) + "40 1\n2 x\n") +
      loose("PDFUNDERLAY", "AcDbUnderlayReference", point(10, 0, 0)) +
      loose("OLE2FRAME", "AcDbOle2Frame", "70 2\n") + loose("BODY", "AcDbModelerGeometry", "") +
      loose("LIGHT", "AcDbLight", point(10, 0, 0)))));
  EXPECT_EQ(space.report.leftOut,
            (std::map<std::wstring, Adesk::UInt64>{
                {L"BODY", 1}, {L"OLE2FRAME", 1}, {L"PDFUNDERLAY", 1}, {L"SHAPE", 1}}));
  EXPECT_EQ(space.report.drawn, 0u);
}

// --- windows --------------------------------------------------------------------------------

TEST(Drawn, ViewportsShowModelSpaceInTheirFrame) {
  const std::string line = loose("LINE", "AcDbLine", point(10, 100, 100) + point(11, 110, 100));
  const std::string window =
      "0 VIEWPORT\n5 41\n330 1B\n100 AcDbEntity\n67 1\n8 0\n100 AcDbViewport\n" + point(10, 5, 5) +
      "40 8\n41 4\n68 1\n69 2\n12 105\n22 100\n" + point(16, 0, 0, 1) + point(17, 0, 0) +
      "45 40\n51 0\n";
  const Drawing drawing(drawingWith(line + window));
  EXPECT_EQ(DrawnSpace(drawing, {}, ACDB_PAPER_SPACE).sink.all(),
            "stroke 1,3 -> 9,3 -> 9,7 -> 1,7 close\n"
            "clip 1,3 -> 9,3 -> 9,7 -> 1,7 close\n"
            "stroke 4.5,5 -> 5.5,5\n"
            "end of clip\n");
}

// --- all of them ----------------------------------------------------------------------------

TEST(Drawn, HostileNumbersEndAndStayFinite) {
  const std::array numbers{"1e300", "-1e300", "nan", "inf", "1e-300", "0", "99999999999999999999"};
  std::string all;
  for (const std::string value : numbers) {
    const std::string three = "10 " + value + "\n20 1\n30 0\n";
    all += loose("LINE", "AcDbLine", three + "11 " + value + "\n21 " + value + "\n31 0\n");
    all += loose("CIRCLE", "AcDbCircle", three + "40 " + value + "\n");
    all +=
        loose("ELLIPSE", "AcDbEllipse",
              three + "11 " + value + "\n21 0\n31 0\n40 " + value + "\n41 0\n42 " + value + "\n");
    all += loose("LWPOLYLINE", "AcDbPolyline",
                 "90 3\n70 1\n43 " + value + "\n10 0\n20 0\n42 " + value + "\n10 " + value +
                     "\n20 0\n42 1\n10 5\n20 " + value + "\n");
    all += loose("TEXT", "AcDbText", three + "40 " + value + "\n1 a%%\n41 " + value + "\n");
    all += loose("MTEXT", "AcDbMText",
                 three + "40 " + value + "\n41 " + value + "\n44 " + value + "\n1 a {{{ \\H" +
                     value + "x;b\\S^;\\pi" + value + ",qr;\\P^I^\\C9e9;\\W" + value + ";c}}}}}\n");
    all +=
        hatch("LINE", false, "91 1\n" + square(0, 10),
              "75 0\n76 1\n52 0\n41 1\n77 0\n78 1\n53 " + value + "\n43 " + value + "\n44 0\n45 " +
                  value + "\n46 " + value + "\n79 2\n49 " + value + "\n49 -" + value + "\n");
    all += loose("SPLINE", "AcDbSpline",
                 "71 3\n40 0\n40 0\n40 0\n40 0\n40 1\n40 1\n40 1\n40 " + value + "\n" + three +
                     three + point(10, 1, 1) + point(10, 4, 4));
    all += loose("SPLINE", "AcDbSpline",
                 "71 3\n" + point(11, 0, 0) + "11 " + value + "\n21 1\n31 0\n" + point(11, 2, 2));
    all += loose("RAY", "AcDbRay", three + "11 " + value + "\n21 " + value + "\n31 0\n");
    all += loose("LEADER", "AcDbLeader", "71 1\n72 1\n" + three + point(10, 1, 1) + three);
    all += loose("INSERT", "AcDbBlockReference",
                 "2 Door\n" + three + "41 " + value + "\n42 " + value +
                     "\n70 32000\n71 32000\n44 " + value + "\n");
  }
  const DrawnSpace space(Drawing(drawingWith(all, "9 $LTSCALE\n40 1e300\n9 $PDSIZE\n40 nan\n")));
  for (const std::string& line : space.sink.lines) {
    ASSERT_EQ(line.find("nan"), std::string::npos) << line;
    ASSERT_EQ(line.find("inf"), std::string::npos) << line;
  }
}

TEST(Drawn, LongTextsOfCodesTakeLinearTime) {
  std::string contents;
  for (int i = 0; i < 20'000; ++i) {
    contents += "{\\H2x;\\A1;";
  }
  const std::string entity = mtext(contents + "x");
  EXPECT_LE(DrawnSpace(Drawing(drawingWith(entity))).sink.lines.size(), 1u);
}

}  // namespace
}  // namespace quoin::test
