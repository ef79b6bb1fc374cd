// AcGeEntity3d: the base of the geometric objects. Objects are plain values: the kind is a
// tag that each class sets, so nothing is virtual or allocated.
#pragma once

#include "gemat3d.h"

class AcGeEntity3d {
 public:
  constexpr AcGe::EntityId type() const { return m_type; }
  /// Whether the object is of the kind or derives from it.
  bool isKindOf(AcGe::EntityId kind) const {
    switch (kind) {
      case AcGe::kLine3d:
      case AcGe::kLineSeg3d:
        return m_type == kind;
      default:
        return true;  // every kind so far is a linear entity, a curve and an entity
    }
  }

 protected:
  constexpr explicit AcGeEntity3d(AcGe::EntityId type) : m_type(type) {}

 private:
  AcGe::EntityId m_type;
};
