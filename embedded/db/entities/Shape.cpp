// SHAPE: a figure of a shape file, placed with a size and a rotation.
#include <array>

#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/PlaneTransform.h"

namespace quoin::db {
namespace {

Acad::ErrorStatus transformShape(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  constexpr std::array kLengths{40, 39};
  return transformPlaced(edit, matrix, {"AcDbShape", 50, 41, kLengths});
}

constexpr std::array kKinds{
    RecordKind{.name = "SHAPE",
               .ownCodes = kNoOwnCodes,
               .isSelfContained = true,
               .transform = transformShape},
};

}  // namespace

const std::span<const RecordKind> kShapeRows{kKinds};

}  // namespace quoin::db
