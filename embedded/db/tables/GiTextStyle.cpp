// AcGiTextStyle, and how it comes from a drawing's text style.
#include "acgi.h"
#include "dbobjptr.h"
#include "dbsymtb.h"

namespace {
std::wstring orEmpty(const ACHAR* text) {
  return text ? text : L"";
}
}  // namespace

AcGiTextStyle::AcGiTextStyle(AcDbDatabase*) {}

AcGiTextStyle::AcGiTextStyle(const ACHAR* fontName, const ACHAR* bigFontName, double textSize,
                             double xScale, double obliquingAngle, double trackingPercent,
                             bool isBackward, bool isUpsideDown, bool isVertical, bool isOverlined,
                             bool isUnderlined, AcDbDatabase*)
    : m_fileName(orEmpty(fontName)),
      m_bigFontFileName(orEmpty(bigFontName)),
      m_textSize(textSize),
      m_xScale(xScale),
      m_obliquingAngle(obliquingAngle),
      m_trackingPercent(trackingPercent),
      m_isBackward(isBackward),
      m_isUpsideDown(isUpsideDown),
      m_isVertical(isVertical),
      m_isOverlined(isOverlined),
      m_isUnderlined(isUnderlined) {}

AcGiTextStyle::AcGiTextStyle(const AcGiTextStyle&) = default;
AcGiTextStyle& AcGiTextStyle::operator=(const AcGiTextStyle&) = default;
AcGiTextStyle::~AcGiTextStyle() = default;

Acad::ErrorStatus fromAcDbTextStyle(AcGiTextStyle& style, const AcDbObjectId& record) {
  const AcDbObjectPointer<AcDbTextStyleTableRecord> source(record, AcDb::kForRead);
  if (source.openStatus() != Acad::eOk) {
    return source.openStatus();
  }
  const ACHAR* name = nullptr;
  const ACHAR* font = nullptr;
  const ACHAR* bigFont = nullptr;
  source->getName(name);
  source->fileName(font);
  source->bigFontFileName(bigFont);
  style = AcGiTextStyle(font, bigFont, source->textSize(), source->xScale(),
                        source->obliquingAngle(), 1.0, false, false, source->isVertical());
  style.setStyleName(name);
  return Acad::eOk;
}
