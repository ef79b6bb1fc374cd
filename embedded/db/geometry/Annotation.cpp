#include "embedded/db/geometry/Annotation.h"

#include "embedded/db/core/Blocks.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/SplineDraw.h"

namespace quoin::db {
namespace {

constexpr int kStyleName = 3;
constexpr double kHalfArrowWidth = 1.0 / 6.0;  // over the length

}  // namespace

double dimensionVariable(const Drawn& entity, TagRange range, int code, double otherwise) {
  constexpr int kInteger = 1070;
  constexpr int kReal = 1040;
  const TagList& tags = entity.tags;
  // Overrides stand as pairs of group code and value.
  const TagRange overrides = tags.xData(L"ACAD");
  for (std::size_t i = overrides.first; i + 1 < overrides.last; ++i) {
    if (tags[i].code != kInteger) {
      continue;
    }
    const bool isOfCode = tags.integerAt(i) == code;
    ++i;
    if (isOfCode && tags[i].code == kReal) {
      return tags.doubleAt(i);
    }
    if (isOfCode && tags[i].code == kInteger) {
      return static_cast<double>(tags.integerAt(i));
    }
  }
  const std::wstring name = tags.text(kStyleName, range).value_or(L"Standard");
  const AcDbStub* const style =
      entity.database ? entity.database->record(TableKind::DimStyle, name) : nullptr;
  if (!style) {
    return otherwise;
  }
  const TagList styleTags = entity.database->tagsOf(*style);
  return styleTags.number(code, styleTags.subclass("AcDbDimStyleTableRecord"), otherwise);
}

double scaledVariable(const Drawn& entity, TagRange range, int code, double otherwise) {
  constexpr int kScale = 40;
  const double scale = dimensionVariable(entity, range, kScale, 1.0);
  // The scale 0 stands for that of the view, which an entity does not know.
  return dimensionVariable(entity, range, code, otherwise) * (scale > 0.0 ? scale : 1.0);
}

AcGeMatrix3d frameAt(const AcGePoint3d& origin, const AcGeVector3d& along,
                     const AcGeVector3d& normal) {
  const AcGeVector3d up = normal.length() > 0.0 ? normal.normal() : AcGeVector3d::kZAxis;
  const AcGeVector3d x = along.length() > 0.0 ? along.normal() : AcGeVector3d::kXAxis;
  AcGeMatrix3d frame;
  frame.setCoordSystem(origin, x, up.crossProduct(x), up);
  return frame;
}

const dxf::Block* blockWithHandle(const Drawn& entity, std::uint64_t handle) {
  const AcDbStub* const record = entity.database ? entity.database->byHandle(handle) : nullptr;
  return record ? entity.database->store.blockOf(*record) : nullptr;
}

const dxf::Block* blockOf(const Drawn& entity, int code, TagRange range) {
  const std::wstring name = entity.tags.text(code, range).value_or(std::wstring());
  return entity.database && !name.empty() ? blockNamed(*entity.database, name) : nullptr;
}

const dxf::Block* anonymousBlock(DatabaseImpl& database, const TagList& tags, TagRange range) {
  const std::wstring name = tags.text(code::kName, range).value_or(L"");
  return !name.empty() && name.front() == L'*' ? blockNamed(database, name) : nullptr;
}

std::optional<AcGeMatrix3d> arrowFrame(const Arrow& arrow, std::span<const AcGePoint3d> points) {
  if (points.size() < 2) {
    return std::nullopt;
  }
  const AcGeVector3d along = points[1] - points[0];
  // A piece that has no room for an arrow is drawn without one.
  if (!(arrow.size > 0.0) || along.length() < 2.0 * arrow.size) {
    return std::nullopt;
  }
  return frameAt(points[0], -along, arrow.normal);
}

void addArrow(const Arrow& arrow, std::span<const AcGePoint3d> points, const AcGeMatrix3d& toWorld,
              ExtentsWalk& walk, AcDbExtents& box) {
  const std::optional<AcGeMatrix3d> frame = arrowFrame(arrow, points);
  if (!frame) {
    return;
  }
  if (arrow.block) {
    walk.show(*arrow.block, toWorld * *frame * AcGeMatrix3d().setToScaling(arrow.size));
    return;
  }
  for (const double side : {-kHalfArrowWidth, kHalfArrowWidth}) {
    box.addPoint(toWorld * (*frame * AcGePoint3d(-arrow.size, side * arrow.size, 0.0)));
  }
}

void drawArrow(const Arrow& arrow, std::span<const AcGePoint3d> points, const AcGeMatrix3d& toWorld,
               DrawWalk& walk) {
  const std::optional<AcGeMatrix3d> frame = arrowFrame(arrow, points);
  if (!frame) {
    return;
  }
  if (arrow.block) {
    walk.show(*arrow.block, toWorld * *frame * AcGeMatrix3d().setToScaling(arrow.size));
    return;
  }
  const AcGeMatrix3d place = toWorld * *frame;
  const AcGePoint3d corners[] = {
      place * AcGePoint3d(), place * AcGePoint3d(-arrow.size, -kHalfArrowWidth * arrow.size, 0.0),
      place * AcGePoint3d(-arrow.size, kHalfArrowWidth * arrow.size, 0.0)};
  walk.fill(polygonPath(corners, true));
}

hostx::DrawPath leaderPath(const std::vector<AcGePoint3d>& points, bool isCurved,
                           const AcGeMatrix3d& toWorld, const DrawWalk& walk) {
  if (isCurved && points.size() > 2) {
    return fitSplinePath(points, points[1] - points[0], points.back() - points[points.size() - 2],
                         toWorld, walk);
  }
  std::vector<AcGePoint3d> shown;
  shown.reserve(points.size());
  for (const AcGePoint3d& point : points) {
    shown.push_back(toWorld * point);
  }
  return polygonPath(shown, false);
}

const dxf::Block* arrowBlockOf(const Drawn& entity, TagRange range) {
  constexpr int kArrowBlock = 341;
  constexpr int kInteger = 1070;
  constexpr int kReference = 1005;
  const TagList& tags = entity.tags;
  const TagRange overrides = tags.xData(L"ACAD");
  for (std::size_t i = overrides.first; i + 1 < overrides.last; ++i) {
    if (tags[i].code == kInteger && tags.integerAt(i) == kArrowBlock &&
        tags[i + 1].code == kReference) {
      return blockWithHandle(entity, tags.handleAt(i + 1));
    }
  }
  const std::wstring name = tags.text(kStyleName, range).value_or(L"Standard");
  const AcDbStub* const style =
      entity.database ? entity.database->record(TableKind::DimStyle, name) : nullptr;
  if (!style) {
    return nullptr;
  }
  const TagList styleTags = entity.database->tagsOf(*style);
  return blockWithHandle(
      entity, styleTags.handle(kArrowBlock, styleTags.subclass("AcDbDimStyleTableRecord")));
}

void addLeaderLine(const std::vector<AcGePoint3d>& points, bool isCurved,
                   const AcGeMatrix3d& toWorld, AcDbExtents& box) {
  if (isCurved && points.size() > 2) {
    addFitSpline(points, points[1] - points[0], points.back() - points[points.size() - 2], toWorld,
                 box);
    return;
  }
  for (const AcGePoint3d& point : points) {
    box.addPoint(toWorld * point);
  }
}

}  // namespace quoin::db
