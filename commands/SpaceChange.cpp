#include "commands/SpaceChange.h"

#include <fmt/format.h>

#include <map>

#include "commands/CommandError.h"
#include "commands/Progress.h"
#include "commands/ReportFields.h"
#include "commands/Words.h"
#include "dbobjptr.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

std::string causeOf(Acad::ErrorStatus status, const std::string& action) {
  switch (status) {
    case Acad::eNotApplicable:
      return "the host cannot " + action + " this kind of entity";
    case Acad::eInvalidInput:
      return "a number of it cannot be read or would become too large";
    default:
      return statusText(status);
  }
}

std::string leftKindsText(const std::vector<SkippedEntity>& left) {
  std::map<std::wstring, std::size_t> countOf;
  for (const SkippedEntity& one : left) {
    ++countOf[hostx::kindName(one.entity)];
  }
  return kindsText(countOf);
}

Acad::ErrorStatus changeEntity(const AcDbObjectId& id, const AcGeMatrix3d& matrix) {
  const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
  return entity.openStatus() == Acad::eOk ? entity->transformBy(matrix) : entity.openStatus();
}

AcGeMatrix3d matrixOf(const SpaceChange& change) {
  AcGeMatrix3d matrix;
  matrix.setToScaling(change.factor, AcGePoint3d::kOrigin);
  matrix.setTranslation(change.move);
  return matrix;
}

/// Nothing is rewritten then, not even with the same numbers.
bool isNothing(const SpaceChange& change) {
  return change.factor == 1.0 && change.move.x == 0.0 && change.move.y == 0.0 &&
         change.move.z == 0.0;
}

[[noreturn]] void refuse(const Drawing& drawing, const std::string& words,
                         const SpaceChange& change) {
  throw CommandError(ExitCode::EntityFailed,
                     fmt::format("{}: cannot {} {}; nothing was written. --leave-behind {}s the "
                                 "others",
                                 drawing.file().string(), change.action, words, change.action));
}

}  // namespace

SpaceChanged changeModelSpace(Drawing& drawing, const SpaceChange& change) {
  SpaceChanged changed;
  const std::vector<AcDbObjectId> ids = drawing.entities(drawing.modelSpaceId());
  if (isNothing(change)) {
    changed.entities = ids;
    return changed;
  }
  const AcGeMatrix3d matrix = matrixOf(change);
  constexpr std::size_t kPiece = 4096;  // entities between two looks at the user
  Progress progress(change.action == "scale" ? "Scaling" : "Moving");
  for (std::size_t i = 0; i < ids.size(); ++i) {
    if (i % kPiece == 0) {
      Progress::checkInterrupt();
      progress.report(static_cast<double>(i) / static_cast<double>(ids.size()));
    }
    const Acad::ErrorStatus status = changeEntity(ids[i], matrix);
    if (status == Acad::eOk) {
      changed.entities.push_back(ids[i]);
    } else {
      changed.left.push_back({ids[i], causeOf(status, change.action)});
    }
  }
  if (!changed.left.empty() && !change.isLeavingBehind) {
    const SkippedEntity& first = changed.left.front();
    refuse(drawing,
           fmt::format("{} of {} ({}; the first is {}: {})", changed.left.size(),
                       countText(ids.size(), "entity", "entities"), leftKindsText(changed.left),
                       describe(drawing, first.entity), first.reason),
           change);
  }
  if (db::transformViews(&drawing.database(), change.factor, change.move, changed.views) !=
      Acad::eOk) {
    throw CommandError(ExitCode::EntityFailed,
                       fmt::format("{}: cannot {} the views, limits and extents: a number would "
                                   "become too large; nothing was written",
                                   drawing.file().string(), change.action));
  }
  // What is no entity keeps no drawing back.
  for (const AcDbObjectId& id : db::placesThatStay(&drawing.database())) {
    changed.left.push_back({id, "it is no entity, and the places in it do not follow"});
  }
  return changed;
}

void tellSpaceChange(const Drawing& drawing, const SpaceChange& change, const SpaceChanged& changed,
                     Report& report) {
  const db::ViewChanges& views = changed.views;
  if (views.views + views.viewports > 0) {
    report.line("{} and {} show the same as before", countText(views.views, "view"),
                countText(views.viewports, "viewport"));
  }
  if (!changed.left.empty()) {
    report.warn(fmt::format("left as they are, the host cannot {} them: {}", change.action,
                            leftKindsText(changed.left)));
    report.list(changed.left.size(), [&](std::size_t i) {
      return fmt::format("  {}: {}", describe(drawing, changed.left[i].entity),
                         changed.left[i].reason);
    });
  }
  if (!report.isJson()) {
    return;
  }
  report.json["changed"] = changed.entities.size();
  report.json["changes"] = changesJson(drawing, changed.entities);
  report.json["views"] = views.views;
  report.json["viewports"] = views.viewports;
  report.json["headerVariables"] = views.variables;
  report.json["leftBehind"] = skippedJson(drawing, changed.left);
}

}  // namespace quoin::commands
