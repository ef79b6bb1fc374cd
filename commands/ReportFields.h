// Parts of JSON reports that more than one command has. docs/report.schema.json says what a report
// may hold.
#pragma once

#include <cstddef>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "commands/Drawing.h"
#include "dbmain.h"
#include "gepnt3d.h"

namespace quoin::commands {

/// The drawing as it was read.
nlohmann::json fileJson(const Drawing& drawing);
/// An entity of the drawing that was read: its handle as "source" ("" where the file gives none),
/// "kind" ("LINE") and "line", where the entity begins in the file ("byte" in a binary one).
nlohmann::json sourceJson(const Drawing& drawing, const AcDbObjectId& id);
/// Each of these entities for itself, as sourceJson says it.
nlohmann::json changesJson(const Drawing& drawing, const std::vector<AcDbObjectId>& entities);
/// How many entities of each kind: {"LINE": 3}.
nlohmann::json kindsJson(const std::map<std::wstring, std::size_t>& countOfKind);
nlohmann::json namesJson(const std::set<std::wstring>& names);
nlohmann::json pointJson(const AcGePoint3d& point);
/// Least and greatest corner; null where there is nothing.
nlohmann::json boxJson(const AcDbExtents& box);
/// A line that is the result of a change: its handle ("" in a dry run and where the file gives
/// none), ends and length.
nlohmann::json lineJson(const std::string& handle, const AcGePoint3d& start,
                        const AcGePoint3d& end);

}  // namespace quoin::commands
