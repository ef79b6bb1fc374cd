// Turns the pieces of wall lines into changes of the drawing: a LINE becomes its first piece
// and copies of itself, a segment of a polyline becomes lines (polylines where it has a
// width) while the rest of the polyline stays a polyline.
#pragma once

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "commands/Drawing.h"
#include "commands/WallLines.h"

namespace quoin::commands {

struct WallPiece {
  AcGePoint3d start;
  AcGePoint3d end;
  /// The handle of the entity that the piece became; empty in a dry run and where the file
  /// gives no handles.
  std::string handle;
};

/// A wall line and the pieces that take its place, at least two.
struct WallChange {
  WallLine source;
  std::vector<WallPiece> pieces;
  /// What reports say of the source, as it was before the change (sourceJson).
  nlohmann::json report = nlohmann::json();
};

/// Changes the drawing and fills in the pieces' handles. Changes of one entity stand together,
/// in ascending segment order. Every piece keeps its source's layer, colour, linetype, line
/// weight, thickness and extended data; the pieces of a polyline's segment with a width are
/// polylines with their share of it, others are lines. The first piece of a LINE keeps its handle;
/// what is left of a polyline in front keeps the polyline's, and where nothing is left the first
/// piece takes it over.
/// Fails: throws CommandError (EntityFailed).
void applyWallChanges(Drawing& drawing, std::vector<WallChange>& changes);

/// Adds a new entity to a block and returns its handle.
/// Fails: throws CommandError (EntityFailed).
std::string appendEntity(Drawing& drawing, const AcDbObjectId& block,
                         std::unique_ptr<AcDbEntity> entity);

/// For reports: the pieces, and the changes with source and result handles.
nlohmann::json piecesJson(const std::vector<WallPiece>& pieces);
nlohmann::json changesJson(const std::vector<WallChange>& changes);

}  // namespace quoin::commands
