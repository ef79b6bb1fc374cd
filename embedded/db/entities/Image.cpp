// IMAGE and WIPEOUT: pictures, and areas that hide what lies behind them.
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using dxf::Version;
using enum Meaning;

Acad::ErrorStatus extentsOfImage(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                 AcDbExtents& box) {
  constexpr int kCorner = 10;
  constexpr int kPixelX = 11;
  constexpr int kPixelY = 12;
  constexpr int kSize = 13;
  constexpr int kBoundaryPoint = 14;
  constexpr int kIsClipped = 280;
  constexpr int kIsOutside = 290;
  const TagList& tags = entity.tags;
  const bool isWipeout = dxf::trimmedValue(tags[0]) == "WIPEOUT";
  const TagRange range = tags.subclass(isWipeout ? "AcDbWipeout" : "AcDbRasterImage");
  const AcGePoint3d corner = tags.point(kCorner, range);
  const AcGeVector3d u = tags.point(kPixelX, range, {1.0, 0.0, 0.0}).asVector();
  const AcGeVector3d v = tags.point(kPixelY, range, {0.0, 1.0, 0.0}).asVector();
  const AcGePoint3d size = tags.point(kSize, range, {1.0, 1.0, 0.0});
  const bool isClipped =
      (isWipeout || tags.integer(kIsClipped, range, 0) != 0) && !tags.integer(kIsOutside, range, 0);
  const std::vector<AcGePoint3d> boundary =
      isClipped ? pointsOf(tags, kBoundaryPoint, range) : std::vector<AcGePoint3d>();
  // Boundaries count pixels from the middle of the upper left one, downwards; what lies
  // between two corners is a rectangle.
  AcDbExtents pixels;
  AcGeMatrix3d frame;
  frame.setCoordSystem(corner, u, v, AcGeVector3d::kZAxis);
  const AcGeMatrix3d toPicture = toWorld * frame;
  constexpr double kHalfPixel = 0.5;
  for (const AcGePoint3d& point : boundary) {
    const AcGePoint3d place(point.x + kHalfPixel, size.y - kHalfPixel - point.y, 0.0);
    pixels.addPoint(place);
    if (boundary.size() > 2) {
      box.addPoint(toPicture * place);
    }
  }
  if (boundary.empty()) {
    addRectangle(0.0, 0.0, size.x, size.y, toPicture, box);
  } else if (boundary.size() <= 2) {
    addRectangle(pixels.minPoint().x, pixels.minPoint().y, pixels.maxPoint().x, pixels.maxPoint().y,
                 toPicture, box);
  }
  return Acad::eOk;
}

// The clip boundary (14) counts in pixels.
constexpr std::array kImageRules{Rule{"AcDbRasterImage", 10, Point},
                                 Rule{"AcDbRasterImage", 11, Displacement},
                                 Rule{"AcDbRasterImage", 12, Displacement}};
constexpr std::array kWipeoutRules{Rule{"AcDbWipeout", 10, Point},
                                   Rule{"AcDbWipeout", 11, Displacement},
                                   Rule{"AcDbWipeout", 12, Displacement},
                                   Rule{"AcDbRasterImage", 10, Point},
                                   Rule{"AcDbRasterImage", 11, Displacement},
                                   Rule{"AcDbRasterImage", 12, Displacement}};
constexpr TransformSchema kImageSchema{.isAffine = true, .rules = kImageRules};
constexpr TransformSchema kWipeoutSchema{.isAffine = true, .rules = kWipeoutRules};

constexpr std::array kKinds{
    RecordKind{.name = "IMAGE",
               .since = Version::R14,
               .ownCodes = kNoOwnCodes,
               .extents = extentsOfImage,
               .schema = &kImageSchema},
    RecordKind{.name = "WIPEOUT",
               .since = Version::R2000,
               .ownCodes = kNoOwnCodes,
               .extents = extentsOfImage,
               .schema = &kWipeoutSchema},
};

}  // namespace

const std::span<const RecordKind> kImageRows{kKinds};

}  // namespace quoin::db
