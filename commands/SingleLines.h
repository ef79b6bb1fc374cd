// LINE entities of model space with the properties that tell them apart, and simple changes to
// them: for the commands that work on whole lines (merging, trimming of axes).
#pragma once

#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "commands/Drawing.h"
#include "commands/Report.h"
#include "commands/WallLines.h"

namespace quoin::commands {

struct SingleLine {
  /// Layer, colour, linetype, linetype scale, line weight.
  using Properties = std::tuple<std::wstring, Adesk::UInt32, std::wstring, double, int>;

  AcGePoint3d start;
  AcGePoint3d end;
  AcDbObjectId entity;
  Properties properties;
  double thickness = 0.0;
};

struct SingleLines {
  std::vector<SingleLine> lines;
  std::vector<SkippedEntity> skipped;
};

/// The LINE entities on the layers in file order. Lines on locked layers and of no length are
/// skipped with the reason, with `onlyLevel` those with ends at different heights too.
SingleLines collectSingleLines(Drawing& drawing, const std::set<std::wstring>& layers,
                               bool onlyLevel);

/// Fails: throws CommandError (EntityFailed).
void setLineEnds(Drawing& drawing, const AcDbObjectId& id, const AcGePoint3d& start,
                 const AcGePoint3d& end);
void eraseEntity(Drawing& drawing, const AcDbObjectId& id);

/// Names those that were skipped.
void tellSkipped(const Drawing& drawing, const SingleLines& found, Report& report);
nlohmann::json skippedJson(const SingleLines& found);

}  // namespace quoin::commands
