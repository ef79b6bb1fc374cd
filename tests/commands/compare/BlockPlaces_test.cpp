#include "commands/compare/BlockPlaces.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "commands/compare/PlacedShapes.h"
#include "commands/picture/DrawList.h"
#include "dbsymtb.h"

namespace {

using quoin::commands::BlockPlaces;
using quoin::commands::Box;
using quoin::commands::Drawing;
using quoin::commands::DrawList;
using quoin::commands::PlacedShapes;

/// Drawings as text: codes and values separated by blanks.
class BlockPlacesTest : public testing::Test {
 protected:
  ~BlockPlacesTest() override { std::filesystem::remove(m_file); }

  Drawing drawing(const std::string& blocks, const std::string& entities,
                  const std::string& tables = "") {
    std::string text = "0 SECTION 2 TABLES " + tables + " 0 ENDSEC 0 SECTION 2 BLOCKS " + blocks +
                       " 0 ENDSEC 0 SECTION 2 ENTITIES " + entities + " 0 ENDSEC 0 EOF ";
    text.erase(
        std::unique(text.begin(), text.end(), [](char a, char b) { return a == ' ' && b == ' '; }),
        text.end());
    std::replace(text.begin(), text.end(), ' ', '\n');
    std::ofstream(m_file) << text;
    return Drawing(m_file);
  }

  static std::string block(const std::string& name, const std::string& entities) {
    return "0 BLOCK 8 0 2 " + name + " 70 0 10 0 20 0 " + entities + " 0 ENDBLK 8 0 ";
  }
  static std::string insert(const std::string& name, const std::string& more) {
    return "0 INSERT 8 0 2 " + name + " " + more + " ";
  }

  static AcDbObjectId named(Drawing& drawing, const std::wstring& name) {
    AcDbBlockTable* table = nullptr;
    EXPECT_EQ(drawing.database().getBlockTable(table, AcDb::kForRead), Acad::eOk);
    AcDbObjectId id;
    EXPECT_EQ(table->getAt(name.c_str(), id), Acad::eOk);
    table->close();
    return id;
  }

  /// Where a point of the block at 0,0 comes to, place by place.
  static std::vector<std::string> placesOf(Drawing& drawing, const std::wstring& name) {
    const std::set<AcDbObjectId> wanted{named(drawing, name)};
    const BlockPlaces places(drawing, wanted);
    std::vector<std::string> found;
    places.walk([&](const BlockPlaces::Place& place) {
      const AcGePoint3d at = place.toWorld * AcGePoint3d::kOrigin;
      found.push_back(std::to_string(std::lround(at.x)) + "," + std::to_string(std::lround(at.y)));
      return true;
    });
    EXPECT_EQ(places.count(*wanted.begin()), static_cast<double>(found.size()));
    return found;
  }

