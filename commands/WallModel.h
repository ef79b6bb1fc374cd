// Walls as closed prisms, and the files that hold them.
#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "commands/WallBodies.h"

namespace quoin::commands {

/// A wall as a body: a floor outline of six corners (the end faces bend at their middle
/// points) extruded upwards. Corners run counter-clockwise seen from above:
///
///      startLeft -------------------------- endLeft
///   startMid <                                  > endMid       (the wall runs to the right)
///      startRight ------------------------- endRight
struct WallPrism {
  using Face = std::array<AcGePoint3d, 4>;

  AcDbObjectId source;
  std::string name;   // of its group: layer and handle
  std::string layer;  // UTF-8
  AcGePoint3d startLeft, startMid, startRight, endRight, endMid, endLeft;
  double height = 0.0;
  bool isStartFree = true;  // no other wall meets the start
  bool isEndFree = true;

  /// Ten quadrilaterals, outward sides counter-clockwise: floor and ceiling in two halves each
  /// along the middle line, two sides, two halves of each end. Together they are closed.
  std::vector<Face> faces() const;
  /// Whether a face, by its number in faces(), is hidden inside the joint with another wall.
  bool isHiddenInJoint(std::size_t face) const;
};

WallPrism makePrism(const BodyWall& wall, const PrepareFrom2dTo3dData& ends, double height);

/// Whether the file's ending is one that writeModel writes: .dxf, .obj.
bool isModelFile(const std::filesystem::path& file);
/// Writes the prisms; the file appears whole or not at all.
/// Fails: throws CommandError (OutputUnwritable).
void writeModel(const std::vector<WallPrism>& prisms, const std::filesystem::path& file);

}  // namespace quoin::commands
