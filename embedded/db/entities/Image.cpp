// IMAGE and WIPEOUT: pictures, and areas that hide what lies behind them.
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/TransformSchema.h"

namespace quoin::db {
namespace {

using dxf::Version;
using enum Meaning;

bool isWipeout(const TagList& tags) {
  return dxf::trimmedValue(tags[0]) == "WIPEOUT";
}
TagRange rangeOf(const TagList& tags) {
  return tags.subclass(isWipeout(tags) ? "AcDbWipeout" : "AcDbRasterImage");
}

/// Where an image stands.
struct ImagePlace {
  AcGeMatrix3d toPicture;  // from its pixels, counted from the lower left corner
  AcGePoint3d size;        // in pixels
  /// Corners of what shows, world: of the whole image where nothing clips it.
  std::vector<AcGePoint3d> corners;
  bool isClipped = false;
};

ImagePlace placeOf(const TagList& tags, const AcGeMatrix3d& toWorld) {
  constexpr int kCorner = 10;
  constexpr int kPixelX = 11;
  constexpr int kPixelY = 12;
  constexpr int kSize = 13;
  constexpr int kBoundaryPoint = 14;
  constexpr int kIsClipped = 280;
  constexpr int kIsOutside = 290;
  const TagRange range = rangeOf(tags);
  const AcGePoint3d corner = tags.point(kCorner, range);
  const AcGeVector3d u = tags.point(kPixelX, range, {1.0, 0.0, 0.0}).asVector();
  const AcGeVector3d v = tags.point(kPixelY, range, {0.0, 1.0, 0.0}).asVector();
  const AcGePoint3d size = tags.point(kSize, range, {1.0, 1.0, 0.0});
  const bool isClipped = (isWipeout(tags) || tags.integer(kIsClipped, range, 0) != 0) &&
                         !tags.integer(kIsOutside, range, 0);
  const std::vector<AcGePoint3d> boundary =
      isClipped ? pointsOf(tags, kBoundaryPoint, range) : std::vector<AcGePoint3d>();
  // Boundaries count pixels from the middle of the upper left one, downwards; what lies
  // between two corners is a rectangle.
  AcDbExtents pixels;
  AcGeMatrix3d frame;
  frame.setCoordSystem(corner, u, v, AcGeVector3d::kZAxis);
  ImagePlace place;
  place.toPicture = toWorld * frame;
  place.size = size;
  place.isClipped = !boundary.empty();
  constexpr double kHalfPixel = 0.5;
  for (const AcGePoint3d& point : boundary) {
    const AcGePoint3d pixel(point.x + kHalfPixel, size.y - kHalfPixel - point.y, 0.0);
    pixels.addPoint(pixel);
    if (boundary.size() > 2) {
      place.corners.push_back(place.toPicture * pixel);
    }
  }
  const auto addRing = [&](double left, double bottom, double right, double top) {
    for (const AcGePoint3d& pixel :
         {AcGePoint3d(left, bottom, 0.0), AcGePoint3d(right, bottom, 0.0),
          AcGePoint3d(right, top, 0.0), AcGePoint3d(left, top, 0.0)}) {
      place.corners.push_back(place.toPicture * pixel);
    }
  };
  if (boundary.empty()) {
    addRing(0.0, 0.0, size.x, size.y);
  } else if (boundary.size() <= 2) {
    addRing(pixels.minPoint().x, pixels.minPoint().y, pixels.maxPoint().x, pixels.maxPoint().y);
  }
  return place;
}

Acad::ErrorStatus extentsOfImage(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                 AcDbExtents& box) {
  for (const AcGePoint3d& corner : placeOf(entity.tags, toWorld).corners) {
    box.addPoint(corner);
  }
  return Acad::eOk;
}

/// The file that an image names by its definition.
std::wstring pathOf(const Drawn& entity) {
  constexpr int kDefinition = 340;
  constexpr int kPath = 1;
  const AcDbStub* const definition =
      entity.database
          ? entity.database->byHandle(entity.tags.handle(kDefinition, rangeOf(entity.tags)))
          : nullptr;
  if (!definition) {
    return {};
  }
  const TagList tags = entity.database->tagsOf(*definition);
  return tags.text(kPath, tags.subclass("AcDbRasterImageDef")).value_or(std::wstring());
}

void drawImage(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  constexpr int kDisplay = 70;
  constexpr std::int64_t kIsShown = 1;
  ImagePlace place = placeOf(entity.tags, toWorld);
  if (!(entity.tags.integer(kDisplay, rangeOf(entity.tags), kIsShown) & kIsShown)) {
    walk.strokePlain(polygonPath(place.corners, true));
    return;
  }
  hostx::DrawImage image;
  image.origin = place.toPicture * AcGePoint3d();
  image.u = place.toPicture * (AcGeVector3d::kXAxis * place.size.x);
  image.v = place.toPicture * (AcGeVector3d::kYAxis * place.size.y);
  image.path = pathOf(entity);
  if (place.isClipped) {
    image.clip = std::move(place.corners);
  }
  walk.image(image);
}

/// Whether the drawing shows the frames of its wipeouts.
bool hasWipeoutFrames(DatabaseImpl& database) {
  const AcDbStub* const root = database.rootDictionary();
  const AcDbStub* const variables =
      root ? database.dictionaryEntry(*root, L"ACAD_WIPEOUT_VARS") : nullptr;
  if (!variables) {
    return false;
  }
  const TagList tags = database.tagsOf(*variables);
  return tags.integer(code::kFlags, tags.body(), 0) != 0;
}

void drawWipeout(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  const DrawPath frame = polygonPath(placeOf(entity.tags, toWorld).corners, true);
  walk.wipe(frame);
  if (entity.database && hasWipeoutFrames(*entity.database)) {
    walk.strokePlain(frame);
  }
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
               .draw = drawImage,
               .schema = &kImageSchema},
    RecordKind{.name = "WIPEOUT",
               .since = Version::R2000,
               .ownCodes = kNoOwnCodes,
               .extents = extentsOfImage,
               .draw = drawWipeout,
               .schema = &kWipeoutSchema},
};

}  // namespace

const std::span<const RecordKind> kImageRows{kKinds};

}  // namespace quoin::db
