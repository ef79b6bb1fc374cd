// VIEWPORT: a window of a layout onto model space.
#include <cmath>
#include <utility>
#include <vector>

#include "embedded/db/core/PlaneFields.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using enum Meaning;

Acad::ErrorStatus extentsOfViewport(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                    AcDbExtents& box) {
  constexpr int kCenter = 10;
  constexpr int kWidth = 40;
  constexpr int kHeight = 41;
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbViewport");
  const AcGePoint3d center = tags.point(kCenter, range);
  const AcGeVector3d half(0.5 * tags.number(kWidth, range, 0.0),
                          0.5 * tags.number(kHeight, range, 0.0), 0.0);
  const AcGePoint3d low = center - half;
  const AcGePoint3d high = center + half;
  AcGeMatrix3d toPlane;
  toPlane.setToTranslation(AcGeVector3d(0.0, 0.0, center.z));
  addRectangle(low.x, low.y, high.x, high.y, toWorld * toPlane, box);
  return Acad::eOk;
}

/// Keeps the first path that an entity shows.
class OutlineSink : public hostx::DrawSink {
 public:
  DrawPath outline;
  void stroke(const DrawPath& path, const hostx::DrawLook&) override {
    if (outline.pieces.empty()) {
      outline = path;
      outline.isClosed = true;
    }
  }
  void fill(const std::vector<DrawPath>&, const hostx::DrawLook&) override {}
  void wipe(const DrawPath&) override {}
  void text(const hostx::DrawText&, const hostx::DrawLook&) override {}
  void image(const hostx::DrawImage&, const hostx::DrawLook&) override {}
};

/// From model space to the sheet.
AcGeMatrix3d viewOf(const TagList& tags, TagRange range, double scale) {
  constexpr int kCenter = 10;
  constexpr int kViewCenter = 12;
  constexpr int kDirection = 16;
  constexpr int kTarget = 17;
  constexpr int kTwist = 51;
  const AcGeVector3d direction = tags.point(kDirection, range, {0.0, 0.0, 1.0}).asVector();
  const AcGePoint3d viewCenter = tags.point(kViewCenter, range);
  const AcGePoint3d center = tags.point(kCenter, range);
  AcGeMatrix3d toTarget;
  toTarget.setToTranslation(AcGePoint3d::kOrigin - tags.point(kTarget, range));
  const AcGeMatrix3d toView =
      AcGeMatrix3d().setToRotation(toRadians(tags.number(kTwist, range, 0.0)),
                                   AcGeVector3d::kZAxis) *
      worldToPlane(direction.length() > 0.0 ? direction.normal() : AcGeVector3d::kZAxis) * toTarget;
  AcGeMatrix3d toMiddle;
  toMiddle.setToTranslation(AcGeVector3d(-viewCenter.x, -viewCenter.y, 0.0));
  AcGeMatrix3d toSheet;
  toSheet.setToTranslation(AcGeVector3d(center.x, center.y, 0.0));
  return toSheet * AcGeMatrix3d().setToScaling(scale) * toMiddle * toView;
}

/// The outline that a viewport is cut off by where that is no rectangle.
DrawPath outlineOf(const Drawn& entity, TagRange range, const DrawWalk& walk) {
  constexpr int kOutline = 340;
  OutlineSink sink;
  const AcDbStub* const outline = entity.database->byHandle(entity.tags.handle(kOutline, range));
  const bool isUsable = outline && entity.database->isEntity(*outline) &&
                        entity.database->kindOf(*outline) != "VIEWPORT";
  if (isUsable) {
    hostx::DrawOptions options = walk.options();
    options.isAllShown = true;
    DrawWalk(*entity.database, sink, options).drawEntity(*outline);
  }
  return sink.outline;
}

/// Its frame, where its layer shows, and in it what model space shows.
void drawViewport(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  constexpr int kCenter = 10;
  constexpr int kWidth = 40;
  constexpr int kHeight = 41;
  constexpr int kViewHeight = 45;
  constexpr int kStatus = 68;
  constexpr int kNumber = 69;
  constexpr int kFlags = 90;
  constexpr int kFrozenLayers[] = {331, 341};
  constexpr std::int64_t kIsCut = 0x10000;
  constexpr std::int64_t kIsOff = 0x20000;
  const TagList& tags = entity.tags;
  const TagRange range = tags.subclass("AcDbViewport");
  if (tags.integer(kNumber, range, 0) == 1 || walk.depth() > 0) {
    return;  // the sheet itself; and only sheets have windows
  }
  const AcGePoint3d center = tags.point(kCenter, range);
  const double height = tags.number(kHeight, range, 0.0);
  const AcGeVector3d half(0.5 * tags.number(kWidth, range, 0.0), 0.5 * height, 0.0);
  const AcGePoint3d low = center - half;
  const AcGePoint3d high = center + half;
  const std::int64_t flags = tags.integer(kFlags, range, 0);
  DrawWindow window;
  if (flags & kIsCut) {
    window.frame = outlineOf(entity, range, walk);
  }
  if (window.frame.pieces.empty()) {
    window.frame = rectanglePath(low.x, low.y, high.x, high.y, toWorld);
  }
  if (walk.isLayerShown()) {
    walk.strokePlain(window.frame);
  }
  const double scale = height / tags.number(kViewHeight, range, 0.0);
  const bool isOn = tags.integer(kStatus, range, 1) != 0 && !(flags & kIsOff);
  if (!isOn || !(scale > 0.0) || !std::isfinite(scale) || !isFinite(window.frame)) {
    return;
  }
  window.box.addPoint(toWorld * low);
  window.box.addPoint(toWorld * high);
  window.scale = scale;
  for (const int code : kFrozenLayers) {
    for (std::size_t at = tags.find(code, range); at != TagList::kNone;
         at = tags.find(code, range, at + 1)) {
      window.frozenLayers.push_back(tags.handleAt(at));
    }
  }
  walk.showWindow(entity.database->store.modelSpace(), toWorld * viewOf(tags, range, scale),
                  std::move(window));
}

constexpr std::array kRules{Rule{"AcDbViewport", 10, Point}, Rule{"AcDbViewport", 40, Length},
                            Rule{"AcDbViewport", 41, Length}};
constexpr TransformSchema kSchema{.rules = kRules};

constexpr std::array kOwnCodes{348};  // its visual style

constexpr std::array kKinds{
    RecordKind{.name = "VIEWPORT",
               .ownCodes = kOwnCodes,
               .extents = extentsOfViewport,
               .draw = drawViewport,
               .schema = &kSchema},
};

}  // namespace

const std::span<const RecordKind> kViewportRows{kKinds};

}  // namespace quoin::db
