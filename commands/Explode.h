// Inserts and multilines that give way to what they show, so that lines in them can be cut.
#pragma once

#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "commands/BlockLines.h"
#include "commands/Drawing.h"
#include "commands/Report.h"
#include "commands/WallLines.h"

namespace quoin::commands {

/// So many entities are put in the place of a drawing's inserts and multilines.
inline constexpr std::size_t kMostPlaced = 500'000;

/// An insert or a multiline that is gone, and what stands in its place.
struct ExplodedEntity {
  std::string text;       // describe(), as it was
  nlohmann::json source;  // sourceJson(), as it was
  std::string block;      // empty for a multiline
  std::vector<AcDbObjectId> entities;
};

/// One that stays as it is, since it cannot be exploded without changing what the plan shows or
/// losing something.
struct LeftWhole {
  AcDbObjectId entity;
  std::string block;
  std::string reason;
  std::size_t lines = 0;  // in it that are not cut for this
};

/// Explodes what shows lines of the plan: the insert of model space and those inside its block on
/// the way to such a line, in all cells of arrays. Other inserts in the block stay inserts. Layer
/// 0, and what is by block, become what the insert says; the block stays in the drawing.
class Exploder {
 public:
  /// The layers, whose lines count, must outlive this.
  Exploder(Drawing& drawing, const std::set<std::wstring>& layers);

  /// Explodes what shows these lines (indices into `walls`, ascending); those on locked layers and
  /// what was left whole before are passed over. The lines must be those of the drawing as it is.
  /// Returns whether anything was exploded or newly left whole: the lines are to be collected anew
  /// then.
  /// Fails: throws CommandError (EntityFailed, Interrupted).
  bool explode(const WallLines& walls, const std::vector<std::size_t>& cut);

  bool isLeftWhole(const AcDbObjectId& entity) const { return m_reasons.count(entity) != 0; }
  const std::vector<ExplodedEntity>& exploded() const { return m_exploded; }
  /// What was left whole with the number of lines in it among these, in file order.
  std::vector<LeftWhole> leftWhole(const WallLines& walls,
                                   const std::vector<std::size_t>& cut) const;

 private:
  class Contents;
  void readLayers();
  std::string explodeInsert(const AcDbObjectId& id, const std::vector<std::size_t>& cut);
  std::string explodeMultiline(const AcDbObjectId& id);
  void replace(const AcDbObjectId& id, const std::string& block,
               std::vector<std::unique_ptr<AcDbEntity>> made);

  Drawing& m_drawing;
  BlockLines m_blocks;
  std::set<std::wstring> m_locked;
  std::set<std::wstring> m_hidden;
  bool m_hasLayers = false;
  std::map<AcDbObjectId, std::string> m_reasons;
  std::vector<ExplodedEntity> m_exploded;
  std::size_t m_placed = 0;
};

/// What was exploded, and what was not and why.
void tellExploded(const Drawing& drawing, const std::vector<ExplodedEntity>& exploded,
                  const std::vector<LeftWhole>& left, Report& report);
/// The fields exploded and leftWhole.
void addExploded(const Drawing& drawing, const std::vector<ExplodedEntity>& exploded,
                 const std::vector<LeftWhole>& left, nlohmann::json& report);

}  // namespace quoin::commands
