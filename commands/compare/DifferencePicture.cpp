#include "commands/compare/DifferencePicture.h"

#include <fmt/format.h>

#include <set>
#include <vector>

#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"

namespace quoin::commands {

namespace {

/// Where a new line is drawn over an old one, both are to be seen.
constexpr double kOldWidth = 3.6;
constexpr double kNewWidth = 1.6;

}  // namespace

std::string countsText(const ChangeCounts& counts) {
  return fmt::format("{} added, {} removed, {} moved, {} changed, {} same", counts.added,
                     counts.removed, counts.moved, counts.changed, counts.same);
}

Picture differencePicture(Drawing& before, Drawing& after, const DrawingDifference& difference,
                          const std::string& what) {
  std::vector<AcDbObjectId> olds;
  std::vector<AcDbObjectId> news;
  ChangeCounts counts;
  std::size_t blocks = 0;
  for (const ComparedSpace& space : difference.spaces) {
    if (space.kind != ComparedSpace::Kind::Model) {
      blocks += space.kind == ComparedSpace::Kind::Block && !space.counts().isSame() ? 1 : 0;
      continue;
    }
    counts = space.counts();
    for (const auto* list : {&space.added, &space.removed, &space.moved, &space.changed}) {
      for (const ComparedEntity& entity : *list) {
        if (!entity.before.isNull()) {
          olds.push_back(entity.before);
        }
        if (!entity.after.isNull()) {
          news.push_back(entity.after);
        }
      }
    }
  }
  Picture picture = newPicture(after, what, countsText(counts));
  addPlanShapes(picture, after, {news.begin(), news.end()});
  addEntityShapes(picture, before, olds, palette::kMark, kOldWidth);
  addEntityShapes(picture, after, news, palette::kThird, kNewWidth);
  picture.legend = {{"old", palette::kMark, false, MarkShape::Dot, kOldWidth},
                    {"new", palette::kThird, false, MarkShape::Dot, kNewWidth},
                    {"same", palette::kPlan, false, MarkShape::Dot, kPlanWidth}};
  if (blocks > 0) {
    picture.warnings.push_back(
        fmt::format("{} blocks differ inside; their inserts count as the same", blocks));
  }
  return picture;
}

}  // namespace quoin::commands
