#include "commands/picture/DrawList.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/DrawPaths.h"

namespace quoin::commands {
namespace {

using test::lineOf;

constexpr double kPi = 3.14159265358979323846;

hostx::DrawPath arcOf(double radius, double start, double sweep) {
  hostx::DrawPath path;
  path.start = {radius * std::cos(start), radius * std::sin(start), 0.0};
  hostx::DrawPiece piece;
  piece.kind = hostx::DrawPiece::Kind::Arc;
  piece.u = {radius, 0.0, 0.0};
  piece.v = {0.0, radius, 0.0};
  piece.start = start;
  piece.sweep = sweep;
  path.pieces.push_back(piece);
  return path;
}

TEST(DrawList, KeepsPrimitivesInTheirOrder) {
  DrawList list;
  list.stroke(lineOf({0, 0, 0}, {10, 5, 7}), {});
  hostx::DrawText text;
  text.text = L"A";
  text.position = {20, 0, 0};
  text.along = {1, 0, 0};
  text.up = {0, 2, 0};
  text.width = 3.0;
  list.text(text, {});
  list.fill({lineOf({1, 1, 0}, {2, 2, 0})}, {});
  DrawList::Reader reader(list);
  ASSERT_TRUE(reader.next());
  EXPECT_EQ(reader.kind(), DrawList::Kind::Stroke);
  ASSERT_EQ(reader.path().verbCount, 2u);
  EXPECT_EQ(reader.path().numbers[2], 10.0);
  ASSERT_TRUE(reader.next());
  EXPECT_EQ(reader.text().text, "A");
  ASSERT_TRUE(reader.next());
  EXPECT_EQ(reader.kind(), DrawList::Kind::Fill);
  EXPECT_EQ(reader.path().numbers[0], 1.0);
  EXPECT_FALSE(reader.next());
}

TEST(DrawList, ExtentsHoldTextsAndTheBulgesOfArcs) {
  DrawList list;
  list.stroke(arcOf(5.0, 0.25 * kPi, 0.5 * kPi), {});
  EXPECT_NEAR(list.extents().maxY, 5.0, 1e-12);
  EXPECT_NEAR(list.extents().minY, 5.0 * std::sqrt(0.5), 1e-12);
  hostx::DrawText text;
  text.text = L"wide";
  text.position = {100, 0, 0};
  text.along = {1, 0, 0};
  text.up = {0, 2, 0};
  text.alongShare = 0.5;
  text.width = 30.0;
  list.text(text, {});
  EXPECT_EQ(list.extents().maxX, 115.0);
}

TEST(DrawList, BoxesOfArcsHoldTheirPoints) {
  for (double start = -7.0; start < 7.0; start += 0.37) {
    for (double sweep = -6.2; sweep < 6.3; sweep += 0.41) {
      const double numbers[] = {3.0, -2.0, 4.0, 1.0, -0.5, 2.0, start, sweep};
      const Box box = boxOfArc(numbers);
      double reach = -std::numeric_limits<double>::infinity();
      for (int i = 0; i <= 500; ++i) {
        const double angle = start + sweep * i / 500;
        const double x = 3.0 + 4.0 * std::cos(angle) - 0.5 * std::sin(angle);
        const double y = -2.0 + std::cos(angle) + 2.0 * std::sin(angle);
        EXPECT_TRUE(box.grownBy(1e-9).contains(x, y));
        reach = std::max(reach, x);
      }
      EXPECT_NEAR(box.maxX, reach, 1e-3);
    }
  }
}

TEST(DrawList, NumbersThatAreNotFiniteAreLeftOut) {
  DrawList list;
  const double bad = std::numeric_limits<double>::quiet_NaN();
  list.stroke(lineOf({bad, 0, 0}, {1, 1, 0}), {});
  EXPECT_TRUE(list.isEmpty());
}

TEST(DrawList, EqualLooksAreKeptOnce) {
  DrawList list;
  hostx::DrawLook red;
  red.color = {255, 0, 0, false};
  red.dashes = {1.0, -1.0};
  for (int i = 0; i < 10; ++i) {
    list.stroke(lineOf({0, 0, 0}, {1, 1, 0}), {});
    list.stroke(lineOf({0, 0, 0}, {1, 1, 0}), red);
  }
  EXPECT_EQ(list.looks().size(), 2u);
}

TEST(DrawList, WhatIsClippedReachesNoFartherThanTheClip) {
  DrawList list;
  hostx::DrawPath frame = lineOf({0, 0, 0}, {10, 0, 0});
  frame.pieces.push_back({});
  frame.pieces.back().end = {10, 10, 0};
  frame.isClosed = true;
  list.beginClip(frame);
  list.stroke(lineOf({-50, 5, 0}, {50, 5, 0}), {});
  list.endClip();
  EXPECT_EQ(list.extents().minX, 0.0);
  EXPECT_EQ(list.extents().maxX, 10.0);
}

}  // namespace
}  // namespace quoin::commands
