// MULTILEADER: values, extents and transforms.
#include <gtest/gtest.h>

#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(EntityExtents, OfAMultileaderWithLinesAndDogleg) {
  expectBox(
      Measured(entityText("MULTILEADER", "AcDbMLeader",
                          "300 CONTEXT_DATA{\n40 1\n" + point(10, 9, 9) +
                              "41 1\n140 0\n290 0\n"
                              "296 0\n302 LEADER{\n290 1\n291 1\n" +
                              point(10, 4, 3) + point(11, 1, 0) + "90 0\n40 2\n304 LEADER_LINE{\n" +
                              point(10, 0, 0) + "91 0\n305 }\n271 0\n303 }\n301 }\n170 1\n")),
      {0, 0, 0}, {6, 3, 0});
}

TEST(EntityExtents, OfAMultileaderWithoutLinesIsNothing) {
  // The 170 inside the context is another one.
  EXPECT_EQ(
      Measured(entityText("MULTILEADER", "AcDbMLeader",
                          "300 CONTEXT_DATA{\n40 1\n170 1\n290 0\n296 0\n302 LEADER{\n"
                          "304 LEADER_LINE{\n" +
                              point(10, 0, 0) + point(10, 4, 0) + "305 }\n303 }\n301 }\n170 0\n"))
          .status,
      Acad::eNullExtents);
}

}  // namespace
}  // namespace quoin::test
