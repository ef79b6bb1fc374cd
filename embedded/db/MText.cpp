// AcDbMText: its contents in chunks, its direction as a vector or an angle.
#include "dbmtext.h"
#include "embedded/db/DatabaseImpl.h"
#include "embedded/db/EntityGeometry.h"
#include "embedded/db/MTextCodes.h"
#include "embedded/db/PlaneFields.h"

ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbMText, AcDbEntity, L"MTEXT", L"ObjectDBX Classes")

using namespace quoin::db;
namespace dxf = quoin::dxf;

namespace {

TextSize shownSizeOf(const AcDbMText& text) {
  const TagList& tags = tagsOf(text);
  return mtextSizeOf(tags, fontOf(Access::of(text).database, tags, place::kMText.in(tags)));
}

constexpr int kLocation = 10;
constexpr int kDirection = 11;
constexpr int kHeight = 40;
constexpr int kWidth = 41;
constexpr int kAttachment = 71;
constexpr int kStyle = 7;
constexpr int kRotation = 50;
constexpr int kSpacing = 44;
constexpr int kChunk = 3;  // all of the text but the end, which has code 1
constexpr int kLastChunk = 1;
/// Characters that a chunk of text may hold.
constexpr std::size_t kChunkLength = 250;
constexpr std::wstring_view kStandardStyle = L"Standard";

}  // namespace

std::wstring quoin::db::mtextContentsOf(const TagList& tags) {
  const TagRange range = place::kMText.in(tags);
  std::wstring contents;
  for (std::size_t i = range.first; i < range.last; ++i) {
    if (tags.isOwn(i) && (tags[i].code == kChunk || tags[i].code == kLastChunk)) {
      contents += tags.textAt(i);
    }
  }
  return contents;
}

AcGeVector3d quoin::db::mtextDirectionOf(const TagList& tags) {
  const TagRange range = place::kMText.in(tags);
  // Of the angle and the vector, whichever comes last in the record counts.
  std::size_t angle = TagList::kNone;
  std::size_t vector = TagList::kNone;
  for (std::size_t i = range.first; i < range.last; ++i) {
    if (tags.isOwn(i) && tags[i].code == kRotation) {
      angle = i;
    } else if (tags.isOwn(i) && tags[i].code == kDirection) {
      vector = i;
    }
  }
  const AcGeMatrix3d toWorld = planeToWorld(normalOf(tags, range));
  if (vector != TagList::kNone && (angle == TagList::kNone || vector > angle)) {
    const AcGeVector3d direction = tags.point(kDirection, range).asVector();
    const double length = direction.length();
    return length > 0.0 && std::isfinite(length) ? direction / length
                                                 : toWorld * AcGeVector3d::kXAxis;
  }
  const double turn = angle == TagList::kNone ? 0.0 : toRadians(tags.doubleAt(angle));
  return toWorld * AcGeVector3d(std::cos(turn), std::sin(turn), 0.0);
}

AcDbMText::AcDbMText() = default;

AcGePoint3d AcDbMText::location() const {
  return pointOf(*this, place::kMText, kLocation);
}

Acad::ErrorStatus AcDbMText::setLocation(const AcGePoint3d& location) {
  return setPoint(*this, place::kMText, kLocation, location);
}

AcGeVector3d AcDbMText::normal() const {
  return normalOf(*this, place::kMText);
}

Acad::ErrorStatus AcDbMText::setNormal(const AcGeVector3d& normal) {
  return quoin::db::setNormal(*this, place::kMText, normal);
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
    edit.remove(place::kMText, kRotation);
    edit.setPoint(place::kMText, kDirection, AcGePoint3d::kOrigin + direction.normal());
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
  return numberOf(*this, place::kMText, kWidth);
}

Acad::ErrorStatus AcDbMText::setWidth(double width) {
  return setNumber(*this, place::kMText, kWidth, width, 0.0);
}

double AcDbMText::textHeight() const {
  return numberOf(*this, place::kMText, kHeight);
}

Acad::ErrorStatus AcDbMText::setTextHeight(double height) {
  return setNumber(*this, place::kMText, kHeight, height);
}

AcDbMText::AttachmentPoint AcDbMText::attachment() const {
  return static_cast<AttachmentPoint>(integerOf(*this, place::kMText, kAttachment, kTopLeft));
}

Acad::ErrorStatus AcDbMText::setAttachment(AttachmentPoint attachment) {
  return setInteger(*this, place::kMText, kAttachment, attachment);
}

double AcDbMText::lineSpacingFactor() const {
  return numberOf(*this, place::kMText, kSpacing, 1.0);
}

AcDbObjectId AcDbMText::textStyle() const {
  return recordNamed(*this, TableKind::TextStyle,
                     textOf(*this, place::kMText, kStyle, kStandardStyle));
}

Acad::ErrorStatus AcDbMText::setTextStyle(AcDbObjectId style) {
  return setRecordName(*this, place::kMText, kStyle, TableKind::TextStyle, style, kStandardStyle);
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
      dxf::putText(bytes, kChunk, text.substr(at, kChunkLength), tags.format());
    }
    dxf::putText(bytes, kLastChunk, text.substr(at), tags.format());
    edit.remove(place::kMText, kChunk);
    edit.remove(place::kMText, kLastChunk);
    edit.insert(place::kMText, kLastChunk, std::move(bytes));
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