  const std::filesystem::path m_file =
      std::filesystem::temp_directory_path() /
      ("quoin-places-" + std::to_string(std::random_device()()) + ".dxf");
};

const std::string kLine = "0 LINE 8 0 10 0 20 0 11 1 21 0 ";

TEST_F(BlockPlacesTest, NestedReferencesAndAllCellsOfArraysCount) {
  Drawing plan = drawing(
      block("DOOR", kLine) +
          block("ROOM", insert("DOOR", "10 1 20 0") + insert("DOOR", "10 2 20 0")),
      insert("ROOM", "10 10 20 0 70 2 71 2 44 100 45 1000") + insert("DOOR", "10 7 20 7") + kLine);
  EXPECT_EQ(placesOf(plan, L"DOOR"),
            (std::vector<std::string>{"11,0", "12,0", "111,0", "112,0", "11,1000", "12,1000",
                                      "111,1000", "112,1000", "7,7"}));
  EXPECT_EQ(placesOf(plan, L"ROOM").size(), 4U);
}

TEST_F(BlockPlacesTest, ABlockInsideItselfEndsThere) {
  Drawing plan = drawing(block("A", kLine + insert("B", "10 1 20 0")) +
                             block("B", kLine + insert("A", "10 1 20 0")) + block("C", kLine),
                         insert("A", "10 5 20 0") + insert("NONE", "10 5 20 0"));
  EXPECT_EQ(placesOf(plan, L"A"), std::vector<std::string>{"5,0"});
  EXPECT_EQ(placesOf(plan, L"B"), std::vector<std::string>{"6,0"});
  EXPECT_EQ(placesOf(plan, L"C"), std::vector<std::string>{});
}

TEST_F(BlockPlacesTest, FrozenAndInvisibleReferencesShowNothing) {
  Drawing plan = drawing(
      block("A", kLine),
      insert("A", "10 1 20 0 60 1") + "0 INSERT 8 ICE 2 A 10 2 20 0 " + insert("A", "10 3 20 0"),
      "0 TABLE 2 LAYER 70 1 0 LAYER 2 ICE 70 1 62 7 6 CONTINUOUS 0 ENDTAB");
  EXPECT_EQ(placesOf(plan, L"A"), std::vector<std::string>{"3,0"});
}

TEST_F(BlockPlacesTest, DimensionsShowTheirBlocks) {
  Drawing plan = drawing(block("*D1", kLine),
                         "0 DIMENSION 8 0 2 *D1 10 0 20 0 11 0 21 0 12 5 22 6 70 0 13 0 23 0 14 1 "
                         "24 0 ");
  EXPECT_EQ(placesOf(plan, L"*D1"), std::vector<std::string>{"5,6"});
}

TEST_F(BlockPlacesTest, AWalkMayBeStopped) {
  Drawing plan = drawing(block("A", kLine), insert("A", "70 30000 71 30000 44 1 45 1"));
  const std::set<AcDbObjectId> wanted{named(plan, L"A")};
  const BlockPlaces places(plan, wanted);
  EXPECT_EQ(places.count(*wanted.begin()), 9e8);
  std::size_t visited = 0;
  places.walk([&](const BlockPlaces::Place&) { return ++visited < 1000; });
  EXPECT_EQ(visited, 1000U);
}

/// What a list holds, as text.
std::string text(const DrawList& list) {
  std::string all;
  const auto add = [&](double number) { all += std::to_string(number + 0.0) + " "; };
  for (DrawList::Reader reader(list); reader.next();) {
    all += "\n" + std::to_string(static_cast<int>(reader.kind())) + ": ";
    if (reader.kind() == DrawList::Kind::Text) {
      const DrawList::Text& one = reader.text();
      all += one.text + " ";
      for (const double number : {one.start().x, one.start().y, one.along.x, one.along.y, one.up.x,
                                  one.up.y, one.width}) {
        add(number);
      }
    } else {
      const Box box = DrawList::boxOf(reader.path());
      for (const double number : {box.minX, box.minY, box.maxX, box.maxY}) {
        add(number);
      }
    }
  }
  return all;
}

TEST_F(BlockPlacesTest, ShapesDrawnAtAPlaceAreThoseThatTheReferenceShows) {
  const std::string shapes = kLine +
                             "0 ARC 8 0 10 3 20 1 40 2 50 20 51 200 "
                             "0 SOLID 8 0 10 0 20 0 11 2 21 0 12 0 22 1 13 2 23 1 "
                             "0 TEXT 8 0 10 1 20 2 40 0.5 1 Door 50 30 ";
  for (const char* more : {"10 5 20 6", "10 5 20 6 50 33 41 2 42 2 43 2", "10 5 20 6 41 -1 50 90",
                           "10 5 20 6 210 0 220 0 230 -1"}) {
    Drawing plan = drawing(block("A", shapes), insert("A", more));
    const AcDbObjectId reference = plan.entities(plan.modelSpaceId()).front();
    DrawList expected;
    hostx::drawEntity(reference, expected);
    PlacedShapes recorded;
    hostx::drawBlock(named(plan, L"A"), recorded);
    EXPECT_EQ(recorded.count(), 4U);
    const std::set<AcDbObjectId> wanted{named(plan, L"A")};
    DrawList placed;
    BlockPlaces(plan, wanted).walk([&](const BlockPlaces::Place& place) {
      EXPECT_EQ(place.reference, reference);
      recorded.drawAt(place.toWorld, placed);
      return true;
    });
    EXPECT_EQ(text(placed), text(expected)) << more;
  }
}

}  // namespace
