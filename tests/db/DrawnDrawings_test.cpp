// Whole drawings drawn: every kind has a way to show itself or a reason not to, and what an entity
// shows lies where its extents say.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <set>
#include <string>

#include "embedded/db/geometry/UndrawnKinds.h"
#include "embedded/os/Utf8.h"
#include "support/DrawnText.h"
#include "support/SharedData.h"

namespace quoin::test {
namespace {

TEST(DrawnKinds, EveryKindShowsItselfOrHasAReasonNotTo) {
  const std::map<std::string, std::string> reasons{
      {"VERTEX", "is drawn by its polyline"},
      {"SEQEND", "ends the parts of an entity"},
      {"SHAPE", "its figure stands in another file"},
      {"OLEFRAME", "its record says nothing about its place"},
      {"REGION", "its geometry is the text of a solid modeler"},
      {"BODY", "its geometry is the text of a solid modeler"},
      {"3DSOLID", "its geometry is the text of a solid modeler"},
      {"SURFACE", "its geometry is the text of a solid modeler"},
      {"EXTRUDEDSURFACE", "its geometry is the text of a solid modeler"},
      {"LOFTEDSURFACE", "its geometry is the text of a solid modeler"},
      {"REVOLVEDSURFACE", "its geometry is the text of a solid modeler"},
      {"SWEPTSURFACE", "its geometry is the text of a solid modeler"},
      {"PLANESURFACE", "its geometry is the text of a solid modeler"},
  };
  std::set<std::string> undrawn;
  for (const std::string& kind : db::undrawnKinds()) {
    undrawn.insert(kind);
    EXPECT_EQ(reasons.count(kind), 1u) << kind << " has no function that draws it";
  }
  for (const auto& [kind, reason] : reasons) {
    EXPECT_EQ(undrawn.count(kind), 1u) << kind << " " << reason << ", but is drawn";
  }
}

/// How far what an entity shows may lie outside of its extents, over their size, by its kind: the
/// extents of some kinds are known not to be exact. A kind that is not named here may not at all.
double allowance(const std::wstring& kind) {
  const std::map<std::wstring, double> kinds{
      // Extents take letters as wide as on average and lines as high as the first one.
      {L"TEXT", 0.3},
      {L"ATTDEF", 0.3},
      {L"MTEXT", 1.0},
      {L"MULTILEADER", 1.0},
      // Blocks hold such texts.
      {L"INSERT", 0.3},
      {L"ACAD_TABLE", 0.3},
      // So do these, and the points that define them, whose signs have a size of their own.
      {L"DIMENSION", 1.0},
      {L"ARC_DIMENSION", 1.0},
      {L"LARGE_RADIAL_DIMENSION", 1.0},
      // The corners of wide segments are mitred, and extents know none.
      {L"LWPOLYLINE", 0.5},
      {L"POLYLINE", 0.5},
      // Extents take rows behind line ends as one.
      {L"TOLERANCE", 1.0},
      // The frame is measured without what it shows.
      {L"VIEWPORT", 1e9},
  };
  const auto found = kinds.find(kind);
  return found == kinds.end() ? 1e-6 : found->second;
}

void expectInside(const std::filesystem::path& path, const wchar_t* block) {
  AcDbDatabase database(false, true);
  ASSERT_EQ(database.readDwgFile(path.wstring().c_str()), Acad::eOk) << path;
  const DrawnSpace space(database, {}, block);
  EXPECT_FALSE(space.report.isStopped);
  EXPECT_EQ(space.report.framed, 0u) << path;
  for (const auto& [handle, box] : space.sink.boxes) {
    AcDbObjectId id;
    database.getAcDbObjectId(id, false, AcDbHandle(handle));
    const std::wstring kind = hostx::kindName(id);
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    AcDbExtents extents;
    const bool isMeasured =
        entity.openStatus() == Acad::eOk && entity->getGeomExtents(extents) == Acad::eOk;
    // A point counts as its place, whatever its sign.
    if (!isMeasured || kind == L"POINT") {
      continue;
    }
    const double size = (extents.maxPoint() - extents.minPoint()).length();
    const double most = allowance(kind) * size + 1e-9;
    for (unsigned int axis = 0; axis < 2; ++axis) {
      EXPECT_GE(box.minPoint()[axis], extents.minPoint()[axis] - most)
          << path << " " << os::toUtf8(kind) << " " << std::hex << handle;
      EXPECT_LE(box.maxPoint()[axis], extents.maxPoint()[axis] + most)
          << path << " " << os::toUtf8(kind) << " " << std::hex << handle;
    }
  }
}

TEST(DrawnDrawings, WhatAnEntityShowsLiesInItsExtents) {
  const std::filesystem::path examples = std::filesystem::path(QUOIN_SOURCE_DIR) / "examples";
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(examples)) {
    if (entry.path().extension() == ".dxf") {
      expectInside(entry.path(), ACDB_MODEL_SPACE);
      expectInside(entry.path(), ACDB_PAPER_SPACE);
      ++count;
    }
  }
  EXPECT_GT(count, 0u);
}

TEST(DrawnDrawings, SoDoThoseOfOthers) {
  for (const std::filesystem::path& path : sharedFiles(".dxf")) {
    expectInside(path, ACDB_MODEL_SPACE);
    expectInside(path, ACDB_PAPER_SPACE);
  }
}

}  // namespace
}  // namespace quoin::test
