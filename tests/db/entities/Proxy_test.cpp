// ACAD_PROXY_ENTITY: values, extents and transforms.
#include <gtest/gtest.h>

#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(EntityExtents, OfAProxyAreThoseOfItsPicture) {
  // Size 64, one piece: length 56, kind 1, corners (0, 0, 0) and (1, 2, 0).
  const std::string graphics =
      "4000000001000000"
      "3800000001000000"
      "0000000000000000"
      "0000000000000000"
      "0000000000000000"
      "000000000000F03F"
      "0000000000000040"
      "0000000000000000";
  expectBox(Measured(entityText("ACAD_PROXY_ENTITY", "AcDbProxyEntity",
                                "90 498\n91 500\n92 64\n310 " + graphics + "\n")),
            {0, 0, 0}, {1, 2, 0});
  EXPECT_EQ(Measured(entityText("ACAD_PROXY_ENTITY", "AcDbProxyEntity", "90 498\n91 500\n")).status,
            Acad::eNotApplicable);
}

TEST(EntityExtents, OfAProxyWithAPictureThatIsCutShort) {
  EXPECT_EQ(
      Measured(entityText("ACAD_PROXY_ENTITY", "AcDbProxyEntity",
                          "90 498\n91 500\n92 20\n310 1400000001000000380000000100000000000000\n"))
          .status,
      Acad::eNotApplicable);
}

}  // namespace
}  // namespace quoin::test
