// Drawings that are written to what is no file.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "dbmain.h"
#include "embedded/dxf/DrawingSource.h"

namespace quoin {

/// Hands the drawing to `sink` piece by piece, as saving it in the version and form in which it was
/// read would write it.
/// Fails: eUserBreak, where its progress (hostx::setProgress) asks to stop.
HOST_API Acad::ErrorStatus writePieces(const AcDbDatabase& database,
                                       const std::function<void(std::string_view)>& sink);

/// As writePieces, as an ASCII DXF file of the drawing's version whatever it was read from. Records
/// that unreadKinds() counts are left out.
HOST_API Acad::ErrorStatus writeDxfCopy(const AcDbDatabase& database,
                                        const std::function<void(std::string_view)>& sink);

/// Kinds of records that the drawing's file has and this program does not read: they are kept and
/// can be neither shown nor edited. Empty for DXF files.
HOST_API std::vector<dxf::UnreadKind> unreadKinds(const AcDbDatabase& database);
/// Kinds of records of which a DXF copy says less than the drawing's file. Empty for DXF files.
HOST_API std::vector<dxf::UnreadKind> partlyReadKinds(const AcDbDatabase& database);
/// The application that saved the drawing's file, and why the file must not be written; "" for
/// neither.
HOST_API std::string savedBy(const AcDbDatabase& database);
HOST_API std::string whyReadOnly(const AcDbDatabase& database);

}  // namespace quoin
