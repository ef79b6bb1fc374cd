#include "commands/SingleLines.h"

#include <fmt/format.h>

#include "commands/CommandError.h"
#include "commands/CommonOptions.h"
#include "commands/InsideWalls.h"
#include "dbents.h"
#include "dbobjptr.h"

namespace quoin::commands {

namespace {

/// One number for a colour: how it is given, and its value.
Adesk::UInt32 colorKey(const AcCmEntityColor& color) {
  constexpr int kValueBits = 24;
  return static_cast<Adesk::UInt32>(color.colorMethod()) << kValueBits |
         (color.isByColor() ? color.rgb() : color.colorIndex());
}

}  // namespace

SingleLines collectSingleLines(Drawing& drawing, const std::set<std::wstring>& layers,
                               bool onlyInPlane) {
  const std::set<std::wstring> locked = drawing.lockedLayers();
  SingleLines found;
  drawing.forEachEntity(drawing.modelSpaceId(), [&](const AcDbObjectId& id) {
    const std::wstring layer = hostx::layerName(id);
    if (!layers.count(layer)) {
      return;
    }
    if (hostx::kindName(id) != L"LINE") {
      if (!showsOtherLines(id)) {
        ++found.countOfKind[hostx::kindName(id)];
      }
      return;
    }
    AcDbObjectPointer<AcDbLine> line(id, AcDb::kForRead);
    if (line.openStatus() != Acad::eOk) {
      found.skipped.push_back({id, "cannot be opened"});
      return;
    }
    const AcGePoint3d start = line->startPoint();
    const AcGePoint3d end = line->endPoint();
    if (locked.count(layer)) {
      found.skipped.push_back({id, "is on a locked layer"});
    } else if (hostx::hasUnreadableNumber(line.object())) {
      found.skipped.push_back({id, kUnreadableNumber});
    } else if (start == end) {
      found.skipped.push_back({id, "has no length"});
    } else if (onlyInPlane && start.z != end.z) {
      found.skipped.push_back({id, "has ends at different heights"});
    } else {
      found.lines.push_back({start,
                             end,
                             id,
                             {layer, colorKey(line->entityColor()), takeText(line->linetype()),
                              line->linetypeScale(), static_cast<int>(line->lineWeight())},
                             line->thickness()});
    }
  });
  countInside(drawing, layers, found);
  return found;
}

void checkAnyLine(const Drawing& drawing, const std::set<std::wstring>& layers,
                  const SingleLines& found) {
  if (found.lines.empty()) {
    throw CommandError(ExitCode::NothingToDo,
                       fmt::format("{}: no LINE to work on, on {}; what is there: {}",
                                   drawing.file().string(), namesText(layers), leftOutText(found)));
  }
}

void setLineEnds(Drawing& drawing, const AcDbObjectId& id, const AcGePoint3d& start,
                 const AcGePoint3d& end) {
  AcDbObjectPointer<AcDbLine> line(id, AcDb::kForWrite);
  check(line.openStatus(), drawing, id, "open the line");
  check(line->setStartPoint(start), drawing, id, "move the line's start");
  check(line->setEndPoint(end), drawing, id, "move the line's end");
}

void eraseEntity(Drawing& drawing, const AcDbObjectId& id) {
  AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
  check(entity.openStatus(), drawing, id, "open the entity");
  check(entity->erase(), drawing, id, "erase the entity");
}

std::vector<WallLine> wallLinesOf(const SingleLines& found) {
  std::vector<WallLine> walls;
  walls.reserve(found.lines.size());
  for (const SingleLine& line : found.lines) {
    walls.push_back({line.start, line.end, line.entity, WallLine::kWholeEntity, false, {}});
  }
  return walls;
}

}  // namespace quoin::commands
