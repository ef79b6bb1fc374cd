// Records that a drawing's file has and this program does not read, for reports.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "embedded/dxf/DrawingSource.h"

namespace quoin::commands {

/// "2 3DSOLID, 11 MATERIAL": entities first; "nothing" for none.
std::string unreadText(const std::vector<dxf::UnreadKind>& kinds);
/// {"3DSOLID": 2, "MATERIAL": 11}
nlohmann::json unreadJson(const std::vector<dxf::UnreadKind>& kinds);

}  // namespace quoin::commands
