// What looks at model space goes along where all of model space is moved or scaled.
#include "embedded/db/tables/ModelViews.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <numbers>
#include <sstream>

#include "gepnt2d.h"
#include "support/Drawings.h"

namespace quoin::db {
namespace {

using test::Drawing;

/// What a drawing of these tests has beside the small one.
struct Parts {
  std::string header;
  std::string tables;
  std::string entities;
  std::string objects;
};

std::string withParts(const Parts& parts) {
  std::string text = test::smallR2000(parts.entities);
  const auto insertBefore = [&](const std::string& place, const std::string& inserted) {
    text.insert(text.find(place), inserted);
  };
  insertBefore("9 $HANDSEED\n", parts.header);
  insertBefore("0 TABLE\n2 LAYER\n", parts.tables);
  insertBefore("0 DICTIONARY\n5 D\n", parts.objects);
  return test::asciiDxf(text);
}

/// The numbers behind a handle or a variable's name, by group code.
std::map<int, double> numbersOf(const std::string& bytes, const std::string& name) {
  std::map<int, double> numbers;
  std::istringstream lines(bytes);
  bool isIn = false;
  for (std::string code, value; std::getline(lines, code) && std::getline(lines, value);) {
    value.pop_back();  // the carriage return
    const int group = std::stoi(code);
    if (group == 5 || group == 9) {
      isIn = value == name;
    } else if (group == 0) {
      isIn = isIn && group != 0;
    } else if (isIn && ((group >= 10 && group < 60) || (group >= 110 && group < 150))) {
      numbers.emplace(group, std::stod(value));
    } else if (isIn && group >= 1010 && group < 1060) {
      numbers.emplace(static_cast<int>(10000 + numbers.size()), std::stod(value));
    }
  }
  return numbers;
}

using NumberMap = std::map<int, double>;

std::string table(const std::string& kind, const std::string& marker, const std::string& body) {
  return "0 TABLE\n2 " + kind + "\n5 8\n330 0\n100 AcDbSymbolTable\n70 1\n0 " + kind +
         "\n5 70\n330 8\n100 AcDbSymbolTableRecord\n100 " + marker + "\n" + body + "0 ENDTAB\n";
}

std::string activeView(const std::string& numbers) {
  return table("VPORT", "AcDbViewportTableRecord", "2 *Active\n70 0\n" + numbers);
}

std::string viewport(const std::string& numbers) {
  return "0 VIEWPORT\n5 70\n330 1B\n100 AcDbEntity\n67 1\n8 0\n100 AcDbViewport\n" + numbers;
}

/// The drawing with this change; EXPECTs that it went well.
std::string changed(const Parts& parts, double factor, const AcGeVector3d& move,
                    ViewChanges* counts = nullptr) {
  const test::NoMisuse guard;
  const Drawing drawing(withParts(parts));
  EXPECT_EQ(drawing.status, Acad::eOk) << os::toUtf8(hostx::lastFileError(&drawing.db()));
  ViewChanges made;
  EXPECT_EQ(transformViews(&drawing.db(), factor, move, made), Acad::eOk);
  if (counts) {
    *counts = made;
  }
  return drawing.saved();
}

const AcGeVector3d kMove(100.0, -20.0, 0.0);

// --- header ---------------------------------------------------------------------------------

TEST(ModelViews, ExtentsAndLimitsGoAlong) {
  const Parts parts{
      "9 $EXTMIN\n10 1.0\n20 2.0\n30 -1.0\n9 $EXTMAX\n10 11.0\n20 22.0\n30 3.0\n"
      "9 $LIMMIN\n10 0.0\n20 0.0\n9 $LIMMAX\n10 12.0\n20 9.0\n"
      "9 $PEXTMIN\n10 5.0\n20 5.0\n30 5.0\n9 $LTSCALE\n40 3.0\n",
      "", "", ""};
  ViewChanges counts;
  const std::string moved = changed(parts, 1.0, kMove, &counts);
  EXPECT_EQ(numbersOf(moved, "$EXTMIN"), (NumberMap{{10, 101}, {20, -18}, {30, -1}}));
  EXPECT_EQ(numbersOf(moved, "$EXTMAX"), (NumberMap{{10, 111}, {20, 2}, {30, 3}}));
  EXPECT_EQ(numbersOf(moved, "$LIMMIN"), (NumberMap{{10, 100}, {20, -20}}));
  EXPECT_EQ(numbersOf(moved, "$LIMMAX"), (NumberMap{{10, 112}, {20, -11}}));
  EXPECT_EQ(counts.variables, 4u);
  const std::string scaled = changed(parts, 0.5, {});
  EXPECT_EQ(numbersOf(scaled, "$EXTMAX"), (NumberMap{{10, 5.5}, {20, 11}, {30, 1.5}}));
  EXPECT_EQ(numbersOf(scaled, "$LIMMAX"), (NumberMap{{10, 6}, {20, 4.5}}));
  EXPECT_EQ(numbersOf(scaled, "$PEXTMIN"), (NumberMap{{10, 5}, {20, 5}, {30, 5}})) << "of sheets";
  EXPECT_EQ(numbersOf(scaled, "$LTSCALE"), (NumberMap{{40, 3}}));
}

TEST(ModelViews, ExtentsThatSayNoneStay) {
  for (const char* const corners : {"1e20 -1e20", "0.0 0.0"}) {
    std::istringstream words(corners);
    std::string least;
    std::string most;
    words >> least >> most;
    const Parts parts{"9 $EXTMIN\n10 " + least + "\n20 " + least + "\n30 " + least +
                          "\n9 $EXTMAX\n10 " + most + "\n20 " + most + "\n30 " + most + "\n",
                      "", "", ""};
    EXPECT_EQ(changed(parts, 2.0, kMove), withParts(parts));
  }
}

TEST(ModelViews, PointsThatSomebodyPlacedGoAlongAndThoseAtTheOriginStay) {
  const Parts parts{
      "9 $INSBASE\n10 5.0\n20 0.0\n30 0.0\n9 $UCSORG\n10 0.0\n20 0.0\n30 0.0\n"
      "9 $ELEVATION\n40 3.0\n",
      table("UCS", "AcDbUCSTableRecord",
            "2 Wing\n70 0\n10 7.0\n20 8.0\n30 0.0\n11 0.0\n21 1.0\n31 0.0\n"
            "12 -1.0\n22 0.0\n32 0.0\n146 2.0\n"),
      "", ""};
  ViewChanges counts;
  const std::string moved = changed(parts, 2.0, kMove, &counts);
  EXPECT_EQ(numbersOf(moved, "$INSBASE"), (NumberMap{{10, 110}, {20, -20}, {30, 0}}));
  EXPECT_EQ(numbersOf(moved, "$UCSORG"), (NumberMap{{10, 0}, {20, 0}, {30, 0}}));
  EXPECT_EQ(numbersOf(moved, "$ELEVATION"), (NumberMap{{40, 6}}));
  const NumberMap system = numbersOf(moved, "70");
  EXPECT_EQ(system.at(10), 114);
  EXPECT_EQ(system.at(20), -4);
  EXPECT_EQ(system.at(21), 1);
  EXPECT_EQ(system.at(146), 4);
  EXPECT_EQ(counts.coordinates, 1u);
}

// --- views ----------------------------------------------------------------------------------

const std::string kPlanView =
    "12 50.0\n22 60.0\n13 0.0\n23 0.0\n14 10.0\n24 10.0\n15 5.0\n25 5.0\n16 0.0\n26 0.0\n36 1.0\n"
    "17 0.0\n27 0.0\n37 0.0\n40 400.0\n41 1.5\n42 50.0\n43 0.0\n44 0.0\n50 0.0\n51 0.0\n71 0\n";

TEST(ModelViews, AViewFromAboveKeepsItsTargetAndMovesItsCentre) {
  const Parts parts{"", activeView(kPlanView), "", ""};
  ViewChanges counts;
  NumberMap expected = numbersOf(withParts(parts), "70");
  expected[12] = 150;
  expected[22] = 40;
  EXPECT_EQ(numbersOf(changed(parts, 1.0, kMove, &counts), "70"), expected);
  EXPECT_EQ(counts.views, 1u);
  expected = numbersOf(withParts(parts), "70");
  for (const int code : {12, 22, 14, 24, 15, 25, 40}) {
    expected[code] *= 0.001;
  }
  EXPECT_EQ(numbersOf(changed(parts, 0.001, {}), "70"), expected);
}

/// Where a view shows a point of the plan, from its record's numbers: what its coordinates say
/// less the view's centre, in view heights.
AcGePoint2d shown(NumberMap view, double x, double y) {
  const double angle = view[51] * std::numbers::pi / 180.0;
  const double dx = x - view[17];
  const double dy = y - view[27];
  return {(std::cos(angle) * dx - std::sin(angle) * dy - view[12]) / view[40],
          (std::sin(angle) * dx + std::cos(angle) * dy - view[22]) / view[40]};
}

TEST(ModelViews, ATwistedViewAndOneWithATargetShowTheSamePlace) {
  for (const auto& [from, to] :
       {std::pair<std::string, std::string>{"51 0.0\n", "51 30.0\n"},
        std::pair<std::string, std::string>{"17 0.0\n27 0.0", "17 -76.0\n27 18.0"}}) {
    std::string numbers = kPlanView;
    numbers.replace(numbers.find(from), from.size(), to);
    const Parts parts{"", activeView(numbers), "", ""};
    const NumberMap before = numbersOf(withParts(parts), "70");
    for (const double factor : {1.0, 0.25}) {
      const NumberMap after = numbersOf(changed(parts, factor, kMove), "70");
      const AcGePoint2d was = shown(before, 33.0, 44.0);
      const AcGePoint2d is = shown(after, 33.0 * factor + kMove.x, 44.0 * factor + kMove.y);
      EXPECT_NEAR(is.x, was.x, 1e-12) << to;
      EXPECT_NEAR(is.y, was.y, 1e-12) << to;
    }
  }
}

TEST(ModelViews, AViewFromTheSideMovesItsTargetAndAPerspectiveItsEyeToo) {
  const std::string side =
      "12 5.0\n22 6.0\n16 1.0\n26 -1.0\n36 1.0\n17 10.0\n27 0.0\n37 0.0\n40 40.0\n43 8.0\n44 "
      "-8.0\n";
  const NumberMap parallel =
      numbersOf(changed({"", activeView(side + "71 0\n"), "", ""}, 0.5, kMove), "70");
  EXPECT_EQ(parallel, (NumberMap{{12, 2.5},
                                 {22, 3},
                                 {16, 1},
                                 {26, -1},
                                 {36, 1},
                                 {17, 105},
                                 {27, -20},
                                 {37, 0},
                                 {40, 20},
                                 {43, 4},
                                 {44, -4}}));
  NumberMap perspective =
      numbersOf(changed({"", activeView(side + "71 1\n"), "", ""}, 0.5, kMove), "70");
  EXPECT_EQ(perspective[16], 0.5);
  EXPECT_EQ(perspective[26], -0.5);
  EXPECT_EQ(perspective[17], 105);
}

TEST(ModelViews, SnapThatWasPlacedGoesAlongInItsCoordinateSystem) {
  std::string numbers = kPlanView +
                        "110 0.0\n120 0.0\n130 0.0\n111 0.0\n121 1.0\n131 0.0\n"
                        "112 -1.0\n122 0.0\n132 0.0\n";
  numbers.replace(numbers.find("13 0.0"), 6, "13 1.0");
  NumberMap view = numbersOf(changed({"", activeView(numbers), "", ""}, 1.0, kMove), "70");
  EXPECT_EQ(view[13], -19) << "the system's x is the world's y";
  EXPECT_EQ(view[23], -100);
}

TEST(ModelViews, NamedViewsOfTheModelGoAlongAndThoseOfSheetsStay) {
  const std::string numbers =
      "40 10.0\n10 5.0\n20 6.0\n41 20.0\n11 0.0\n21 0.0\n31 1.0\n12 0.0\n22 0.0\n32 0.0\n"
      "42 50.0\n43 0.0\n44 0.0\n50 0.0\n71 0\n";
  const auto named = [&](int flags) {
    return Parts{"",
                 table("VIEW", "AcDbViewTableRecord",
                       "2 Kitchen\n70 " + std::to_string(flags) + "\n" + numbers),
                 "", ""};
  };
  NumberMap view = numbersOf(changed(named(0), 2.0, kMove), "70");
  EXPECT_EQ(view[10], 110);
  EXPECT_EQ(view[20], -8);
  EXPECT_EQ(view[40], 20);
  EXPECT_EQ(view[41], 40);
  EXPECT_EQ(changed(named(1), 2.0, kMove), withParts(named(1)));
}

// --- viewports ------------------------------------------------------------------------------

const std::string kViewport =
    "10 148.0\n20 105.0\n30 0.0\n40 200.0\n41 150.0\n68 2\n69 2\n12 7000.0\n22 5000.0\n13 0.0\n"
    "23 0.0\n14 10.0\n24 10.0\n15 10.0\n25 10.0\n16 0.0\n26 0.0\n36 1.0\n17 0.0\n27 0.0\n37 0.0\n"
    "42 50.0\n43 0.0\n44 0.0\n45 15000.0\n50 0.0\n51 0.0\n72 100\n90 32864\n";

TEST(ModelViews, AViewportShowsTheSamePlaceInTheSameSizeOnItsSheet) {
  const Parts parts{"", "", viewport(kViewport), ""};
  ViewChanges counts;
  NumberMap view = numbersOf(changed(parts, 0.001, {}, &counts), "70");
  EXPECT_EQ(counts.viewports, 1u);
  EXPECT_EQ(view[12], 7);
  EXPECT_EQ(view[22], 5);
  EXPECT_EQ(view[45], 15);
  EXPECT_EQ(view[14], 0.01);
  // Its place on the sheet stays.
  EXPECT_EQ(view[10], 148);
  EXPECT_EQ(view[40], 200);
  EXPECT_EQ(view[41], 150);
  view = numbersOf(changed(parts, 1.0, {-7000.0, -5000.0, 0.0}), "70");
  EXPECT_EQ(view[12], 0);
  EXPECT_EQ(view[22], 0);
  EXPECT_EQ(view[45], 15000);
}

TEST(ModelViews, ASheetsViewOfItselfStays) {
  std::string first = kViewport;
  first.replace(first.find("69 2"), 4, "69 1");
  const Parts numbered{"", "", viewport(first), ""};
  EXPECT_EQ(changed(numbered, 0.001, kMove), withParts(numbered));
  // Some files number it otherwise: it shows its own place in its own size.
  const Parts other{"", "",
                    viewport("10 4.5\n20 4.0\n30 0.0\n40 17.0\n41 9.0\n68 1\n69 2\n12 4.5\n22 4.0\n"
                             "16 0.0\n26 0.0\n36 1.0\n17 0.0\n27 0.0\n37 0.0\n45 9.0\n51 0.0\n"),
                    ""};
  EXPECT_EQ(changed(other, 0.001, kMove), withParts(other));
}

TEST(ModelViews, AViewportBeforeR2000HasItsViewInExtendedData) {
  const auto old = [](int number) {
    return Parts{"", "",
                 viewport("10 148.0\n20 105.0\n30 0.0\n40 200.0\n41 150.0\n68 2\n69 " +
                          std::to_string(number) +
                          "\n1001 ACAD\n1000 MVIEW\n1002 {\n1070 16\n1010 0.0\n1020 0.0\n1030 0.0\n"
                          "1010 0.0\n1020 0.0\n1030 1.0\n1040 0.0\n1040 15000.0\n1040 7000.0\n"
                          "1040 5000.0\n1040 50.0\n1040 0.0\n1040 0.0\n1070 0\n1070 100\n1070 1\n"
                          "1070 3\n1070 0\n1070 0\n1070 0\n1070 0\n1040 0.0\n1040 0.0\n1040 0.0\n"
                          "1040 10.0\n1040 10.0\n1040 20.0\n1040 20.0\n1070 0\n1002 {\n1002 }\n"
                          "1002 }\n"),
                 ""};
  };
  const NumberMap before = numbersOf(withParts(old(2)), "70");
  const NumberMap after = numbersOf(changed(old(2), 0.5, kMove), "70");
  std::vector<double> numbers;
  for (const auto& [code, value] : after) {
    if (code >= 10000) {
      numbers.push_back(value);
    }
  }
  EXPECT_EQ(numbers, (std::vector<double>{0,  0, 0, 0, 0, 1, 0, 7500, 3600, 2480,
                                          50, 0, 0, 0, 0, 0, 5, 5,    10,   10}));
  EXPECT_EQ(changed(old(1), 0.5, kMove), withParts(old(1)));
}

// --- layouts --------------------------------------------------------------------------------

std::string layout(const std::string& name) {
  return "0 LAYOUT\n5 70\n330 C\n100 AcDbPlotSettings\n1 \n48 1.0\n49 2.0\n140 3.0\n141 4.0\n"
         "100 AcDbLayout\n1 " +
         name +
         "\n70 1\n71 0\n10 0.0\n20 0.0\n11 12.0\n21 9.0\n12 0.0\n22 0.0\n32 0.0\n14 1.0\n24 1.0\n"
         "34 0.0\n15 5.0\n25 5.0\n35 0.0\n146 0.0\n13 0.0\n23 0.0\n33 0.0\n16 1.0\n26 0.0\n"
         "36 0.0\n17 0.0\n27 1.0\n37 0.0\n76 0\n330 1F\n";
}

TEST(ModelViews, TheLayoutOfModelSpaceGoesAlongAndSheetsStay) {
  const Parts model{"", "", "", layout("Model")};
  ViewChanges counts;
  NumberMap numbers = numbersOf(changed(model, 2.0, kMove, &counts), "70");
  EXPECT_EQ(counts.layouts, 1u);
  EXPECT_EQ(numbers[10], 100);
  EXPECT_EQ(numbers[11], 124);
  EXPECT_EQ(numbers[12], 0);
  EXPECT_EQ(numbers[14], 102);
  EXPECT_EQ(numbers[25], -10);
  EXPECT_EQ(numbers[16], 1);
  EXPECT_EQ(numbers[48], 102);
  EXPECT_EQ(numbers[141], -12);
  const Parts sheet{"", "", "", layout("Layout1")};
  EXPECT_EQ(changed(sheet, 2.0, kMove), withParts(sheet));
}

// --- failures -------------------------------------------------------------------------------

TEST(ModelViews, NothingChangesWhereANumberWouldOverflow) {
  const Parts parts{"9 $LIMMIN\n10 1.0\n20 1.0\n9 $LIMMAX\n10 1e300\n20 9.0\n", "", "", ""};
  const Drawing drawing(withParts(parts));
  ViewChanges counts;
  EXPECT_EQ(transformViews(&drawing.db(), 1e10, {}, counts), Acad::eInvalidInput);
  EXPECT_FALSE(hostx::isModified(&drawing.db()));
  EXPECT_EQ(drawing.saved(), withParts(parts));
}

TEST(ModelViews, FactorsThatMirrorOrLeaveNothingAreRefused) {
  const Drawing drawing(withParts({}));
  ViewChanges counts;
  for (const double factor : {0.0, -1.0, HUGE_VAL, std::nan("")}) {
    EXPECT_EQ(transformViews(&drawing.db(), factor, {}, counts), Acad::eInvalidInput);
  }
  EXPECT_EQ(transformViews(nullptr, 1.0, {}, counts), Acad::eInvalidInput);
  EXPECT_EQ(transformViews(&drawing.db(), 1.0, {HUGE_VAL, 0.0, 0.0}, counts), Acad::eInvalidInput);
  EXPECT_EQ(transformViews(&drawing.db(), 1.0, {}, counts), Acad::eOk);
  EXPECT_FALSE(hostx::isModified(&drawing.db()));
}

TEST(ModelViews, PlacesInObjectsThatDoNotFollowAreListed) {
  const auto object = [](const std::string& kind, const std::string& handle) {
    return "0 " + kind + "\n5 " + handle + "\n330 0\n100 AcDbObject\n";
  };
  const Drawing drawing(
      withParts({"", "", "",
                 object("GEODATA", "90") + object("DICTIONARYVAR", "91") +
                     object("ACDB_TEXTOBJECTCONTEXTDATA_CLASS", "92") + object("SCALE", "93")}));
  ASSERT_EQ(drawing.status, Acad::eOk);
  EXPECT_EQ(placesThatStay(&drawing.db()),
            (std::vector<AcDbObjectId>{drawing.id(0x90), drawing.id(0x92)}));
  EXPECT_TRUE(placesThatStay(nullptr).empty());
}

}  // namespace
}  // namespace quoin::db
