#include "commands/ReportFields.h"

#include "embedded/os/Utf8.h"

namespace quoin::commands {

nlohmann::json fileJson(const Drawing& drawing) {
  return {{"file", drawing.file().string()},
          {"release", os::toUtf8(drawing.info().release)},
          {"binary", drawing.info().isBinary},
          {"units", drawing.unitName()}};
}

nlohmann::json sourceJson(const Drawing& drawing, const AcDbObjectId& id) {
  nlohmann::json json = {{"source", handleText(id)}, {"kind", os::toUtf8(hostx::kindName(id))}};
  if (const Adesk::UInt64 place = placeInFile(drawing, id); place != 0) {
    json[drawing.info().isBinary ? "byte" : "line"] = place;
  }
  return json;
}

nlohmann::json changesJson(const Drawing& drawing, const std::vector<AcDbObjectId>& entities) {
  nlohmann::json changes = nlohmann::json::array();
  for (const AcDbObjectId& id : entities) {
    changes.push_back(sourceJson(drawing, id));
  }
  return changes;
}

nlohmann::json kindsJson(const std::map<std::wstring, std::size_t>& countOfKind) {
  nlohmann::json kinds = nlohmann::json::object();
  for (const auto& [kind, count] : countOfKind) {
    kinds[os::toUtf8(kind)] = count;
  }
  return kinds;
}

nlohmann::json namesJson(const std::set<std::wstring>& names) {
  nlohmann::json json = nlohmann::json::array();
  for (const std::wstring& name : names) {
    json.push_back(os::toUtf8(name));
  }
  return json;
}

nlohmann::json pointJson(const AcGePoint3d& point) {
  return {point.x + 0.0, point.y + 0.0, point.z + 0.0};  // a zero has no sign
}

nlohmann::json boxJson(const AcDbExtents& box) {
  return box.isFresh() ? nlohmann::json()
                       : nlohmann::json{pointJson(box.minPoint()), pointJson(box.maxPoint())};
}

nlohmann::json lineJson(const std::string& handle, const AcGePoint3d& start,
                        const AcGePoint3d& end) {
  return {{"handle", handle},
          {"start", pointJson(start)},
          {"end", pointJson(end)},
          {"length", start.distanceTo(end)}};
}

}  // namespace quoin::commands
