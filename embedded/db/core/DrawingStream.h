// Drawings that are written to what is no file.
#pragma once

#include <functional>
#include <string_view>

#include "dbmain.h"

namespace quoin {

/// Hands the drawing to `sink` piece by piece, as saving it in the version and form in which it was
/// read would write it.
/// Fails: eUserBreak, where its progress (hostx::setProgress) asks to stop.
HOST_API Acad::ErrorStatus writePieces(const AcDbDatabase& database,
                                       const std::function<void(std::string_view)>& sink);

}  // namespace quoin
