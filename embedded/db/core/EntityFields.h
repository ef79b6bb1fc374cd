// What all entities share, between tags and values; layers share the colours.
#pragma once

#include "dbcolor.h"
#include "embedded/db/core/DatabaseImpl.h"

namespace quoin::db {

/// The colour that the tags of a place name; by layer where they name none.
AcCmColor colorOf(const TagList& tags, const SubclassLayout& layout);
/// A true colour needs files of R2004 or later; before, its nearest index alone is written.
/// By layer takes an entity's colour tags away.
void setColor(RecordEdit& edit, const SubclassLayout& layout, const AcCmColor& color);

/// Gives an entity the colour of another, with the nearest index that its writer chose beside a
/// true colour.
void copyColor(RecordEdit& edit, const TagList& from);

/// Whether a layer is one that the host keeps from its users: its own name (behind the bar of
/// an external reference) begins with an asterisk.
bool isHiddenLayer(std::wstring_view name);

/// The name of an entity's linetype; "ByLayer" where it names none.
std::wstring linetypeNameOf(const TagList& tags);
void setLinetype(RecordEdit& edit, std::wstring_view name);

/// Runs edits on an entity and, with `withParts`, on its vertices or attributes.
template <class Edits>
Acad::ErrorStatus changeWithParts(AcDbObject& entity, bool withParts, Edits&& edits) noexcept {
  const Acad::ErrorStatus status = change(entity, edits);
  if (status != Acad::eOk || !withParts) {
    return status;
  }
  try {
    ObjectImpl& impl = Access::of(entity);
    if (impl.stub && impl.stub->role == dxf::Role::Entity) {
      for (AcDbStub* const part : impl.database->store.subEntities(*impl.stub)) {
        if (!part->erased) {
          changeRecord(*part, edits);
        }
      }
    }
    for (const auto& part : impl.own().parts) {
      change(*part, edits);
    }
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

}  // namespace quoin::db
