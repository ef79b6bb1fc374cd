// OLE2FRAME and OLEFRAME: objects of other programs in a frame.
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/EntityGeometry.h"

namespace quoin::db {
namespace {

using dxf::Version;

constexpr int kCorner = 10;
constexpr int kOtherCorner = 11;

Acad::ErrorStatus extentsOfOleFrame(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                    AcDbExtents& box) {
  const TagRange range = entity.tags.subclass("AcDbOle2Frame");
  if (entity.tags.find(kCorner, range) == TagList::kNone) {
    return Acad::eOk;
  }
  AcDbExtents corners;
  corners.addPoint(entity.tags.point(kCorner, range));
  corners.addPoint(entity.tags.point(kOtherCorner, range));
  corners.transformBy(toWorld);
  box.addExt(corners);
  return Acad::eOk;
}

/// The object itself is another program's: its frame is drawn.
void drawOleFrame(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  const TagRange range = entity.tags.subclass("AcDbOle2Frame");
  if (entity.tags.find(kCorner, range) == TagList::kNone) {
    walk.leaveOut(L"OLE2FRAME");
    return;
  }
  const AcGePoint3d corner = entity.tags.point(kCorner, range);
  const AcGePoint3d other = entity.tags.point(kOtherCorner, range);
  walk.strokePlain(rectanglePath(corner.x, corner.y, other.x, other.y, toWorld));
}

constexpr std::array kKinds{
    RecordKind{.name = "OLE2FRAME",
               .since = Version::R14,
               .ownCodes = kNoOwnCodes,
               .extents = extentsOfOleFrame,
               .draw = drawOleFrame},
    RecordKind{.name = "OLEFRAME", .since = Version::R13, .ownCodes = kNoOwnCodes},
};

}  // namespace

const std::span<const RecordKind> kOleFrameRows{kKinds};

}  // namespace quoin::db
