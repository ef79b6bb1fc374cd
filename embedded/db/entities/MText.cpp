// MTEXT, AcDbMText: its contents in chunks, its direction as a vector or an angle.
#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "dbmtext.h"
#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/db/core/PlaneFields.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/entities/MTextFields.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/MTextLayout.h"
#include "embedded/db/geometry/PlaneTransform.h"
#include "embedded/db/geometry/TextMeasure.h"

ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbMText, AcDbEntity, L"MTEXT", L"ObjectDBX Classes")

using namespace quoin::db;
namespace dxf = quoin::dxf;

namespace {

TextSize shownSizeOf(const AcDbMText& text) {
  const TagList& tags = tagsOf(text);
  return mtextSizeOf(tags, fontOf(Access::of(text).database, tags, layout::kMText.in(tags)));
}

constexpr int kLocation = 10;
constexpr int kHeight = 40;
constexpr int kWidth = 41;
constexpr int kAttachment = 71;
constexpr int kStyle = 7;
constexpr int kSpacing = 44;
/// Characters that a chunk of text may hold.
constexpr std::size_t kChunkLength = 250;
constexpr std::wstring_view kStandardStyle = L"Standard";

}  // namespace

AcDbMText::AcDbMText() = default;

AcGePoint3d AcDbMText::location() const {
  return pointOf(*this, layout::kMText, kLocation);
}

Acad::ErrorStatus AcDbMText::setLocation(const AcGePoint3d& location) {
  return setPoint(*this, layout::kMText, kLocation, location);
}

AcGeVector3d AcDbMText::normal() const {
  return normalOf(*this, layout::kMText);
}

Acad::ErrorStatus AcDbMText::setNormal(const AcGeVector3d& normal) {
  return quoin::db::setNormal(*this, layout::kMText, normal);
}

AcGeVector3d AcDbMText::direction() const {
  return mtextDirectionOf(tagsOf(*this));
}

Acad::ErrorStatus AcDbMText::setDirection(const AcGeVector3d& direction) {
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  if (!(direction.length() > AcGeContext::gTol.equalVector())) {
    return Acad::eInvalidInput;
  }
  return change(*this, [&](RecordEdit& edit) {
    edit.remove(layout::kMText, mtext::kRotation);
    edit.setPoint(layout::kMText, mtext::kDirection, AcGePoint3d::kOrigin + direction.normal());
  });
}

double AcDbMText::rotation() const {
  const AcGeVector3d inPlane = worldToPlane(normal()) * direction();
  return std::atan2(inPlane.y, inPlane.x);
}

Acad::ErrorStatus AcDbMText::setRotation(double angle) {
  return setDirection(planeToWorld(normal()) * AcGeVector3d(std::cos(angle), std::sin(angle), 0.0));
}

double AcDbMText::width() const {
  return numberOf(*this, layout::kMText, kWidth);
}

Acad::ErrorStatus AcDbMText::setWidth(double width) {
  return setNumber(*this, layout::kMText, kWidth, width, 0.0);
}

double AcDbMText::textHeight() const {
  return numberOf(*this, layout::kMText, kHeight);
}

Acad::ErrorStatus AcDbMText::setTextHeight(double height) {
  return setNumber(*this, layout::kMText, kHeight, height);
}

AcDbMText::AttachmentPoint AcDbMText::attachment() const {
  return static_cast<AttachmentPoint>(integerOf(*this, layout::kMText, kAttachment, kTopLeft));
}

Acad::ErrorStatus AcDbMText::setAttachment(AttachmentPoint attachment) {
  return setInteger(*this, layout::kMText, kAttachment, attachment);
}

double AcDbMText::lineSpacingFactor() const {
  return numberOf(*this, layout::kMText, kSpacing, 1.0);
}

AcDbObjectId AcDbMText::textStyle() const {
  return recordNamed(*this, TableKind::TextStyle,
                     textOf(*this, layout::kMText, kStyle, kStandardStyle));
}

Acad::ErrorStatus AcDbMText::setTextStyle(AcDbObjectId style) {
  return setRecordName(*this, layout::kMText, kStyle, TableKind::TextStyle, style, kStandardStyle);
}

