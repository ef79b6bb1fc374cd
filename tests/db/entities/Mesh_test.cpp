// MESH: values, extents and transforms.
#include <gtest/gtest.h>

#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(EntityExtents, OfAMeshAreItsVertices) {
  expectBox(
      Measured(entityText("MESH", "AcDbSubDMesh",
                          "71 2\n72 0\n91 0\n92 3\n" + point(10, 0, 0, 1) + point(10, 2, 0, 0) +
                              point(10, 0, 3, -1) + "93 4\n90 3\n90 0\n90 1\n90 2\n")),
      {0, 0, -1}, {2, 3, 1});
}

}  // namespace
}  // namespace quoin::test
