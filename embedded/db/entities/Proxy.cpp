// ACAD_PROXY_ENTITY: an entity of a program that is not there, with a picture that it left.
#include <algorithm>
#include <cstring>
#include <string>

#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/EntityGeometry.h"

namespace quoin::db {
namespace {

using dxf::Version;

/// The picture that a program left of its own entity begins with its box, if it has one:
/// behind its size and count, pieces of a length, a kind and a body.
bool readBox(const TagList& tags, AcDbExtents& own) {
  constexpr int kGraphics = 310;
  constexpr std::int32_t kExtents = 1;
  constexpr std::size_t kHead = 2 * sizeof(std::int32_t);
  constexpr std::size_t kExtentsBytes = kHead + 6 * sizeof(double);
  const TagRange range = tags.subclass("AcDbProxyEntity");
  std::string graphics;
  for (std::size_t at = tags.find(kGraphics, range); at != TagList::kNone;
       at = tags.find(kGraphics, range, at + 1)) {
    graphics += dxf::binaryOf(tags[at], tags.format());
  }
  for (std::size_t at = kHead; at + kHead <= graphics.size();) {
    std::int32_t head[2];
    std::memcpy(head, graphics.data() + at, kHead);
    const auto length = static_cast<std::size_t>(std::max(head[0], 0));
    if (length < kHead || length > graphics.size() - at) {
      break;
    }
    if (head[1] == kExtents && length >= kExtentsBytes) {
      double ends[6];
      std::memcpy(ends, graphics.data() + at + kHead, sizeof ends);
      own.set({ends[0], ends[1], ends[2]}, {ends[3], ends[4], ends[5]});
      return true;
    }
    at += length;
  }
  return false;
}

Acad::ErrorStatus extentsOfProxy(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                 AcDbExtents& box) {
  AcDbExtents own;
  if (!readBox(entity.tags, own)) {
    return Acad::eNotApplicable;
  }
  own.transformBy(toWorld);
  box.addExt(own);
  return Acad::eOk;
}

void drawProxy(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  AcDbExtents own;
  if (!readBox(entity.tags, own) || own.isFresh()) {
    walk.leaveOut(L"ACAD_PROXY_ENTITY");
    return;
  }
  walk.strokePlain(rectanglePath(own.minPoint().x, own.minPoint().y, own.maxPoint().x,
                                 own.maxPoint().y, toWorld));
}

constexpr std::array kKinds{
    // It holds whatever its maker likes.
    RecordKind{.name = "ACAD_PROXY_ENTITY",
               .since = Version::R14,
               .extents = extentsOfProxy,
               .draw = drawProxy},
};

}  // namespace

const std::span<const RecordKind> kProxyRows{kKinds};

}  // namespace quoin::db
