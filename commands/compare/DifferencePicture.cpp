#include "commands/compare/DifferencePicture.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "commands/Words.h"
#include "commands/compare/BlockPlaces.h"
#include "commands/compare/PlacedShapes.h"
#include "commands/picture/DrawList.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"

namespace quoin::commands {

namespace {

/// Where a new line is drawn over an old one, both are to be seen.
constexpr double kOldWidth = 3.6;
constexpr double kNewWidth = 1.6;
constexpr double kFrameWidth = 1.2;
constexpr Color kFrame = palette::kSecond;
/// Places of blocks that are drawn one by one: more cover all of any plan.
constexpr std::size_t kMostPlaces = 20000;

/// What stands for one of the two drawings.
struct Side {
  Drawing& drawing;
  AcDbObjectId ComparedSpace::*block;
  AcDbObjectId ComparedEntity::*entity;
  const Color& color;
  double width;
};

std::vector<AcDbObjectId> entitiesOf(const ComparedSpace& space, const Side& side) {
  std::vector<AcDbObjectId> entities;
  for (const auto* list : {&space.added, &space.removed, &space.moved, &space.changed}) {
    for (const ComparedEntity& one : *list) {
      if (!(one.*side.entity).isNull()) {
        entities.push_back(one.*side.entity);
      }
    }
  }
  return entities;
}

/// A block that differs.
struct ChangedBlock {
  const ComparedSpace* space;
  Box box;  // around what it showed and what it shows
};

/// What differs between two drawings, by where it stands.
struct ChangedSpaces {
  const ComparedSpace* model = nullptr;
  std::vector<ChangedBlock> blocks;
  std::string layouts;  // names
};

ChangedSpaces changedSpaces(const DrawingDifference& difference) {
  ChangedSpaces changed;
  for (const ComparedSpace& space : difference.spaces) {
    if (space.kind == ComparedSpace::Kind::Model) {
      changed.model = &space;
    } else if (space.isChangedBlock()) {
      DrawList shown;
      drawSpace(space.before, shown);
      drawSpace(space.after, shown);
      changed.blocks.push_back({&space, shown.extents()});
    } else if (space.kind == ComparedSpace::Kind::Layout && !space.counts().isSame()) {
      changed.layouts += (changed.layouts.empty() ? "" : ", ") + space.name;
    }
  }
  return changed;
}

/// Where blocks that differ are marked.
struct MarkedPlaces {
  std::vector<std::vector<AcGePoint2d>> frames;  // corners of the block
  std::set<AcDbObjectId> blocks;
  std::size_t count = 0;
  bool isCutShort = false;
  /// Blocks that model space does not show.
  std::size_t hidden = 0;
};

/// What differs in the blocks of one side.
class BlockMarks {
 public:
  BlockMarks(const std::vector<ChangedBlock>& blocks, const Side& side) : m_side(side) {
    for (const ChangedBlock& changed : blocks) {
      const AcDbObjectId block = changed.space->*side.block;
      m_blocks.insert(block);
      m_boxes[block] = changed.box;
      record(*changed.space, m_marked[block]);
    }
  }

  /// Draws it wherever model space shows it, but not in references that are marked themselves.
  MarkedPlaces addTo(Picture& picture, const std::set<AcDbObjectId>& except) const {
    const BlockPlaces places(m_side.drawing, m_blocks);
    auto list = std::make_shared<DrawList>();
    MarkedPlaces marked;
    std::size_t visited = 0;
    places.walk([&](const BlockPlaces::Place& place) {
      marked.isCutShort = visited++ == kMostPlaces;
      if (!marked.isCutShort && except.count(place.reference) == 0) {
        ++marked.count;
        marked.blocks.insert(place.block);
        m_marked.at(place.block).drawAt(place.toWorld, *list);
        addFrame(place, marked.frames);
      }
      return !marked.isCutShort;
    });
    marked.hidden = static_cast<std::size_t>(
        std::count_if(m_blocks.begin(), m_blocks.end(),
                      [&](const AcDbObjectId& block) { return places.count(block) == 0.0; }));
    const Box& box = list->extents();
    if (!box.isEmpty()) {
      picture.focus.emplace_back(box.minX, box.minY);
      picture.focus.emplace_back(box.maxX, box.maxY);
    }
    picture.drawn.push_back(
        {std::move(list), m_side.color, m_side.width, true, picture.paths.size()});
    return marked;
  }

 private:
  void record(const ComparedSpace& space, PlacedShapes& shapes) const {
    if (space.isShifted) {
      hostx::drawBlock(space.*m_side.block, shapes);
      return;
    }
    for (const AcDbObjectId& entity : entitiesOf(space, m_side)) {
      hostx::drawEntity(entity, shapes);
    }
  }

