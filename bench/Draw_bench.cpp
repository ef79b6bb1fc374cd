// Drawing one new line among the walls of a city, and showing one wall among them: one pass over
// records that lie about in memory. Peers: reading every record's coordinates once, and finding the
// lines that the new one meets by comparing every record's box. In the first frame no record is in
// the caches; in the next ones those are that fit.
#include <algorithm>
#include <memory>

#include "DrawWallAlgorithm/DrawWallLikeAlgorithm.h"
#include "DrawWallAlgorithm/ShowWallLikeAlgorithm.h"
#include "bench/Measure.h"
#include "bench/Registration.h"
#include "bench/Workloads.h"

namespace quoin::bench {
namespace {

constexpr double kCapture = 10.0;

/// More than usual: an iteration takes no time beside making the records.
int framesFor(std::size_t size) {
  return size > 100000 ? 11 : size > 10000 ? 51 : 151;
}

/// The city's records, each allocated by itself, and pointers to them in another order if wanted.
template <class Record>
struct Records {
  explicit Records(std::size_t size, bool shuffled) {
    for (const Line& line : city(size, false)) {
      auto* const record = new Record();
      record->ptStart.set(line.x0, line.y0, 0.0);
      record->ptEnd.set(line.x1, line.y1, 0.0);
      pointers.push_back(record);
    }
    if (shuffled) {
      Random random(2);
      shuffle(pointers, random);
    }
  }
  Records(const Records&) = delete;
  Records& operator=(const Records&) = delete;
  ~Records() {
    for (Record* record : pointers) {
      delete record;
    }
  }
  std::vector<Record*> pointers;
};

template <class Record>
auto recordsFor(std::size_t size, bool shuffled, bool isFirst) {
  auto records = std::make_unique<Records<Record>>(size, shuffled);
  if (isFirst) {
    dropFromCaches(records->pointers);
  }
  return records;
}

template <class Record>
void touchAll(const Records<Record>& records) {
  double sum = 0.0;
  for (const Record* record : records.pointers) {
    sum += (record->ptStart.x + record->ptStart.y) + (record->ptEnd.x + record->ptEnd.y);
  }
  benchmark::DoNotOptimize(sum);
}

/// The distance of two segments that have a length (C. Ericson, Real-Time Collision Detection,
/// 2005, 5.1.9).
double distanceBetween(const AcGePoint3d& start1, const AcGePoint3d& end1,
                       const AcGePoint3d& start2, const AcGePoint3d& end2) {
  const AcGeVector3d along1 = end1 - start1;
  const AcGeVector3d along2 = end2 - start2;
  const AcGeVector3d apart = start1 - start2;
  const double a = along1.lengthSqrd();
  const double b = along1.dotProduct(along2);
  const double c = along1.dotProduct(apart);
  const double e = along2.lengthSqrd();
  const double f = along2.dotProduct(apart);
  const double across = a * e - b * b;
  double share1 = across > 0.0 ? std::clamp((b * f - c * e) / across, 0.0, 1.0) : 0.0;
  double share2 = (b * share1 + f) / e;
  if (share2 < 0.0) {
    share2 = 0.0;
    share1 = std::clamp(-c / a, 0.0, 1.0);
  } else if (share2 > 1.0) {
    share2 = 1.0;
    share1 = std::clamp((b - c) / a, 0.0, 1.0);
  }
  return (start1 + along1 * share1).distanceTo(start2 + along2 * share2);
}

/// Records, and those that the new line meets.
struct Scan {
  explicit Scan(std::size_t size, bool shuffled) : records(size, shuffled) {}
  Records<WallLineLikeSeg> records;
  std::vector<const WallLineLikeSeg*> near;
};
auto scanFor(std::size_t size, bool shuffled, bool isFirst) {
  auto scan = std::make_unique<Scan>(size, shuffled);
  if (isFirst) {
    dropFromCaches(scan->records.pointers);
  }
  return scan;
}

void compareBoxes(Scan& scan) {
  const Records<WallLineLikeSeg>& records = scan.records;
  const Line line = dragged(records.pointers.size(), 0);
  const double minX = std::min(line.x0, line.x1) - kCapture;
  const double maxX = std::max(line.x0, line.x1) + kCapture;
  const double minY = std::min(line.y0, line.y1) - kCapture;
  const double maxY = std::max(line.y0, line.y1) + kCapture;
  const AcGePoint3d start(line.x0, line.y0, 0.0);
  const AcGePoint3d end(line.x1, line.y1, 0.0);
  for (const WallLineLikeSeg* record : records.pointers) {
    if (std::min(record->ptStart.x, record->ptEnd.x) <= maxX &&
        std::max(record->ptStart.x, record->ptEnd.x) >= minX &&
        std::min(record->ptStart.y, record->ptEnd.y) <= maxY &&
        std::max(record->ptStart.y, record->ptEnd.y) >= minY &&
        distanceBetween(start, end, record->ptStart, record->ptEnd) < kCapture) {
      scan.near.push_back(record);
    }
  }
}
Found foundByBoxes(const Scan& scan) {
  Found found;
  for (const WallLineLikeSeg* record : scan.near) {
    found.count += 1.0;
    found.sum += record->ptStart.x + record->ptStart.y;
  }
  return found;
}

struct Drawing {
  explicit Drawing(std::size_t size, bool shuffled)
      : records(size, shuffled), line(dragged(size, 0)) {
    algorithm.GetSrcWallLines().swap(records.pointers);
  }
  ~Drawing() {
    // What the calculation took into account has passed to the algorithm.
    algorithm.GetSrcWallLines().swap(records.pointers);
    auto modified = algorithm.GetSrcModifyiedWallLines();
    std::sort(modified.begin(), modified.end());
    std::erase_if(records.pointers, [&](WallLineLikeSeg* record) {
      return std::binary_search(modified.begin(), modified.end(), record);
    });
  }
  Drawing(const Drawing&) = delete;
  Drawing& operator=(const Drawing&) = delete;

