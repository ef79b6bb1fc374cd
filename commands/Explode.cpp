#include "commands/Explode.h"

#include <fmt/format.h>

#include <iterator>
#include <utility>

#include "commands/InsideWalls.h"
#include "commands/Progress.h"
#include "commands/ReportFields.h"
#include "commands/SingleLines.h"
#include "commands/WallChanges.h"
#include "commands/Words.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "embedded/db/entities/InPlace.h"
#include "embedded/db/entities/Multiline.h"

namespace quoin::commands {

namespace {

/// Inserts on the way to a line that is cut: no plan nests deeper, and each level is a call.
constexpr std::size_t kDeepest = 100;

/// The way to lines that are cut: for the cells of an insert, the inserts inside that lead to
/// some.
struct Way {
  std::map<std::pair<std::size_t, AcDbObjectId>, Way> inner;  // by cell and insert

  const Way* through(std::size_t cell, const AcDbObjectId& insert) const {
    const auto found = inner.find({cell, insert});
    return found == inner.end() ? nullptr : &found->second;
  }
};

AcDbObjectId blockOf(const AcDbObjectId& insert) {
  const AcDbObjectPointer<AcDbBlockReference> reference(insert, AcDb::kForRead);
  return reference.openStatus() == Acad::eOk ? reference->blockTableRecord() : AcDbObjectId::kNull;
}

std::string blockPhrase(const std::string& block) {
  return block.empty() ? "" : fmt::format(" (block {})", block);
}

}  // namespace

/// Copies of what an insert shows, made without a change of the drawing.
class Exploder::Contents {
 public:
  Contents(Exploder& exploder, std::size_t most) : m_exploder(exploder), m_most(most) {}

  /// False with the reason where the insert cannot give way to its contents.
  bool add(const Insert& insert, const AcGeMatrix3d& outer, const db::Inherited* outerLook,
           const Way& way) {
    const db::Inherited look = db::inheritedFrom(insert.entity, outerLook);
    if (!mayGiveWay(insert, look, outerLook != nullptr)) {
      return false;
    }
    const std::vector<AcDbObjectId>& entities = entitiesOf(insert.block);
    const double all = static_cast<double>(insert.cells()) * static_cast<double>(entities.size());
    if (all + static_cast<double>(made.size()) > static_cast<double>(m_most)) {
      reason = fmt::format("shows more entities than are put into a drawing ({})", kMostPlaced);
      return false;
    }
    for (std::size_t cell = 0; cell < insert.cells(); ++cell) {
      const AcGeMatrix3d matrix = outer * insert.cell(cell);
      for (const AcDbObjectId& id : entities) {
        const Way* const inner = way.through(cell, id);
        if (inner ? !addInner(id, matrix, look, *inner) : !addCopy(id, matrix, look)) {
          return false;
        }
      }
    }
    return true;
  }

  std::vector<std::unique_ptr<AcDbEntity>> made;
  std::string reason;

 private:
  bool mayGiveWay(const Insert& insert, const db::Inherited& look, bool isInside) {
    reason = m_exploder.m_locked.count(look.layer)   ? "is on a locked layer"
             : m_exploder.m_hidden.count(look.layer) ? "is on a layer that does not show"
                                                     : db::whyIndivisible(insert.entity);
    if (reason.empty()) {
      return true;
    }
    if (isInside) {
      reason = fmt::format("holds {}, which {}", nameOf(insert.entity), reason);
    }
    return false;
  }

  bool addInner(const AcDbObjectId& id, const AcGeMatrix3d& matrix, const db::Inherited& look,
                const Way& way) {
    const AcDbObjectPointer<AcDbBlockReference> reference(id, AcDb::kForRead);
    if (reference.openStatus() != Acad::eOk) {
      reason = fmt::format("holds {}, which cannot be opened", nameOf(id));
      return false;
    }
    const Insert insert = readInsert(*reference.object());
    return add(insert, matrix, &look, way);
  }

  bool addCopy(const AcDbObjectId& id, const AcGeMatrix3d& matrix, const db::Inherited& look) {
    if (!db::showsInInserts(id)) {
      return true;
    }
    if (made.size() % kBetweenLooks == 0) {
      Progress::checkInterrupt();
    }
    std::unique_ptr<AcDbEntity> copy = db::copyInPlace(id, matrix, look, reason);
    if (!copy) {
      reason += fmt::format(": {}", nameOf(id));
      return false;
    }
    made.push_back(std::move(copy));
    return true;
  }

