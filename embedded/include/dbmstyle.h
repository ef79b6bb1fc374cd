// AcDbMlineStyle: how multilines of a style are drawn. A style is an object in the dictionary
// AcDbDatabase::getMLStyleDictionary(). It has up to 16 elements, lines parallel to the one
// that is drawn, kept from the greatest offset to the smallest.
#pragma once

#include "dbmain.h"

class HOST_API AcDbMlineStyle : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbMlineStyle);
  static constexpr int kMostElements = 16;

  AcDbMlineStyle();

  /// Sets what a new style begins with: no name, elements, caps and fill; ends at right
  /// angles. A style that is in a drawing keeps its name.
  Acad::ErrorStatus initMlineStyle();

  /// Valid until the object changes or closes.
  const ACHAR* name() const;
  /// Fails: eNotOpenForWrite, eInvalidInput (no name that a symbol may have), eNotApplicable
  /// (another name for a style that is in a drawing: multilines name it).
  Acad::ErrorStatus setName(const ACHAR* name);
  const ACHAR* description() const;
  Acad::ErrorStatus setDescription(const ACHAR* description);

  // --- ends and joints ----------------------------------------------------------------------
  bool showMiters() const;
  Acad::ErrorStatus setShowMiters(bool show);
  /// A line across the ends.
  bool startSquareCap() const;
  Acad::ErrorStatus setStartSquareCap(bool on);
  bool endSquareCap() const;
  Acad::ErrorStatus setEndSquareCap(bool on);
  /// An arc between the outermost elements.
  bool startRoundCap() const;
  Acad::ErrorStatus setStartRoundCap(bool on);
  bool endRoundCap() const;
  Acad::ErrorStatus setEndRoundCap(bool on);
  /// Arcs between pairs of inner elements.
  bool startInnerArcs() const;
  Acad::ErrorStatus setStartInnerArcs(bool on);
  bool endInnerArcs() const;
  Acad::ErrorStatus setEndInnerArcs(bool on);
  /// Of the ends against the line, radians.
  double startAngle() const;
  /// Fails: eNotOpenForWrite, eInvalidInput (outside 10 to 170 degrees).
  Acad::ErrorStatus setStartAngle(double angle);
  double endAngle() const;
  Acad::ErrorStatus setEndAngle(double angle);

  // --- fill ---------------------------------------------------------------------------------
  bool filled() const;
  Acad::ErrorStatus setFilled(bool filled);
  AcCmColor fillColor() const;
  Acad::ErrorStatus setFillColor(const AcCmColor& color);

  // --- elements -----------------------------------------------------------------------------
  int numElements() const;
  /// Adds an element in its place by offset, behind those of the same offset; `index` tells
  /// which it is. The null linetype is by layer. Whether multilines of the style exist is not
  /// looked at (checkIfReferenced).
  /// Fails: eNotOpenForWrite, eInvalidInput (not finite, a 17th element), and what naming
  /// the linetype fails with; the index is -1 then.
  Acad::ErrorStatus addElement(int& index, double offset, const AcCmColor& color,
                               AcDbObjectId linetype, bool checkIfReferenced = true);
  Acad::ErrorStatus addElement(double offset, const AcCmColor& color, AcDbObjectId linetype);
  /// Fails: eInvalidIndex. The linetype is null where the drawing does not have it, and for a
  /// style in no database.
  Acad::ErrorStatus getElementAt(int index, double& offset, AcCmColor& color,
                                 AcDbObjectId& linetype) const;
  /// Fails: eNotOpenForWrite, eInvalidIndex.
  Acad::ErrorStatus removeElementAt(int index);
};
