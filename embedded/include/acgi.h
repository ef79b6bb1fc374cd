// The graphics interface, as far as modules use it: why something is drawn, and the text
// style with which texts are.
#pragma once

#include <string>

#include "acadstrc.h"
#include "adesk.h"
#include "dbid.h"

/// What kind of regeneration a drawing is for.
enum AcGiRegenType {
  eAcGiRegenTypeInvalid = 0,
  kAcGiStandardDisplay = 2,
  kAcGiHideOrShadeCommand,
  kAcGiShadedDisplay,
  kAcGiForExplode,
  kAcGiSaveWorldDrawForProxy,
  kAcGiForExtents
};

/// How text is drawn: fonts, size and slant. A plain value that belongs to no drawing; the
/// database that it is made with is where the host would look for fonts, and may be null.
class HOST_API AcGiTextStyle {
 public:
  explicit AcGiTextStyle(AcDbDatabase* database = nullptr);
  AcGiTextStyle(const ACHAR* fontName, const ACHAR* bigFontName, double textSize, double xScale,
                double obliquingAngle, double trackingPercent, bool isBackward = false,
                bool isUpsideDown = false, bool isVertical = false, bool isOverlined = false,
                bool isUnderlined = false, AcDbDatabase* database = nullptr);
  AcGiTextStyle(const AcGiTextStyle&);
  AcGiTextStyle& operator=(const AcGiTextStyle&);
  ~AcGiTextStyle();

  const ACHAR* fileName() const { return m_fileName.c_str(); }
  const ACHAR* bigFontFileName() const { return m_bigFontFileName.c_str(); }
  const ACHAR* styleName() const { return m_styleName.c_str(); }
  /// Null stands for an empty name.
  void setFileName(const ACHAR* name) { m_fileName = name ? name : L""; }
  void setBigFontFileName(const ACHAR* name) { m_bigFontFileName = name ? name : L""; }
  void setStyleName(const ACHAR* name) { m_styleName = name ? name : L""; }

  /// 0: the height is each text's own.
  double textSize() const { return m_textSize; }
  void setTextSize(double size) { m_textSize = size; }
  double xScale() const { return m_xScale; }
  void setXScale(double factor) { m_xScale = factor; }
  /// Radians.
  double obliquingAngle() const { return m_obliquingAngle; }
  void setObliquingAngle(double angle) { m_obliquingAngle = angle; }
  double trackingPercent() const { return m_trackingPercent; }
  void setTrackingPercent(double percent) { m_trackingPercent = percent; }

  bool isBackward() const { return m_isBackward; }
  void setBackward(bool on) { m_isBackward = on; }
  bool isUpsideDown() const { return m_isUpsideDown; }
  void setUpsideDown(bool on) { m_isUpsideDown = on; }
  bool isVertical() const { return m_isVertical; }
  void setVertical(bool on) { m_isVertical = on; }
  bool isOverlined() const { return m_isOverlined; }
  void setOverlined(bool on) { m_isOverlined = on; }
  bool isUnderlined() const { return m_isUnderlined; }
  void setUnderlined(bool on) { m_isUnderlined = on; }

 private:
  std::wstring m_styleName;
  std::wstring m_fileName;
  std::wstring m_bigFontFileName;
  double m_textSize = 0.0;
  double m_xScale = 1.0;
  double m_obliquingAngle = 0.0;
  double m_trackingPercent = 1.0;
  bool m_isBackward = false;
  bool m_isUpsideDown = false;
  bool m_isVertical = false;
  bool m_isOverlined = false;
  bool m_isUnderlined = false;
};

/// Makes a style that of a drawing's text style record.
/// Fails: as acdbOpenObject; the style stays as it is.
HOST_API Acad::ErrorStatus fromAcDbTextStyle(AcGiTextStyle& style, const AcDbObjectId& record);
