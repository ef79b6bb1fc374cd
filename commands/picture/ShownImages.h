// The images on a page: their files, opened as fine as the page shows them.
#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "commands/picture/DrawList.h"
#include "commands/picture/Picture.h"
#include "commands/picture/Render.h"

namespace quoin::commands {

/// Opens the images of the list, which the picture shows on a page of these options; `images` must
/// be there. Those that do not show are named among the picture's warnings. Returns how often each
/// path is named.
/// Fails: throws CommandError (Interrupted; Usage where the plan does not fit the paper).
std::map<std::string, std::size_t> openImages(Picture& picture, const DrawList& list,
                                              const SheetOptions& options);

}  // namespace quoin::commands
