// The arrangement of end points in columns; what a search finds there is tested with the index.
#include "EndPointColumns.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/LineRecords.h"

namespace {

using quoin::test::linesOf;
using quoin::test::pointersTo;

TEST(EndPointColumns, RenumberedEveryLineHasAnIndexAndEveryEndItsLines) {
  auto lines = linesOf("500,0 0,0; 0,0 0,500; 100,100 900,900; 7,7 8,8");
  lines[1].ptStart.x = std::nan("");
  lines[3].ptEnd.x = std::nan("");
  CEndPointColumns columns(pointersTo(lines), 10.0, CEndPointColumns::eForPoints);
  std::vector<std::uint32_t> indices;
  std::vector<std::size_t> inOrder;
  columns.Renumber(indices, lines.size(), [&](std::size_t line) { inOrder.push_back(line); });
  ASSERT_EQ(inOrder.size(), 4U);
  for (std::uint32_t index = 0; index < 4; ++index) {
    EXPECT_EQ(indices[inOrder[index]], index);
  }
  EXPECT_EQ(inOrder.back(), 1U) << "the line without a start comes last";
  std::uint32_t next = 0;
  std::size_t ends = 0;
  for (std::size_t column = 0; column < columns.ColumnCount(); ++column) {
    for (const CEndPointColumns::End& end : columns.EndsOfColumn(column)) {
      const WallLineLikeSeg& line = lines[inOrder[end.Line()]];
      EXPECT_EQ(end.x, end.IsStart() ? line.ptStart.x : line.ptEnd.x);
      if (end.IsStart()) {
        EXPECT_EQ(end.Line(), next++);
      }
      ++ends;
    }
  }
  EXPECT_EQ(ends, 6U);
}

}  // namespace
