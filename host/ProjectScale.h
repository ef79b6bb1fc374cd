// The one number that the algorithms read from the open project: its drawing scale, a
// property of the project's root node. Read anew at every call, never kept. A project
// must be open: without one there is no node to ask, and nothing checks that.
#pragma once

#include <cstdint>

/// The property of the root node that holds the scale.
inline constexpr std::int32_t kProjectScaleProperty = 11;

/// The project's scale: the raw value of the root node's property 11, through the object
/// factory, the project manager and the current project. A root node of another type than
/// ROOT_MODEL is logged, once a call, and read all the same.
double GetProjectScale();

/// The length in the drawing, at scale 1, within which lines count as touching.
inline constexpr double kCaptureLength = 10.0;

/// The capture distance in drawing units: the scale's reciprocal times kCaptureLength. The
/// reciprocal is rounded first, then the product: 1 gives 10, 0.01 gives 1000, 100 gives 0.1.
/// A scale of 0 gives an infinite distance, a negative one a negative distance.
inline double GetCaptureDistance(double projectScale) {
  const double reciprocal = 1.0 / projectScale;
  return reciprocal * kCaptureLength;
}
