// AcDbDimension: a dimension of any sort as the drawing shows it, by the block that holds its
// lines, arrows and text. Dimensions are read here; a new one cannot be made.
#pragma once

#include "dbmain.h"

class HOST_API AcDbDimension : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbDimension);
  AcDbDimension();

  /// The block with what the dimension shows; null where the drawing has none.
  AcDbObjectId dimBlockId() const;
  /// How far the block's content is moved, world coordinates.
  AcGePoint3d dimBlockPosition() const;
  /// Null where the drawing does not have the style that is named.
  AcDbObjectId dimensionStyle() const;
  /// The middle of the text, world coordinates.
  AcGePoint3d textPosition() const;
  /// The text as the user changed it: empty for the measured length alone, "<>" in it stands
  /// for that. Valid until the object changes or closes.
  const ACHAR* dimensionText() const;
  /// Drawing units, or radians for an angle.
  /// Fails: eNotApplicable (the file does not tell it).
  Acad::ErrorStatus getMeasurement(double& measurement) const;
  AcGeVector3d normal() const;
};
