// The entity classes: lines, circles, arcs, points, text, block references with attributes,
// and the polylines that keep their vertices as entities of their own. The light polyline is
// in dbpl.h, multiline text in dbmtext.h.
//
// Points are world coordinates and angles radians. An entity in no database takes any name
// of a style or block; what the name stands for is looked up when it is appended.
#pragma once

#include "dbmain.h"
#include "gescl3d.h"

class HOST_API AcDbPoint : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbPoint);
  AcDbPoint();
  explicit AcDbPoint(const AcGePoint3d& position);

  AcGePoint3d position() const;
  Acad::ErrorStatus setPosition(const AcGePoint3d& position);
  double thickness() const;
  Acad::ErrorStatus setThickness(double thickness);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
};

class HOST_API AcDbLine : public AcDbCurve {
 public:
  ACRX_DECLARE_MEMBERS(AcDbLine);
  AcDbLine();
  AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end);

  AcGePoint3d startPoint() const;
  AcGePoint3d endPoint() const;
  Acad::ErrorStatus setStartPoint(const AcGePoint3d& point);
  Acad::ErrorStatus setEndPoint(const AcGePoint3d& point);
  double thickness() const;
  Acad::ErrorStatus setThickness(double thickness);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d& normal);

  Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const override;
  Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const override;
};

class HOST_API AcDbCircle : public AcDbCurve {
 public:
  ACRX_DECLARE_MEMBERS(AcDbCircle);
  AcDbCircle();
  AcDbCircle(const AcGePoint3d& center, const AcGeVector3d& normal, double radius);

  AcGePoint3d center() const;
  Acad::ErrorStatus setCenter(const AcGePoint3d& center);
  double radius() const;
  /// Fails: eNotOpenForWrite, eInvalidInput (negative).
  Acad::ErrorStatus setRadius(double radius);
  double thickness() const;
  Acad::ErrorStatus setThickness(double thickness);
  AcGeVector3d normal() const;
  /// Fails: eNotOpenForWrite, eInvalidNormal (zero).
  Acad::ErrorStatus setNormal(const AcGeVector3d& normal);

  Adesk::Boolean isClosed() const override;
  Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const override;
  Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const override;
};

/// From the start angle counter-clockwise, seen against the normal, to the end angle; angles
/// count from the X axis of the plane's own coordinate system.
class HOST_API AcDbArc : public AcDbCurve {
 public:
  ACRX_DECLARE_MEMBERS(AcDbArc);
  AcDbArc();
  AcDbArc(const AcGePoint3d& center, double radius, double startAngle, double endAngle);
  AcDbArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius, double startAngle,
          double endAngle);

  AcGePoint3d center() const;
  Acad::ErrorStatus setCenter(const AcGePoint3d& center);
  double radius() const;
  Acad::ErrorStatus setRadius(double radius);
  double startAngle() const;
  Acad::ErrorStatus setStartAngle(double angle);
  double endAngle() const;
  Acad::ErrorStatus setEndAngle(double angle);
  double thickness() const;
  Acad::ErrorStatus setThickness(double thickness);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d& normal);

  Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const override;
  Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const override;
};

/// A flat piece of a surface with three or four corners; with three the last is repeated.
class HOST_API AcDbFace : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbFace);
  AcDbFace();
  AcDbFace(const AcGePoint3d& pt0, const AcGePoint3d& pt1, const AcGePoint3d& pt2,
           const AcGePoint3d& pt3, Adesk::Boolean e0vis = Adesk::kTrue,
           Adesk::Boolean e1vis = Adesk::kTrue, Adesk::Boolean e2vis = Adesk::kTrue,
           Adesk::Boolean e3vis = Adesk::kTrue);

  /// Corners count from 0 to 3.
  /// Fails: eInvalidIndex for this and all that take an index.
  Acad::ErrorStatus getVertexAt(Adesk::UInt16 index, AcGePoint3d& point) const;
  Acad::ErrorStatus setVertexAt(Adesk::UInt16 index, const AcGePoint3d& point);
  /// Whether the edge behind a corner shows.
  Acad::ErrorStatus isEdgeVisibleAt(Adesk::UInt16 index, Adesk::Boolean& visible) const;
  Acad::ErrorStatus makeEdgeVisibleAt(Adesk::UInt16 index);
  Acad::ErrorStatus makeEdgeInvisibleAt(Adesk::UInt16 index);
};

