// Names, numbers and areas from the texts in rooms.
#include "plan/RoomNames.h"

#include <gtest/gtest.h>

namespace quoin::plan {
namespace {

using Kind = TextMeaning::Kind;

TEST(RoomNames, NumbersAreDigitsWithAFewLettersDotsAndDashes) {
  for (const char* text : {"101", "1.04", "A-12", "B2.13a", "2104", "EG-03", "101a"}) {
    EXPECT_EQ(meaningOf(text).kind, Kind::Number) << text;
    EXPECT_EQ(meaningOf(text).text, text);
  }
  for (const char* text : {"KITCHEN", "Bedroom 2", "卧室", "WC", "Büro"}) {
    EXPECT_EQ(meaningOf(text).kind, Kind::Name) << text;
    EXPECT_EQ(meaningOf(text).text, text);
  }
}

TEST(RoomNames, DoorLabelsLengthsAndLevelsAreNoNames) {
  for (const char* text : {"M0921", "C1815", "TLM1824"}) {
    EXPECT_EQ(meaningOf(text).kind, Kind::DoorLabel) << text;
  }
  for (const char* text :
       {"900x2100", "900×2100", "±0.000", "+2.80", "12500", "-0.45", "", "  ", "12'-6\"", "---"}) {
    EXPECT_EQ(meaningOf(text).kind, Kind::Nothing) << text;
  }
}

TEST(RoomNames, AreasComeInManyUnits) {
  for (const char* text : {"13.5 m²", "13,5m2", "A = 13.5 m²", "Area: 13.5 sqm", "(13.5 m²)",
                           "13.5平方米", "S=13.5㎡"}) {
    EXPECT_DOUBLE_EQ(meaningOf(text).area.value_or(0), 13.5) << text;
    EXPECT_EQ(meaningOf(text).text, "") << text;
    EXPECT_EQ(meaningOf(text).kind, Kind::Nothing) << text;
  }
  EXPECT_DOUBLE_EQ(meaningOf("145 sq ft").area.value_or(0), 145 * 0.09290304);
  EXPECT_DOUBLE_EQ(meaningOf("145 SF").area.value_or(0), 145 * 0.09290304);
  const TextMeaning both = meaningOf("Bedroom 13.5 m²");
  EXPECT_EQ(both.text, "Bedroom");
  EXPECT_EQ(both.kind, Kind::Name);
  EXPECT_DOUBLE_EQ(both.area.value_or(0), 13.5);
  EXPECT_FALSE(meaningOf("ROOM2").area);
}

std::vector<Room> twoRooms() {
  std::vector<Room> rooms(2);
  rooms[0].polygon = {{{0, 0}, {4000, 0}, {4000, 3000}, {0, 3000}}, {}};
  rooms[1].polygon = {{{4200, 0}, {8000, 0}, {8000, 3000}, {4200, 3000}}, {}};
  return rooms;
}

TEST(RoomNames, HigherTextsCountMoreThenThoseByTheArea) {
  std::vector<Room> rooms = twoRooms();
  nameRooms(rooms, {{{500, 500}, 100, "M0921"},
                    {{2000, 1500}, 100, "sofa"},
                    {{1000, 2000}, 160, "LIVING"},
                    {{3000, 1500}, 160, "DINING"},
                    {{1000, 1700}, 120, "10.5 m²"},
                    {{1000, 2300}, 160, "1.01"},
                    {{4100, 1000}, 500, "in the wall"},
                    {{5000, 1000}, 100, "C1815"}});
  EXPECT_EQ(rooms[0].name, "LIVING");
  EXPECT_EQ(rooms[0].number, "1.01");
  EXPECT_EQ(rooms[0].statedArea, std::optional<double>(10.5));
  EXPECT_EQ(rooms[1].name, "C1815");
  EXPECT_EQ(rooms[1].number, "");
  EXPECT_EQ(rooms[1].statedArea, std::nullopt);
}

TEST(RoomNames, TheOrderOfTextsDoesNotMatter) {
  std::vector<Room> rooms = twoRooms();
  nameRooms(rooms, {{{2000, 1500}, 100, "b"}, {{2000, 1500}, 100, "a"}});
  EXPECT_EQ(rooms[0].name, "a");
  nameRooms(rooms, {{{2000, 1500}, 100, "a"}, {{2000, 1500}, 100, "b"}});
  EXPECT_EQ(rooms[0].name, "a");
}

}  // namespace
}  // namespace quoin::plan
