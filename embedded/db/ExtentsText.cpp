// Extents of text, by the fonts of its styles, and of block references with all that
// they show.
#include <cmath>

#include "dbmtext.h"
#include "embedded/db/Blocks.h"
#include "embedded/db/EntityGeometry.h"
#include "embedded/db/MTextCodes.h"
#include "embedded/db/PlaneFields.h"
#include "embedded/os/CaseFold.h"

namespace quoin::db {
namespace {

constexpr int kPosition = 10;
constexpr int kAlignment = 11;

/// A box in a text's own axes, as seen through `toWorld`.
void addBox(double left, double bottom, double right, double top, const AcGeMatrix3d& toWorld,
            double slant, AcDbExtents& box) {
  for (const double y : {bottom, top}) {
    box.addPoint(toWorld * AcGePoint3d(left + y * slant, y, 0.0));
    box.addPoint(toWorld * AcGePoint3d(right + y * slant, y, 0.0));
  }
}

/// What a TEXT, ATTRIB or ATTDEF record says.
struct TextFields {
  explicit TextFields(const TagList& tags) {
    constexpr int kString = 1;
    constexpr int kHeight = 40;
    constexpr int kWidthFactor = 41;
    constexpr int kRotation = 50;
    constexpr int kOblique = 51;
    constexpr int kGeneration = 71;
    constexpr int kHorizontal = 72;
    constexpr int kVertical = 73;
    constexpr int kAttributeVertical = 74;
    const std::string_view kind = dxf::trimmedValue(tags[0]);
    const TagRange range = place::kText.in(tags);
    const Place& attribute = kind == "ATTDEF" ? place::kAttributeDefinition : place::kAttribute;
    // A definition shows its tag, not the text that it will be filled with.
    text =
        (kind == "ATTDEF" ? tags.text(code::kName, attribute.in(tags)) : tags.text(kString, range))
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

  std::wstring text;
  AcGeVector3d normal;
  AcGePoint3d position;
  AcGePoint3d alignment;
  double height = 0.0;
  double widthFactor = 1.0;
  double rotation = 0.0;
  double oblique = 0.0;
  std::int64_t generation = 0;
  std::int64_t horizontal = 0;
  std::int64_t vertical = 0;
  double thickness = 0.0;
};

}  // namespace

const text::Font& fontOf(DatabaseImpl* database, const TagList& text, TagRange range) {
  constexpr int kStyle = 7;
  constexpr int kFontFile = 3;
  const std::wstring name = text.text(kStyle, range).value_or(L"Standard");
  const AcDbStub* const style = database ? database->record(TableKind::TextStyle, name) : nullptr;
  if (!style) {
    return text::usualFont();
  }
  const TagList tags = database->tagsOf(*style);
  std::wstring file = tags.text(kFontFile, place::kTextStyle.in(tags)).value_or(L"");
  if (file.empty()) {
    // Styles of system fonts name the family in extended data.
    const TagRange data = tags.xData(L"ACAD");
    const std::size_t family = data.isEmpty() ? TagList::kNone : data.first + 1;
    constexpr int kText = 1000;
    if (family != TagList::kNone && family < data.last && tags[family].code == kText) {
      file = tags.textAt(family);
    }
  }
  return text::fontFor(file);
}

Acad::ErrorStatus extentsOfText(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                AcDbExtents& box) {
  constexpr std::int64_t kBackwards = 2;
  constexpr std::int64_t kUpsideDown = 4;
  enum { kLeft, kCenter, kRight, kAligned, kMiddle, kFit };
  enum { kBase, kBottom, kMid, kTop };
  const TextFields fields(entity.tags);
  double width =
      lineAdvance(fields.text, fontOf(entity.database, entity.tags, place::kText.in(entity.tags))) *
      fields.height * fields.widthFactor;
  AcGePoint3d origin = fields.position;
  double rotation = fields.rotation;
  double left = 0.0;
  double bottom = 0.0;
  if (fields.horizontal == kAligned || fields.horizontal == kFit) {
    // The text fills the distance between its two points.
    const AcGeVector3d course = fields.alignment - fields.position;
    width = course.length();
    rotation = width > 0.0 ? std::atan2(course.y, course.x) : rotation;
  } else if (fields.horizontal != kLeft || fields.vertical != kBase) {
    origin = fields.alignment;
    const bool isMiddle = fields.horizontal == kMiddle;
    left = fields.horizontal == kRight                ? -width
           : isMiddle || fields.horizontal == kCenter ? -0.5 * width
                                                      : 0.0;
    bottom = fields.vertical == kTop               ? -fields.height
             : fields.vertical == kMid || isMiddle ? -0.5 * fields.height
                                                   : 0.0;
  }
  const double cosine = std::cos(rotation);
  const double sine = std::sin(rotation);
  const double flipX = fields.generation & kBackwards ? -1.0 : 1.0;
  const double flipY = fields.generation & kUpsideDown ? -1.0 : 1.0;
  AcGeMatrix3d line;
  line.setCoordSystem(origin, AcGeVector3d(cosine, sine, 0.0) * flipX,
                      AcGeVector3d(-sine, cosine, 0.0) * flipY, AcGeVector3d::kZAxis);
  AcDbExtents shape;
  addBox(left, bottom, left + width, bottom + fields.height,
         toWorld * planeToWorld(fields.normal) * line, std::tan(fields.oblique), shape);
  box.addExt(shape);
  shape.expandBy(toWorld * (fields.normal * fields.thickness));
  box.addExt(shape);
  return Acad::eOk;
}

Acad::ErrorStatus extentsOfMText(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                 AcDbExtents& box) {
  constexpr int kAttachment = 71;
  const TagList& tags = entity.tags;
  const TagRange range = place::kMText.in(tags);
  const TextSize size = mtextSizeOf(tags, fontOf(entity.database, tags, range));
  const std::int64_t attachment = tags.integer(kAttachment, range, AcDbMText::kTopLeft);
  // The nine points run from the top left to the bottom right in rows of three.
  const std::int64_t place = attachment >= 1 && attachment <= 9 ? attachment - 1 : 0;
  const std::int64_t column = place % 3;
  const std::int64_t row = place / 3;
  const double left = -0.5 * static_cast<double>(column) * size.width;
  const double top = 0.5 * static_cast<double>(row) * size.height;
  const AcGeVector3d normal = normalOf(tags, range);
  const AcGeVector3d along = mtextDirectionOf(tags);
  AcGeMatrix3d frame;
  frame.setCoordSystem(tags.point(kPosition, range), along, normal.crossProduct(along).normal(),
                       normal);
  addBox(left, top - size.height, left + size.width, top, toWorld * frame, 0.0, box);
  return Acad::eOk;
}

Acad::ErrorStatus extentsOfReference(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                     ExtentsWalk& walk, AcDbExtents& box) {
  const ReferenceFields fields(entity.tags);
  const dxf::Block* const block =
      entity.database ? blockNamed(*entity.database, fields.name) : nullptr;
  if (block) {
    // All cells of an array lie between its four corner cells.
    const AcGePoint3d base = baseOf(*entity.database, *block);
    const std::int64_t lastColumn = fields.columns - 1;
    const std::int64_t lastRow = fields.rows - 1;
    for (std::int64_t column = 0; column <= lastColumn;
         column += std::max<std::int64_t>(lastColumn, 1)) {
      for (std::int64_t row = 0; row <= lastRow; row += std::max<std::int64_t>(lastRow, 1)) {
        walk.show(*block, toWorld * fields.transform(base, column, row));
      }
    }
  }
  const auto addAttribute = [&](const TagList& attribute) {
    constexpr std::int64_t kIsInvisible = 1;
    const std::int64_t flags = attribute.integer(code::kFlags, place::kAttribute.in(attribute), 0);
    const bool isHidden =
        (flags & kIsInvisible) ||
        attribute.integer(code::kVisibility, place::kEntity.in(attribute), 0) != 0;
    if (!isHidden) {
      walk.addPart({attribute, entity.database, nullptr, nullptr}, toWorld, box);
    }
  };
  if (entity.stub) {
    forEachPart(*entity.stub, addAttribute);
  } else if (entity.object) {
    forEachPart(*entity.object, addAttribute);
  }
  return Acad::eOk;
}

}  // namespace quoin::db
