// LINE entities of model space with the properties that distinguish them, and simple changes to
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

struct SingleLines : LeftOut {
  std::vector<SingleLine> lines;
};

/// The LINE entities on the layers in file order. Lines on locked layers and of no length are
/// skipped with the reason, with `onlyInPlane` those with ends at different heights too; everything
/// else on the layers is counted.
SingleLines collectSingleLines(Drawing& drawing, const std::set<std::wstring>& layers,
                               bool onlyInPlane);

/// Fails: throws CommandError (NothingToDo) that names what is on the layers instead where there
/// is no line.
void checkAnyLine(const Drawing& drawing, const std::set<std::wstring>& layers,
                  const SingleLines& found);

/// Fails: throws CommandError (EntityFailed).
void setLineEnds(Drawing& drawing, const AcDbObjectId& id, const AcGePoint3d& start,
                 const AcGePoint3d& end);
void eraseEntity(Drawing& drawing, const AcDbObjectId& id);

/// Their ends alone.
std::vector<WallLine> wallLinesOf(const SingleLines& found);

}  // namespace quoin::commands
