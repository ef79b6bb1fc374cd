// How texts of one line are drawn, and what their records say.
#include <cmath>
#include <vector>

#include "embedded/db/core/PlaneFields.h"
#include "embedded/db/entities/MTextFields.h"
#include "embedded/db/entities/TextFields.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/TextDraw.h"
#include "embedded/db/geometry/TextMeasure.h"
#include "embedded/db/records/SubclassLayout.h"

namespace quoin::db {

using namespace text_code;

TextFields::TextFields(const TagList& tags) {
  const std::string_view kind = dxf::trimmedValue(tags[0]);
  const TagRange range = layout::kText.in(tags);
  const SubclassLayout& attribute =
      kind == "ATTDEF" ? layout::kAttributeDefinition : layout::kAttribute;
  // A definition shows its tag, not the text that it will be filled with.
  text = (kind == "ATTDEF" ? tags.text(code::kName, attribute.in(tags)) : tags.text(kString, range))
             .value_or(std::wstring());
  normal = normalOf(tags, range);
  position = tags.point(kPosition, range);
  alignment = tags.point(kAlignment, range, position);
  height = tags.number(kHeight, range, 0.0);
  widthFactor = tags.number(kWidthFactor, range, 1.0);
  rotation = toRadians(tags.number(kRotation, range, 0.0));
  oblique = toRadians(tags.number(kOblique, range, 0.0));
  generation = tags.integer(kGeneration, range, 0);
  horizontal = tags.integer(kHorizontal, range, 0);
  vertical = kind == "TEXT" ? tags.integer(kVertical, range, 0)
                            : tags.integer(kAttributeVertical, attribute.in(tags), 0);
  thickness = tags.number(code::kThickness, range, 0.0);
}

TextPlace placeOf(const TextFields& fields, double advance) {
  enum { kLeft, kCenter, kRight, kAligned, kMiddle, kFit };
  enum { kBase, kBottom, kMid, kTop };
  TextPlace place;
  place.width = advance;
  AcGePoint3d origin = fields.position;
  double rotation = fields.rotation;
  if (fields.horizontal == kAligned || fields.horizontal == kFit) {
    // The text fills the distance between its two points.
    const AcGeVector3d along = fields.alignment - fields.position;
    place.width = along.length();
    place.isFitted = place.width > 0.0;
    rotation = place.width > 0.0 ? std::atan2(along.y, along.x) : rotation;
  } else if (fields.horizontal != kLeft || fields.vertical != kBase) {
    origin = fields.alignment;
    const bool isMiddle = fields.horizontal == kMiddle;
    place.left = fields.horizontal == kRight                ? -place.width
                 : isMiddle || fields.horizontal == kCenter ? -0.5 * place.width
                                                            : 0.0;
    place.bottom = fields.vertical == kTop               ? -fields.height
                   : fields.vertical == kMid || isMiddle ? -0.5 * fields.height
                                                         : 0.0;
    place.alongShare = fields.horizontal == kRight                ? 1.0
                       : isMiddle || fields.horizontal == kCenter ? 0.5
                                                                  : 0.0;
    place.upShare = fields.vertical == kTop ? 1.0 : fields.vertical == kMid || isMiddle ? 0.5 : 0.0;
  }
  const double cosine = std::cos(rotation);
  const double sine = std::sin(rotation);
  const double flipX = fields.generation & TextFields::kBackwards ? -1.0 : 1.0;
  const double flipY = fields.generation & TextFields::kUpsideDown ? -1.0 : 1.0;
  place.line.setCoordSystem(origin, AcGeVector3d(cosine, sine, 0.0) * flipX,
                            AcGeVector3d(-sine, cosine, 0.0) * flipY, AcGeVector3d::kZAxis);
  return place;
}

void drawText(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  if (const auto lines = linesOf(entity.tags)) {
    drawMTextRecord({lines->tags(), entity.database, entity.stub, nullptr}, toWorld, walk);
    return;
  }
  drawFields(TextFields(entity.tags), entity.database, entity.tags, toWorld, walk);
}

std::unique_ptr<const EmbeddedMText> linesOf(const TagList& tags) {
  return dxf::trimmedValue(tags[0]) == "ATTRIB" ? EmbeddedMText::of(tags) : nullptr;
}

void drawFields(const TextFields& fields, DatabaseImpl* database, const TagList& tags,
                const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  const TextStyle style =
      textStyleOf(database, tags.text(kStyle, layout::kText.in(tags)).value_or(L"Standard"));
  const std::vector<TextRun> runs = runsOf(fields.text, *style.metrics);
  const TextPlace place = placeOf(fields, advanceOf(runs) * fields.height * fields.widthFactor);
  const AcGeMatrix3d line = toWorld * planeToWorld(fields.normal) * place.line;
  const AcGeVector3d x = line * AcGeVector3d::kXAxis;
  const AcGeVector3d y = line * AcGeVector3d::kYAxis;
  TextLine shown;
  shown.origin = line * AcGePoint3d();
  shown.along = x;
  shown.up = (y + x * std::tan(fields.oblique)) * fields.height;
  shown.width = place.width;
  shown.alongShare = place.alongShare;
  shown.upShare = place.upShare;
  drawLine(runs, style, shown, walk);
}

}  // namespace quoin::db