  Records<WallLineLikeSeg> records;
  Line line;
  CDrawWallLikeAlgorithm algorithm;
};
auto drawingFor(std::size_t size, bool shuffled, bool isFirst) {
  auto drawing = std::make_unique<Drawing>(size, shuffled);
  if (isFirst) {
    dropFromCaches(drawing->algorithm.GetSrcWallLines());
  }
  return drawing;
}

void draw(Drawing& drawing) {
  const Line& line = drawing.line;
  drawing.algorithm.CalcNewWallLine(AcGePoint3d(line.x0, line.y0, 0.0),
                                    AcGePoint3d(line.x1, line.y1, 0.0));
}
/// Cut lines keep their start.
Found foundByModule(Drawing& drawing) {
  Found found;
  for (const WallLineLikeSeg* record : drawing.algorithm.GetSrcModifyiedWallLines()) {
    found.count += 1.0;
    found.sum += record->ptStart.x + record->ptStart.y;
  }
  return found;
}

auto showFor(std::size_t size, bool isFirst) {
  auto algorithm = std::make_unique<CShowWallLikeAlgorithm>();
  Records<WallEntityLikeRect> records(size, true);
  for (WallEntityLikeRect* record : records.pointers) {
    record->dLeftWidth = record->dRightWidth = 100.0;
  }
  *algorithm->GetShowWall() = *records.pointers[size / 2];
  algorithm->GetAllWallRect().swap(records.pointers);
  if (isFirst) {
    dropFromCaches(algorithm->GetAllWallRect());
  }
  return algorithm;
}
void showInPlan(CShowWallLikeAlgorithm& algorithm) {
  algorithm.CalcShowWall();
}
void showFor3d(CShowWallLikeAlgorithm& algorithm) {
  benchmark::DoNotOptimize(algorithm.CalcShowWallPrepareFor3d());
}

}  // namespace

void registerDraw() {
  for (const bool shuffled : {false, true}) {
    for (const bool isFirst : {true, false}) {
      const std::string workload =
          std::string(shuffled ? "draw-shuffled" : "draw-ordered") + (isFirst ? "" : "-again");
      const auto drawing = [=](std::size_t size) { return drawingFor(size, shuffled, isFirst); };
      const auto scan = [=](std::size_t size) { return scanFor(size, shuffled, isFirst); };
      const auto records = [=](std::size_t size) {
        return recordsFor<WallLineLikeSeg>(size, shuffled, isFirst);
      };
      for (const std::size_t size : {10000u, 100000u, 1000000u}) {
        Row(workload, size, framesFor(size))
            .form("ours", drawing, draw, foundByModule)
            .form("boxes", scan, compareBoxes, foundByBoxes)
            .form("touch", records, touchAll<WallLineLikeSeg>)
            .add();
      }
    }
  }
}

void registerShow() {
  for (const bool isFirst : {true, false}) {
    const std::string workload = isFirst ? "show" : "show-again";
    const auto walls = [=](std::size_t size) { return showFor(size, isFirst); };
    const auto records = [=](std::size_t size) {
      return recordsFor<WallEntityLikeRect>(size, true, isFirst);
    };
    for (const std::size_t size : {10000u, 100000u, 1000000u}) {
      Row(workload, size, framesFor(size))
          .form("ours", walls, showInPlan)
          .form("touch", records, touchAll<WallEntityLikeRect>)
          .add();
      Row(workload + "-for-3d", size, framesFor(size)).form("ours", walls, showFor3d).add();
    }
  }
}

}  // namespace quoin::bench