ACHAR* AcDbMText::contents() const {
  return newText(mtextContentsOf(tagsOf(*this)));
}

Acad::ErrorStatus AcDbMText::setContents(const ACHAR* contents) {
  if (!contents) {
    return Acad::eInvalidInput;
  }
  return change(*this, [&](RecordEdit& edit) {
    const TagList& tags = edit.tags();
    if (mtextContentsOf(tags) == contents) {
      return;
    }
    const std::wstring text = contents;
    std::string bytes;
    std::size_t at = 0;
    for (; text.size() - at > kChunkLength; at += kChunkLength) {
      dxf::putText(bytes, mtext::kChunk, text.substr(at, kChunkLength), tags.format());
    }
    dxf::putText(bytes, mtext::kLastChunk, text.substr(at), tags.format());
    edit.remove(layout::kMText, mtext::kChunk);
    edit.remove(layout::kMText, mtext::kLastChunk);
    edit.insert(layout::kMText, mtext::kLastChunk, std::move(bytes));
  });
}

ACHAR* AcDbMText::text() const {
  return newText(plainMText(mtextContentsOf(tagsOf(*this))));
}

double AcDbMText::actualWidth() const {
  return shownSizeOf(*this).width;
}

double AcDbMText::actualHeight() const {
  return shownSizeOf(*this).height;
}

