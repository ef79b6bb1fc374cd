// Wall lines that blocks and multilines show in model space: counted, and taken along as they
// stand in the plan.
#pragma once

#include <set>
#include <string>

#include "commands/WallLines.h"

namespace quoin::commands {

/// So many lines are taken out of the blocks of a drawing; nested arrays may show any number.
inline constexpr std::size_t kMostInsideLines = 2'000'000;

/// Whether an entity shows lines that are no entities of model space: INSERT, MLINE.
bool showsOtherLines(const AcDbObjectId& id);

/// Counts the straight lines on the layers inside the blocks that model space inserts, nested ones
/// and arrays included, and in multilines. What is on layer 0 in a block counts for the layer of
/// its insert. An insert on the layers
/// that shows none counts as an entity of another kind. Each block is read once, however often it
/// is inserted.
void countInside(Drawing& drawing, const std::set<std::wstring>& layers, LeftOut& found);

/// As countInside(), and appends the lines to `walls`, each where it stands in the plan, with what
/// shows it (WallLine::within); those of one insert stand together, in the order of BlockWalk.
/// `locked` are the layers that are locked.
void takeInside(Drawing& drawing, const std::set<std::wstring>& layers,
                const std::set<std::wstring>& locked, WallLines& walls);

/// The name of a block, UTF-8.
std::string blockName(const AcDbObjectId& block);

}  // namespace quoin::commands