class HOST_API AcDbText : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbText);
  AcDbText();
  AcDbText(const AcGePoint3d& position, const ACHAR* text, AcDbObjectId style = AcDbObjectId::kNull,
           double height = 0.0, double rotation = 0.0);

  AcGePoint3d position() const;
  Acad::ErrorStatus setPosition(const AcGePoint3d& position);
  /// Where the text is aligned to, unless it is left on the base line.
  AcGePoint3d alignmentPoint() const;
  Acad::ErrorStatus setAlignmentPoint(const AcGePoint3d& point);
  AcDb::TextHorzMode horizontalMode() const;
  Acad::ErrorStatus setHorizontalMode(AcDb::TextHorzMode mode);
  AcDb::TextVertMode verticalMode() const;
  Acad::ErrorStatus setVerticalMode(AcDb::TextVertMode mode);
  bool isDefaultAlignment() const;

  double height() const;
  Acad::ErrorStatus setHeight(double height);
  double widthFactor() const;
  Acad::ErrorStatus setWidthFactor(double factor);
  double rotation() const;
  Acad::ErrorStatus setRotation(double angle);
  double oblique() const;
  Acad::ErrorStatus setOblique(double angle);
  double thickness() const;
  Acad::ErrorStatus setThickness(double thickness);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
  Adesk::Boolean isMirroredInX() const;
  Adesk::Boolean isMirroredInY() const;
  Acad::ErrorStatus mirrorInX(Adesk::Boolean mirror);
  Acad::ErrorStatus mirrorInY(Adesk::Boolean mirror);

  /// A copy of the text as the file has it, %% codes included; the caller frees it.
  ACHAR* textString() const;
  /// Valid until the object changes or closes.
  const ACHAR* textStringConst() const;
  Acad::ErrorStatus setTextString(const ACHAR* text);
  AcDbObjectId textStyle() const;
  Acad::ErrorStatus setTextStyle(AcDbObjectId style);
};

class HOST_API AcDbAttributeDefinition : public AcDbText {
 public:
  ACRX_DECLARE_MEMBERS(AcDbAttributeDefinition);
  AcDbAttributeDefinition();

  /// Copies that the caller frees.
  ACHAR* tag() const;
  ACHAR* prompt() const;
  Acad::ErrorStatus setTag(const ACHAR* tag);
  Acad::ErrorStatus setPrompt(const ACHAR* prompt);
  Adesk::Boolean isInvisible() const;
  Adesk::Boolean isConstant() const;
};

class HOST_API AcDbAttribute : public AcDbText {
 public:
  ACRX_DECLARE_MEMBERS(AcDbAttribute);
  AcDbAttribute();
  AcDbAttribute(const AcGePoint3d& position, const ACHAR* text, const ACHAR* tag,
                AcDbObjectId style = AcDbObjectId::kNull);

  /// A copy that the caller frees.
  ACHAR* tag() const;
  const ACHAR* tagConst() const;
  Acad::ErrorStatus setTag(const ACHAR* tag);
  Adesk::Boolean isInvisible() const;
  Acad::ErrorStatus setInvisible(Adesk::Boolean invisible);
  Adesk::Boolean isConstant() const;
};

/// One insertion of a block.
class HOST_API AcDbBlockReference : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbBlockReference);
  AcDbBlockReference();
  AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId blockTableRecord);

  /// Null where the drawing has no such block.
  AcDbObjectId blockTableRecord() const;
  Acad::ErrorStatus setBlockTableRecord(AcDbObjectId block);
  AcGePoint3d position() const;
  Acad::ErrorStatus setPosition(const AcGePoint3d& position);
  AcGeScale3d scaleFactors() const;
  /// Fails: eNotOpenForWrite, eInvalidInput (a factor of 0).
  Acad::ErrorStatus setScaleFactors(const AcGeScale3d& scale);
  double rotation() const;
  Acad::ErrorStatus setRotation(double angle);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
  /// From the block's coordinates (base point included) to the world; of the first cell of an
  /// array.
  AcGeMatrix3d blockTransform() const;

  /// Appends an attribute that is in no database to a reference; the reference owns it then.
  /// In a database it is open for write afterwards and must be closed.
  /// Fails: eNotOpenForWrite, eNullObjectPointer, eAlreadyInDb.
  Acad::ErrorStatus appendAttribute(AcDbObjectId& id, AcDbAttribute* attribute);
  Acad::ErrorStatus appendAttribute(AcDbAttribute* attribute);
  /// Over the attributes; the caller deletes it.
  AcDbObjectIterator* attributeIterator() const;
};

/// A block reference repeated in rows and columns.
class HOST_API AcDbMInsertBlock : public AcDbBlockReference {
 public:
  ACRX_DECLARE_MEMBERS(AcDbMInsertBlock);
  AcDbMInsertBlock();