namespace quoin::db {
namespace {

using dxf::Version;

/// Which point of a text's box stands at its place, as shares of its width and height.
struct Attachment {
  double along = 0.0;  // from the left
  double down = 0.0;
};
Attachment attachmentOf(const TagList& tags, TagRange range) {
  // The nine points run from the top left to the bottom right in rows of three.
  const std::int64_t attachment = tags.integer(kAttachment, range, AcDbMText::kTopLeft);
  const std::int64_t place = attachment >= 1 && attachment <= 9 ? attachment - 1 : 0;
  const std::int64_t row = place / 3;
  return {0.5 * static_cast<double>(place % 3), 0.5 * static_cast<double>(row)};
}

AcGeMatrix3d frameOf(const TagList& tags, TagRange range) {
  const AcGeVector3d normal = normalOf(tags, range);
  const AcGeVector3d along = mtextDirectionOf(tags);
  AcGeMatrix3d frame;
  frame.setCoordSystem(tags.point(kLocation, range), along, normal.crossProduct(along).normal(),
                       normal);
  return frame;
}

Acad::ErrorStatus extentsOfMText(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                 AcDbExtents& box) {
  addMTextExtents(entity, toWorld, box);
  return Acad::eOk;
}

/// Columns stand in the object that newest files embed.
void readColumns(const TagList& tags, MTextSettings& settings) {
  constexpr int kType = 71;
  constexpr int kCount = 72;
  constexpr int kColumnWidth = 44;
  constexpr int kGutter = 45;
  constexpr int kDefinedHeight = 41;
  constexpr int kColumnHeight = 46;
  constexpr std::int64_t kMostColumns = 1000;
  std::int64_t type = 0;
  std::int64_t count = 0;
  double definedHeight = 0.0;
  for (std::size_t i = tags.body().last; i < tags.xData().first; ++i) {
    switch (tags[i].code) {
      case kType:
        type = tags.integerAt(i);
        break;
      case kCount:
        count = tags.integerAt(i);
        break;
      case kColumnWidth:
        settings.columnWidth = tags.doubleAt(i);
        break;
      case kGutter:
        settings.gutter = tags.doubleAt(i);
        break;
      case kDefinedHeight:
        definedHeight = tags.doubleAt(i);
        break;
      case kColumnHeight:
        settings.columnHeights.push_back(tags.doubleAt(i));
        break;
      default:
        break;
    }
  }
  if (type > 0 && settings.columnWidth > 0.0) {
    // Some writers leave the count of columns that grow with their text out.
    count = count > 0 ? count : static_cast<std::int64_t>(settings.columnHeights.size());
    settings.columns = static_cast<std::size_t>(std::clamp<std::int64_t>(count, 1, kMostColumns));
  }
  if (settings.columnHeights.empty() && definedHeight > 0.0) {
    settings.columnHeights.push_back(definedHeight);
  }
}

/// A colour, or the paper's, behind the text.
void drawBackground(const TagList& tags, TagRange range, const MTextLayout& layout, double height,
                    const AcGeMatrix3d& frame, DrawWalk& walk) {
  constexpr int kFill = 90;
  constexpr int kMargin = 45;
  constexpr int kFillColor = 63;
  constexpr int kFillTrueColor = 421;
  constexpr std::int64_t kHasColor = 1;
  constexpr std::int64_t kIsPaper = 2;
  constexpr std::int64_t kHasFrame = 16;
  constexpr double kUsualMargin = 1.5;
  const std::int64_t fill = tags.integer(kFill, range, 0);
  if ((fill & (kHasColor | kIsPaper | kHasFrame)) == 0) {
    return;
  }
  const double margin = (tags.number(kMargin, range, kUsualMargin) - 1.0) * height;
  const DrawPath box = rectanglePath(layout.left - margin, layout.bottom - margin,
                                     layout.right + margin, layout.top + margin, frame);
  if (fill & kIsPaper) {
    walk.wipe(box);
  } else if (fill & kHasColor) {
    AcCmColor color;
    if (const std::size_t rgb = tags.find(kFillTrueColor, range); rgb != TagList::kNone) {
      const auto value = static_cast<Adesk::UInt32>(tags.integerAt(rgb));
      color.setRGB(static_cast<Adesk::UInt8>(value >> 16), static_cast<Adesk::UInt8>(value >> 8),
                   static_cast<Adesk::UInt8>(value));
    } else {
      color.setColorIndex(static_cast<Adesk::UInt16>(
          std::clamp<std::int64_t>(tags.integer(kFillColor, range, 7), 0, 256)));
    }
    walk.fill(std::span(&box, 1), walk.lookOf(color));
  }
  if (fill & kHasFrame) {
    walk.strokePlain(box);
  }
}

/// The copy of a multiline text's geometry that newest files keep behind a mark of its own.
void transformEmbedded(RecordEdit& edit, const AcGeMatrix3d& matrix, double scale) {
  constexpr int kDirectionX = 10;
  constexpr int kInsertionX = 11;
  const TagList& tags = edit.tags();
  for (std::size_t i = tags.body().last; i < tags.xData().first; ++i) {
    const int code = tags[i].code;
    const bool isPoint = (code == kDirectionX || code == kInsertionX) && i + 2 < tags.size();
    if (isPoint) {
      const AcGePoint3d before(tags.doubleAt(i), tags.doubleAt(i + 1), tags.doubleAt(i + 2));
      const AcGeVector3d direction = (matrix * before.asVector()).normal();
      const AcGePoint3d after =
          code == kInsertionX ? matrix * before : AcGePoint3d::kOrigin + direction;
      edit.setDoubleAt(i, after.x);
      edit.setDoubleAt(i + 1, after.y);
      edit.setDoubleAt(i + 2, after.z);
    }
    constexpr int kFirstLength = 40;
    constexpr int kLastLength = 46;
    if (code >= kFirstLength && code <= kLastLength) {
      edit.setDoubleAt(i, tags.doubleAt(i) * scale);
    }
  }
}

Acad::ErrorStatus transformMText(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  constexpr int kLengths[] = {40, 41, 42, 43, 46, 48, 49};
  const TagList& tags = edit.tags();
  const TagRange range = layout::kMText.in(tags);
  const AcGeVector3d before = normalOf(tags, range);
  PlaneMap plane(before, matrix);
  if (!plane.isSimilar) {
    return Acad::eCannotScaleNonUniformly;
  }
  // Multiline text cannot be written backwards: its mirror image is its back.
  const AcGeVector3d normal = plane.isMirrored ? -plane.normal : plane.normal;
  edit.setPoint(layout::kMText, kLocation, matrix * tags.point(kLocation, range));
  const AcGeVector3d oldDirection = mtextDirectionOf(tags);
  const AcGeVector3d direction = (matrix * oldDirection).normal();
  const bool isVector = tags.find(mtext::kDirection, range) != TagList::kNone;
  if ((direction - oldDirection).length() > kSameDirection || !(normal == before)) {
    if (isVector || plane.isMirrored || !(plane.normal == before)) {
      edit.remove(layout::kMText, mtext::kRotation);
      edit.setPoint(layout::kMText, mtext::kDirection, AcGePoint3d::kOrigin + direction);
    } else {
      const AcGeVector3d inPlane = worldToPlane(normal) * direction;
      const double angle = std::atan2(inPlane.y, inPlane.x);
      edit.setAngle(layout::kMText, mtext::kRotation, angle < 0.0 ? angle + kFullTurn : angle, 0.0);
    }
  }
  for (const int code : kLengths) {
    edit.scaleDouble(layout::kMText, code, plane.scale);
  }
  edit.setVector(layout::kMText, code::kNormal, normal, AcGeVector3d::kZAxis);
  transformEmbedded(edit, matrix, plane.scale);
  return Acad::eOk;
}

constexpr std::array kOwnCodes{48, 420, 430};  // width of columns, colour of the background
constexpr std::array kClasses{classRow<AcDbMText>(
    "0 MTEXT 100 AcDbEntity 8 0 100 AcDbMText 10 0.0 20 0.0 30 0.0 40 0.2 41 0.0 71 1 72 5 1 ~")};

constexpr std::array kKinds{
    RecordKind{.name = "MTEXT",
               .since = Version::R13,
               .classes = kClasses,
               .ownCodes = kOwnCodes,
               .textStyle = &layout::kMText,
               .isSelfContained = true,
               .extents = extentsOfMText,
               .draw = drawMTextRecord,
               .transform = transformMText},
};

}  // namespace

std::unique_ptr<const EmbeddedMText> EmbeddedMText::of(const TagList& attribute) {
  const std::size_t marker = attribute.body().last;
  const std::size_t end = attribute.xData().first;
  if (marker + 1 >= end || attribute[marker].code != kEmbeddedCode) {
    return nullptr;
  }
  std::string bytes;
  dxf::putText(bytes, 0, L"MTEXT", attribute.format());
  const std::size_t first = attribute[marker + 1].begin;
  bytes += attribute.bytes().substr(first, attribute[end - 1].end - first);
  std::unique_ptr<const EmbeddedMText> text(
      new EmbeddedMText(std::move(bytes), attribute.format()));
  return mtextContentsOf(text->tags()).empty() ? nullptr : std::move(text);
}

void addMTextExtents(const Drawn& text, const AcGeMatrix3d& toWorld, AcDbExtents& box) {
  const TagRange range = layout::kMText.in(text.tags);
  const TextSize size = mtextSizeOf(text.tags, fontOf(text.database, text.tags, range));
  const Attachment attachment = attachmentOf(text.tags, range);
  const double left = -attachment.along * size.width;
  const double top = attachment.down * size.height;
  addRectangle(left, top - size.height, left + size.width, top, toWorld * frameOf(text.tags, range),
               box);
}

void drawMTextRecord(const Drawn& text, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  constexpr int kSpacingStyle = 73;
  constexpr std::int64_t kExactly = 2;
  const TagList& tags = text.tags;
  const TagRange range = layout::kMText.in(tags);
  const Attachment attachment = attachmentOf(tags, range);
  MTextSettings settings;
  settings.height = tags.number(kHeight, range, 0.0);
  settings.limit = tags.number(kWidth, range, 0.0);
  settings.spacing = tags.number(kSpacing, range, 1.0);
  settings.isExact = tags.integer(kSpacingStyle, range, 1) == kExactly;
  settings.alignment = attachment.along;
  settings.rise = attachment.down;
  settings.style = textStyleOf(text.database, tags.text(kStyle, range).value_or(L"Standard"));
  readColumns(tags, settings);
  const MTextLayout layout = layoutMText(mtextContentsOf(tags), settings);
  const AcGeMatrix3d frame = toWorld * frameOf(tags, range);
  drawBackground(tags, range, layout, settings.height, frame, walk);
  drawMText(layout, frame, walk);
}

const std::span<const RecordKind> kMTextRows{kKinds};

}  // namespace quoin::db
