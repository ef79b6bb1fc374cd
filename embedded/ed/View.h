// What the user looks at and draws in: the view of a document's viewport and its user
// coordinate system, with the transforms between the coordinate systems.
#pragma once

#include "gemat3d.h"
#include "gepnt2d.h"
#include "hostapi.h"

namespace quoin::ed {

/// The current viewport. Its display coordinates have their origin at the target, Z towards
/// the viewer and X as the plane normal to the viewing direction gives it, turned by -twist.
struct View {
  AcGePoint3d target;                     // world
  AcGeVector3d direction{0.0, 0.0, 1.0};  // world, from the target to the viewer
  double twistRad = 0.0;                  // counter-clockwise
  AcGePoint2d center;                     // display coordinates
  double height = 1000.0;                 // drawing units
  double widthPixels = 1280.0;
  double heightPixels = 800.0;

  /// Display coordinates to world coordinates.
  HOST_API AcGeMatrix3d toWorld() const;
  /// Whether there is something to look at: a direction, a height and pixels.
  HOST_API bool isValid() const;
};

/// A user coordinate system; both axes are unit vectors normal to each other.
struct UserSystem {
  AcGePoint3d origin;
  AcGeVector3d xAxis{1.0, 0.0, 0.0};
  AcGeVector3d yAxis{0.0, 1.0, 0.0};

  /// User coordinates to world coordinates.
  HOST_API AcGeMatrix3d toWorld() const;
  /// Whether the axes are unit vectors normal to each other.
  HOST_API bool isValid() const;
  bool isWorld() const;
};

}  // namespace quoin::ed