  void addFrame(const BlockPlaces::Place& place,
                std::vector<std::vector<AcGePoint2d>>& frames) const {
    const Box& box = m_boxes.at(place.block);
    if (box.isEmpty()) {
      return;
    }
    std::vector<AcGePoint2d>& frame = frames.emplace_back();
    for (const auto& [x, y] : {std::pair(box.minX, box.minY), std::pair(box.maxX, box.minY),
                               std::pair(box.maxX, box.maxY), std::pair(box.minX, box.maxY)}) {
      const AcGePoint3d corner = place.toWorld * AcGePoint3d(x, y, 0.0);
      frame.emplace_back(corner.x, corner.y);
    }
  }

  const Side& m_side;
  std::set<AcDbObjectId> m_blocks;
  std::map<AcDbObjectId, PlacedShapes> m_marked;
  std::map<AcDbObjectId, Box> m_boxes;
};

void addWarnings(Picture& picture, const ChangedSpaces& changed, const MarkedPlaces& marked) {
  if (marked.isCutShort) {
    picture.warnings.push_back(
        fmt::format("of the places of blocks that differ the first {} are marked", kMostPlaces));
  }
  if (marked.hidden > 0) {
    picture.warnings.push_back("blocks that differ, too, and that model space does not show: " +
                               std::to_string(marked.hidden));
  }
  if (!changed.layouts.empty()) {
    picture.warnings.push_back("layouts that differ, too: " + changed.layouts);
  }
}

}  // namespace

std::string countsText(const ChangeCounts& counts) {
  return fmt::format("{} added, {} removed, {} moved, {} changed, {} same", counts.added,
                     counts.removed, counts.moved, counts.changed, counts.same);
}

PlaceCounts placesOfChangedBlocks(Drawing& after, const DrawingDifference& difference) {
  std::set<AcDbObjectId> blocks;
  for (const ComparedSpace& space : difference.spaces) {
    if (space.isChangedBlock()) {
      blocks.insert(space.after);
    }
  }
  PlaceCounts counts;
  if (!blocks.empty()) {
    const BlockPlaces places(after, blocks);
    for (const AcDbObjectId& block : blocks) {
      counts[block] = places.count(block);
    }
  }
  return counts;
}

Picture differencePicture(Drawing& before, Drawing& after, const DrawingDifference& difference,
                          const std::string& what) {
  const Side sides[] = {
      {before, &ComparedSpace::before, &ComparedEntity::before, palette::kMark, kOldWidth},
      {after, &ComparedSpace::after, &ComparedEntity::after, palette::kThird, kNewWidth}};
  const ChangedSpaces changed = changedSpaces(difference);
  std::vector<AcDbObjectId> own[2];
  for (std::size_t i = 0; i < 2 && changed.model; ++i) {
    own[i] = entitiesOf(*changed.model, sides[i]);
  }
  Picture picture =
      newPicture(after, what, countsText(changed.model ? changed.model->counts() : ChangeCounts()));
  addPlanShapes(picture, after, {own[1].begin(), own[1].end()});
  MarkedPlaces marked;
  for (std::size_t i = 0; i < 2; ++i) {
    addEntityShapes(picture, sides[i].drawing, own[i], sides[i].color, sides[i].width);
    if (!changed.blocks.empty()) {
      // The places of the drawing as it is are framed; a reference that went is red as a whole.
      marked = BlockMarks(changed.blocks, sides[i]).addTo(picture, {own[i].begin(), own[i].end()});
    }
  }
  picture.legend = {{"old", palette::kMark, false, MarkShape::Dot, kOldWidth},
                    {"new", palette::kThird, false, MarkShape::Dot, kNewWidth}};
  if (marked.count > 0) {
    picture.subtitle += fmt::format("; blocks that differ inside: {}, at {}", marked.blocks.size(),
                                    countText(marked.count, "place"));
    picture.legend.push_back(
        {"around a block that differs", kFrame, false, MarkShape::Dot, kFrameWidth});
  }
  picture.legend.push_back({"same", palette::kPlan, false, MarkShape::Dot, kPlanWidth});
  for (std::vector<AcGePoint2d>& frame : marked.frames) {
    picture.focus.insert(picture.focus.end(), frame.begin(), frame.end());
    picture.paths.push_back({std::move(frame), true, kFrame, kFrameWidth, true});
  }
  addWarnings(picture, changed, marked);
  return picture;
}

}  // namespace quoin::commands
