#include "plan/WallOutlines.h"

#include <algorithm>

#include "plan/PlanPoint.h"
#include "plan/PointIndex.h"

namespace quoin::plan {

namespace {

/// Which walls can matter to which. The algorithm looks at walls only to find those that meet the
/// show wall: one of their ends is at a computed distance below the capture distance from one of
/// its own. All others it passes over, and what it finds it takes in the order of the list. So a
/// list of the walls with such an end, in the order of the plan, gives the same results bit for
/// bit; that it holds a few more does not matter.
class NearWalls {
 public:
  NearWalls(const std::vector<WallEntityLikeRect>& walls, double captureDistance)
      : m_walls(walls), m_captureDistance(captureDistance), m_ends(endsOf(walls)) {}

  /// The indices of the walls near this one, in order and without itself.
  std::vector<std::size_t> of(std::size_t wall) const {
    std::vector<std::size_t> near;
    for (const AcGePoint3d& end : {m_walls[wall].ptStart, m_walls[wall].ptEnd}) {
      m_ends.visitIn(PointBox(end, m_captureDistance), [&](std::size_t point) {
        if (point / 2 != wall) {
          near.push_back(point / 2);
        }
      });
    }
    std::sort(near.begin(), near.end());
    near.erase(std::unique(near.begin(), near.end()), near.end());
    return near;
  }

 private:
  static std::vector<AcGePoint3d> endsOf(const std::vector<WallEntityLikeRect>& walls) {
    std::vector<AcGePoint3d> ends;
    ends.reserve(2 * walls.size());
    for (const WallEntityLikeRect& wall : walls) {
      ends.push_back(wall.ptStart);
      ends.push_back(wall.ptEnd);
    }
    return ends;
  }

  const std::vector<WallEntityLikeRect>& m_walls;
  double m_captureDistance;
  PointIndex m_ends;
};

/// Takes the records out of an algorithm object that would delete them, whatever happens. The show
/// wall is released with the array.
class BorrowedRecords {
 public:
  explicit BorrowedRecords(CShowWallLikeAlgorithm& algorithm) : m_algorithm(algorithm) {}
  ~BorrowedRecords() {
    std::vector<WallEntityLikeRect*>& all = m_algorithm.GetAllWallRect();
    all.clear();
    all.push_back(m_algorithm.GetShowWall());
  }
  BorrowedRecords(const BorrowedRecords&) = delete;
  BorrowedRecords& operator=(const BorrowedRecords&) = delete;

 private:
  CShowWallLikeAlgorithm& m_algorithm;
};

}  // namespace

void showEachWall(const std::vector<WallEntityLikeRect>& walls, double captureDistance,
                  const std::function<void(std::size_t, CShowWallLikeAlgorithm&)>& compute) {
  std::vector<WallEntityLikeRect> records = walls;  // the algorithm takes what it may write to
  const NearWalls nearWalls(walls, captureDistance);
  for (std::size_t i = 0; i < walls.size(); ++i) {
    CShowWallLikeAlgorithm algorithm;
    *algorithm.GetShowWall() = records[i];
    algorithm.GetAllWallRect().reserve(1);  // so that giving the show wall back cannot fail
    const BorrowedRecords borrowed(algorithm);
    for (const std::size_t near : nearWalls.of(i)) {
      algorithm.GetAllWallRect().push_back(&records[near]);
    }
    compute(i, algorithm);
  }
}

std::vector<FloorOutline> floorOutlines(const std::vector<Wall>& walls, double captureDistance) {
  std::vector<WallEntityLikeRect> records;
  records.reserve(walls.size());
  for (const Wall& wall : walls) {
    records.push_back({AcGePoint3d(wall.start.x, wall.start.y, 0.0),
                       AcGePoint3d(wall.end.x, wall.end.y, 0.0), wall.left, wall.right});
  }
  std::vector<FloorOutline> outlines;
  outlines.reserve(walls.size());
  showEachWall(records, captureDistance, [&](std::size_t, CShowWallLikeAlgorithm& algorithm) {
    const PrepareFrom2dTo3dData ends = algorithm.CalcShowWallPrepareFor3d();
    outlines.push_back({flat(ends.ptStartLeft), flat(ends.ptStartMid), flat(ends.ptStartRight),
                        flat(ends.ptEndRight), flat(ends.ptEndMid), flat(ends.ptEndLeft),
                        ends.bHasStartWall, ends.bHasEndWall});
  });
  return outlines;
}

}  // namespace quoin::plan
