#include "commands/UnitsJudgement.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "commands/LayerChoice.h"
#include "support/SharedData.h"

namespace {

using namespace quoin::commands;

/// The evidence of a house of 14 m with walls of 100 and 150 mm, drawn in a unit of so many mm.
UnitsEvidence houseIn(double millimeters, AcDb::UnitsValue named) {
  UnitsEvidence evidence;
  evidence.named = named;
  evidence.span = 14000 / millimeters;
  for (int i = 0; i < 20; ++i) {
    evidence.spacings.push_back((i % 3 == 0 ? 150 : 100) / millimeters);
  }
  evidence.spacings.push_back(3000 / millimeters);
  return evidence;
}

std::string doubtOf(const UnitsEvidence& evidence) {
  const std::optional<UnitsDoubt> doubt = doubtUnits(evidence);
  return doubt ? doubt->likely->name : "";
}

TEST(UnitsJudgement, ADrawingInTheUnitItNamesIsNotDoubted) {
  for (const NamedUnit& unit : namedUnits()) {
    EXPECT_EQ(doubtOf(houseIn(unit.millimeters, unit.value)), "") << unit.name;
  }
  EXPECT_EQ(doubtOf(houseIn(1.0, AcDb::kUnitsUndefined)), "");
}

TEST(UnitsJudgement, WallsThatNobodyBuildsAreNamedWithTheUnitThatMakesThemCommon) {
  EXPECT_EQ(doubtOf(houseIn(25.4, AcDb::kUnitsMillimeters)), "in");
  EXPECT_EQ(doubtOf(houseIn(25.4, AcDb::kUnitsUndefined)), "in");
  EXPECT_EQ(doubtOf(houseIn(1.0, AcDb::kUnitsInches)), "mm");
  EXPECT_EQ(doubtOf(houseIn(1000.0, AcDb::kUnitsMillimeters)), "m");
  EXPECT_EQ(doubtOf(houseIn(1.0, AcDb::kUnitsMeters)), "mm");
  EXPECT_EQ(doubtOf(houseIn(1000.0, AcDb::kUnitsInches)), "m");
  const std::string reason = doubtUnits(houseIn(25.4, AcDb::kUnitsMillimeters))->reason;
  EXPECT_EQ(reason,
            "the drawing says mm, but most faces of its walls would be 3.94 mm apart and the plan "
            "551 mm across; with 1 in a unit they are 100 mm and 14 m");
}

TEST(UnitsJudgement, DimensionsDecideBeforeWallsDo) {
  UnitsEvidence evidence = houseIn(1.0, AcDb::kUnitsMillimeters);
  evidence.dimensions = {25.4, 25.4, 25.3, 1.0};
  EXPECT_EQ(doubtOf(evidence), "in");
  // What they confirm is not doubted, however odd the walls are.
  evidence = houseIn(25.4, AcDb::kUnitsMillimeters);
  evidence.dimensions = {1.0, 1.0, 1.001};
  EXPECT_EQ(doubtOf(evidence), "");
  // Two are too few, and many that differ say nothing.
  evidence = houseIn(1.0, AcDb::kUnitsMillimeters);
  evidence.dimensions = {25.4, 25.4};
  EXPECT_EQ(doubtOf(evidence), "");
  evidence.dimensions = {25.4, 3.0, 7.0, 12.0};
  EXPECT_EQ(doubtOf(evidence), "");
}

TEST(UnitsJudgement, FeetAndInchesInTheHeaderMakeOddWallsDoubtful) {
  UnitsEvidence evidence = houseIn(25.4, AcDb::kUnitsMillimeters);
  evidence.span = 10000;  // a site of 254 m, marked as 10 m
  EXPECT_EQ(doubtOf(evidence), "");
  evidence.span = 5000;
  EXPECT_EQ(doubtOf(evidence), "");
  evidence.showsFeetAndInches = true;
  EXPECT_EQ(doubtOf(evidence), "in");
}

TEST(UnitsJudgement, SingleLinesAndFewLinesAreNotDoubted) {
  UnitsEvidence rooms;
  rooms.named = AcDb::kUnitsMeters;
  rooms.span = 350;
  for (int i = 0; i < 40; ++i) {
    rooms.spacings.push_back(2.6 + 0.19 * i);
  }
  EXPECT_EQ(doubtOf(rooms), "");
  UnitsEvidence few;
  few.named = AcDb::kUnitsMillimeters;
  few.span = 4;
  few.spacings = {0.2, 0.2};
  EXPECT_EQ(doubtOf(few), "");
  EXPECT_EQ(doubtOf({}), "");
}

/// The judgement of a file's walls on its wall layers; all layers where none is one by name.
std::string doubtOfFile(const std::filesystem::path& file) {
  Drawing drawing(file);
  std::set<std::wstring> layers;
  try {
    layers = chooseLayers(drawing.layers(), {}, drawing);
  } catch (const std::exception&) {
    layers = chooseLayers(drawing.layers(), {"*"}, drawing);
  }
  return doubtOf(gatherUnitsEvidence(drawing, collectWallLines(drawing, layers).lines));
}

TEST(UnitsJudgement, NoExampleIsDoubted) {
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(
           std::filesystem::path(QUOIN_SOURCE_DIR) / "examples")) {
    if (entry.path().extension() == ".dxf") {
      ++count;
      EXPECT_EQ(doubtOfFile(entry.path()), "") << entry.path();
    }
  }
  EXPECT_GE(count, 6u);
}

TEST(UnitsJudgement, PublishedPlansAreDoubtedOnlyWhereTheyAreMarkedWrongly) {
  const std::filesystem::path folder = quoin::test::sharedDataFolder();
  if (folder.empty()) {
    GTEST_SKIP() << "no shared drawings";
  }
  EXPECT_EQ(doubtOfFile(folder / "house_bishop_floorplan_r2004.dxf"), "in");
  for (const char* plan : {"barcelona_pavilion_r2000.dxf", "barcelona_plan_exported_r12.dxf",
                           "barcelona_plan_r2013.dxf"}) {
    EXPECT_EQ(doubtOfFile(folder / plan), "") << plan;
  }
}

}  // namespace
