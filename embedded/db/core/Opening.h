// Opening and closing: from a stub to a live view and back.
#pragma once

#include "dbmain.h"

namespace quoin::db {

/// See acdbOpenAcDbObject.
Acad::ErrorStatus openStub(AcDbObject*& object, AcDbStub* stub, AcDb::OpenMode mode,
                           bool openErased) noexcept;

/// Ends all openings of a view and puts it into quarantine, unless the caller keeps the
/// object alive itself.
void closeView(AcDbObject& view, bool intoQuarantine = false) noexcept;

/// As closeView, for a view that is open when its database goes away; counts it.
void releaseLeftOpen(AcDbObject& view) noexcept;

}  // namespace quoin::db