  std::string nameOf(const AcDbObjectId& id) const { return describe(m_exploder.m_drawing, id); }

  const std::vector<AcDbObjectId>& entitiesOf(const AcDbObjectId& block) {
    const auto [known, isNew] = m_entities.try_emplace(block);
    if (isNew) {
      known->second = m_exploder.m_drawing.entities(block);
    }
    return known->second;
  }

  static constexpr std::size_t kBetweenLooks = 1024;  // entities between two looks at Ctrl-C
  Exploder& m_exploder;
  std::size_t m_most;
  std::map<AcDbObjectId, std::vector<AcDbObjectId>> m_entities;
};

Exploder::Exploder(Drawing& drawing, const std::set<std::wstring>& layers)
    : m_drawing(drawing), m_blocks(drawing, layers) {}

void Exploder::readLayers() {
  if (std::exchange(m_hasLayers, true)) {
    return;
  }
  m_locked = m_drawing.lockedLayers();
  for (const LayerContent& layer : m_drawing.layers()) {
    if (layer.isFrozen || layer.isOff) {
      m_hidden.insert(layer.name);
    }
  }
}

bool Exploder::explode(const WallLines& walls, const std::vector<std::size_t>& cut) {
  bool isNew = false;
  if (!cut.empty()) {
    readLayers();
  }
  for (std::size_t i = 0; i < cut.size();) {
    const AcDbObjectId id = walls.lines[cut[i]].within->entity;
    const auto isShown = [&](const WallLine& line) {
      return line.within && line.within->entity == id;
    };
    // The walk through an insert counts from its first line.
    std::size_t first = cut[i];
    while (first > 0 && isShown(walls.lines[first - 1])) {
      --first;
    }
    std::vector<std::size_t> lines;
    for (; i < cut.size() && isShown(walls.lines[cut[i]]); ++i) {
      if (!walls.lines[cut[i]].isLocked) {
        lines.push_back(cut[i] - first);
      }
    }
    if (lines.empty() || isLeftWhole(id)) {
      continue;
    }
    const bool isMultiline = hostx::kindName(id) == L"MLINE";
    std::string reason = isMultiline ? explodeMultiline(id) : explodeInsert(id, lines);
    if (!reason.empty()) {
      m_reasons.emplace(id, std::move(reason));
    }
    isNew = true;
  }
  return isNew;
}

std::string Exploder::explodeInsert(const AcDbObjectId& id, const std::vector<std::size_t>& cut) {
  AcDbObjectPointer<AcDbBlockReference> reference(id, AcDb::kForRead);
  check(reference.openStatus(), m_drawing, id, "open the insert");
  const Insert insert = readInsert(*reference.object());
  reference.close();

  if (m_blocks.counted(insert.block).isInsideItself) {
    return "shows a block that is inside itself";
  }
  BlockWalk walk(m_blocks);
  Way way;
  std::size_t line = 0;
  std::size_t next = 0;
  bool isTooDeep = false;
  walk.walk(insert, [&](const InnerLine& inner) {
    const std::vector<BlockWalk::Frame>& path = walk.path();
    if (path.back().toWorld * inner.start == path.back().toWorld * inner.end) {
      return true;  // was not taken
    }
    if (line++ != cut[next]) {
      return true;
    }
    isTooDeep = isTooDeep || path.size() > kDeepest;
    Way* on = &way;
    for (std::size_t i = 1; i < path.size() && !isTooDeep; ++i) {
      on = &on->inner[{path[i - 1].cell, path[i].insert->entity}];
    }
    return ++next < cut.size() && !isTooDeep;
  });
  if (isTooDeep) {
    return fmt::format("nests deeper than {} blocks", kDeepest);
  }
  Contents contents(*this, kMostPlaced - m_placed);
  if (!contents.add(insert, AcGeMatrix3d::kIdentity, nullptr, way)) {
    return contents.reason;
  }
  replace(id, blockName(insert.block), std::move(contents.made));
  return "";
}

std::string Exploder::explodeMultiline(const AcDbObjectId& id) {
  std::string reason = db::whyIndivisible(id);
  if (!reason.empty()) {
    return reason;
  }
  std::vector<std::unique_ptr<AcDbLine>> lines = db::multilineAsLines(id, reason);
  if (reason.empty() && lines.size() > kMostPlaced - m_placed) {
    reason = fmt::format("shows more entities than are put into a drawing ({})", kMostPlaced);
  }
  if (!reason.empty()) {
    return reason;
  }
  replace(id, "", {std::make_move_iterator(lines.begin()), std::make_move_iterator(lines.end())});
  return "";
}

void Exploder::replace(const AcDbObjectId& id, const std::string& block,
                       std::vector<std::unique_ptr<AcDbEntity>> made) {
  ExplodedEntity exploded{describe(m_drawing, id), sourceJson(m_drawing, id), block, {}};
  exploded.entities.reserve(made.size());
  AcDbObjectPointer<AcDbBlockTableRecord> space(m_drawing.modelSpaceId(), AcDb::kForWrite);
  check(space.openStatus(), m_drawing, id, "open model space");
  for (std::unique_ptr<AcDbEntity>& entity : made) {
    AcDbObjectId added;
    check(space->appendAcDbEntity(added, entity.get()), m_drawing, id, "explode it");
    entity.release()->close();
    exploded.entities.push_back(added);
  }
  space.close();
  eraseEntity(m_drawing, id);
  m_placed += made.size();
  m_exploded.push_back(std::move(exploded));
}

std::vector<LeftWhole> Exploder::leftWhole(const WallLines& walls,
                                           const std::vector<std::size_t>& cut) const {
  std::map<AcDbObjectId, std::size_t> lines;
  for (const std::size_t i : cut) {
    ++lines[walls.lines[i].within->entity];
  }
  std::vector<LeftWhole> left;
  for (const auto& [id, reason] : m_reasons) {
    const auto count = lines.find(id);
    if (count != lines.end()) {
      left.push_back({id, blockName(blockOf(id)), reason, count->second});
    }
  }
  return left;
}

void tellExploded(const Drawing& drawing, const std::vector<ExplodedEntity>& exploded,
                  const std::vector<LeftWhole>& left, Report& report) {
  std::size_t inserts = 0;
  std::size_t entities = 0;
  for (const ExplodedEntity& entity : exploded) {
    inserts += entity.block.empty() ? 0 : 1;
    entities += entity.entities.size();
  }
  if (!exploded.empty()) {
    std::vector<std::string> parts;
    if (inserts > 0) {
      parts.push_back(countText(inserts, "insert"));
    }
    if (inserts < exploded.size()) {
      parts.push_back(countText(exploded.size() - inserts, "multiline"));
    }
    report.line("exploded, since lines in them are cut: {} into {}", fmt::join(parts, " and "),
                countText(entities, "entity", "entities"));
  }
  report.list(exploded.size(), [&](std::size_t i) {
    return fmt::format("exploded: {}{} into {}", exploded[i].text, blockPhrase(exploded[i].block),
                       countText(exploded[i].entities.size(), "entity", "entities"));
  });
  report.list(left.size(), [&](std::size_t i) {
    return fmt::format("left whole with {} not cut: {}{} {}", countText(left[i].lines, "line"),
                       describe(drawing, left[i].entity), blockPhrase(left[i].block),
                       left[i].reason);
  });
}

void addExploded(const Drawing& drawing, const std::vector<ExplodedEntity>& exploded,
                 const std::vector<LeftWhole>& left, nlohmann::json& report) {
  report["exploded"] = nlohmann::json::array();
  for (const ExplodedEntity& entity : exploded) {
    nlohmann::json entry = entity.source;
    if (!entity.block.empty()) {
      entry["block"] = entity.block;
    }
    entry["entities"] = entity.entities.size();
    report["exploded"].push_back(std::move(entry));
  }
  report["leftWhole"] = nlohmann::json::array();
  for (const LeftWhole& whole : left) {
    nlohmann::json entry = sourceJson(drawing, whole.entity);
    if (!whole.block.empty()) {
      entry["block"] = whole.block;
    }
    entry["reason"] = whole.reason;
    entry["lines"] = whole.lines;
    report["leftWhole"].push_back(std::move(entry));
  }
}

}  // namespace quoin::commands
