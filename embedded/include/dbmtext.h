// AcDbMText: text of several lines with formatting codes in it.
#pragma once

#include "dbmain.h"

class HOST_API AcDbMText : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbMText);
  enum AttachmentPoint {
    kTopLeft = 1,
    kTopCenter,
    kTopRight,
    kMiddleLeft,
    kMiddleCenter,
    kMiddleRight,
    kBottomLeft,
    kBottomCenter,
    kBottomRight
  };

  AcDbMText();

  /// World coordinates.
  AcGePoint3d location() const;
  Acad::ErrorStatus setLocation(const AcGePoint3d& location);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
  /// The direction of the lines, world coordinates, a unit vector.
  AcGeVector3d direction() const;
  Acad::ErrorStatus setDirection(const AcGeVector3d& direction);
  /// The angle of the direction in the text's plane, radians.
  double rotation() const;
  Acad::ErrorStatus setRotation(double angle);

  /// The width at which lines are wrapped, as the drawing defines it; 0 for no wrapping.
  double width() const;
  Acad::ErrorStatus setWidth(double width);
  double textHeight() const;
  Acad::ErrorStatus setTextHeight(double height);
  AttachmentPoint attachment() const;
  Acad::ErrorStatus setAttachment(AttachmentPoint attachment);
  double lineSpacingFactor() const;
  AcDbObjectId textStyle() const;
  Acad::ErrorStatus setTextStyle(AcDbObjectId style);

  /// The text with its formatting codes; a copy that the caller frees (acutDelBuffer).
  ACHAR* contents() const;
  Acad::ErrorStatus setContents(const ACHAR* contents);
  /// The text without formatting codes, lines ended by '\n'; a copy that the caller frees
  /// (acutDelBuffer).
  ACHAR* text() const;

  /// The size of the text itself: as the file has it, else from the proportions of a common
  /// font.
  double actualWidth() const;
  double actualHeight() const;
};