  Adesk::UInt16 columns() const;
  Acad::ErrorStatus setColumns(Adesk::UInt16 count);
  Adesk::UInt16 rows() const;
  Acad::ErrorStatus setRows(Adesk::UInt16 count);
  double columnSpacing() const;
  Acad::ErrorStatus setColumnSpacing(double spacing);
  double rowSpacing() const;
  Acad::ErrorStatus setRowSpacing(double spacing);
};

class HOST_API AcDbVertex : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbVertex);

 protected:
  AcDbVertex();
};

/// A vertex of a 2D polyline. Its position is in the polyline's own coordinate system.
class HOST_API AcDb2dVertex : public AcDbVertex {
 public:
  ACRX_DECLARE_MEMBERS(AcDb2dVertex);
  AcDb2dVertex();
  explicit AcDb2dVertex(const AcGePoint3d& position, double bulge = 0.0, double startWidth = 0.0,
                        double endWidth = 0.0);

  AcDb::Vertex2dType vertexType() const;
  AcGePoint3d position() const;
  Acad::ErrorStatus setPosition(const AcGePoint3d& position);
  /// Tangent of a quarter of the arc's angle to the next vertex, positive counter-clockwise.
  double bulge() const;
  Acad::ErrorStatus setBulge(double bulge);
  double startWidth() const;
  Acad::ErrorStatus setStartWidth(double width);
  double endWidth() const;
  Acad::ErrorStatus setEndWidth(double width);
};

class HOST_API AcDb3dPolylineVertex : public AcDbVertex {
 public:
  ACRX_DECLARE_MEMBERS(AcDb3dPolylineVertex);
  AcDb3dPolylineVertex();
  explicit AcDb3dPolylineVertex(const AcGePoint3d& position);

  AcDb::Vertex3dType vertexType() const;
  AcGePoint3d position() const;
  Acad::ErrorStatus setPosition(const AcGePoint3d& position);
};

/// The end of a sequence of vertices or attributes.
class HOST_API AcDbSequenceEnd : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbSequenceEnd);
  AcDbSequenceEnd();
};

/// A polyline in a plane whose vertices are entities.
class HOST_API AcDb2dPolyline : public AcDbCurve {
 public:
  ACRX_DECLARE_MEMBERS(AcDb2dPolyline);
  AcDb2dPolyline();
  /// With vertices at these points of its own coordinate system; bulges may be null or as
  /// many.
  explicit AcDb2dPolyline(const AcGePoint3dArray& vertices, double elevation = 0.0,
                          bool closed = false, const double* bulges = nullptr);

  AcDb::Poly2dType polyType() const;
  Adesk::Boolean isClosed() const override;
  Acad::ErrorStatus makeClosed();
  Acad::ErrorStatus makeOpen();
  double elevation() const;
  Acad::ErrorStatus setElevation(double elevation);
  double thickness() const;
  Acad::ErrorStatus setThickness(double thickness);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d& normal);
  double defaultStartWidth() const;
  double defaultEndWidth() const;

  /// A vertex's place in world coordinates.
  AcGePoint3d vertexPosition(const AcDb2dVertex& vertex) const;
  /// Over the vertices, those of spline frames and curve fitting included; the caller deletes
  /// it. A vertex is removed by opening it for write and erasing it.
  AcDbObjectIterator* vertexIterator() const;
  /// Appends a vertex that is in no database; the polyline owns it then. In a database it is
  /// open for write afterwards and must be closed.
  /// Fails: eNotOpenForWrite, eNullObjectPointer, eAlreadyInDb.
  Acad::ErrorStatus appendVertex(AcDbObjectId& id, AcDb2dVertex* vertex);
  Acad::ErrorStatus appendVertex(AcDb2dVertex* vertex);

  Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const override;
  Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const override;
};

/// A polyline of straight segments in space whose vertices are entities.
class HOST_API AcDb3dPolyline : public AcDbCurve {
 public:
  ACRX_DECLARE_MEMBERS(AcDb3dPolyline);
  AcDb3dPolyline();
  explicit AcDb3dPolyline(const AcGePoint3dArray& vertices, bool closed = false);

  AcDb::Poly3dType polyType() const;
  Adesk::Boolean isClosed() const override;
  Acad::ErrorStatus makeClosed();
  Acad::ErrorStatus makeOpen();
  AcDbObjectIterator* vertexIterator() const;
  Acad::ErrorStatus appendVertex(AcDbObjectId& id, AcDb3dPolylineVertex* vertex);
  Acad::ErrorStatus appendVertex(AcDb3dPolylineVertex* vertex);

  Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const override;
  Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const override;
};
