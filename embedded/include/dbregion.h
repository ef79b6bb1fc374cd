// AcDbRegion: a plane face with straight and curved edges, for set operations.
//
// Regions live in memory alone: they are made for a computation and in no database (appending
// one returns eIllegalEntityType). What the host computes with is plane polygons; arcs are
// chords of a 256th of a full turn. REGION entities of drawing files keep their data closed and
// are plain entities.
#pragma once

#include "dbmain.h"

namespace quoin::db {
class RegionShape;
}

class HOST_API AcDbRegion : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbRegion);
  AcDbRegion();
  ~AcDbRegion() override;

  /// One region for every closed loop of the curves (AcDbLine, AcDbArc, AcDbCircle, AcDbPolyline),
  /// loops in the order of their first curves. Ends meet when they are equal within the global
  /// tolerance; lines without length are passed over. Coordinates of ends stay as they are, bit for
  /// bit, in horizontal planes.
  ///
  /// Owns:  the curves stay the caller's; the regions are the caller's to delete.
  ///
  /// Fails: eInvalidInput (nothing closes, a curve of another class, coordinates that are not
  ///        finite), eNonCoplanarGeometry, eSelfIntersecting, eDegenerateGeometry (no area). A
  ///        loop that fails does not keep the others from becoming regions; the status is that
  ///        of the first that failed.
  static Acad::ErrorStatus createFromCurves(const AcDbVoidPtrArray& curves,
                                            AcDbVoidPtrArray& regions);

  /// Makes this region its union with, intersection with or difference from the other one,
  /// which has nothing in it afterwards.
  /// Fails: eNullObjectPointer, eInvalidInput (the same region twice), eNonCoplanarGeometry,
  ///        eGeneralModelingFailure; both stay as they are.
  Acad::ErrorStatus booleanOper(AcDb::BoolOperType operation, AcDbRegion* other);

  /// Appends what the region consists of: of one face its edges as lines, of several faces a
  /// region each. Edges run along the outer boundary, counter-clockwise against the normal from
  /// the vertex with the smallest x (then y) of the plane, then along each hole, clockwise;
  /// holes and faces by their first vertices.
  /// An empty region has no pieces.
  /// Owns:  the pieces are the caller's to delete; the region stays as it is.
  Acad::ErrorStatus explode(AcDbVoidPtrArray& pieces) const;

  /// Whether there is nothing in it.
  bool isNull() const;
  Acad::ErrorStatus getArea(double& area) const;
  /// A unit vector.
  /// Fails: eInvalidInput (nothing in it); the output stays as it is.
  Acad::ErrorStatus getNormal(AcGeVector3d& normal) const;

  /// Fails: eNullExtents (nothing in it).
  Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const override;
  /// Fails: eSingularMatrix, eInvalidInput (not finite); the region stays as it is.
  Acad::ErrorStatus transformBy(const AcGeMatrix3d& matrix) override;
  AcRxObject* clone() const override;

 private:
  std::unique_ptr<quoin::db::RegionShape> m_shape;  // null: nothing in it
};
