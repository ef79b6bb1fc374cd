#include "oracle/ShowWallOracle.h"

#include <algorithm>
#include <cmath>

#include "GeomDegree.h"

namespace quoin::oracle {

namespace {

constexpr double kHalfPi = 1.57079632679489661923;

struct Corners {
  AcGePoint3d c0, c1, c2, c3;
};

Corners rectCorners(const AcGePoint3d& ref, const WallEntityLikeRect& rect) {
  AcGePoint3d p0 = rect.ptStart;
  AcGePoint3d p1 = rect.ptEnd;
  double wl = rect.dLeftWidth;
  double wr = rect.dRightWidth;
  if (rect.ptStart.distanceTo(ref) > rect.ptEnd.distanceTo(ref)) {
    std::swap(p0, p1);
    std::swap(wl, wr);
  }
  AcGeVector3d u = p1 - p0;
  u.normalize(AcGeContext::gTol);
  AcGeVector3d n = u;
  n.rotateBy(kHalfPi, AcGeVector3d::kZAxis);
  return {p0 + n * wl, p0 - n * wr, p1 + n * wl, p1 - n * wr};
}

double outAngle(const AcGePoint3d& ref, const WallEntityLikeRect& rect) {
  AcGePoint3d p0 = rect.ptStart;
  AcGePoint3d p1 = rect.ptEnd;
  if (rect.ptStart.distanceTo(ref) > rect.ptEnd.distanceTo(ref)) {
    std::swap(p0, p1);
  }
  AcGeVector3d v = p1 - p0;
  v.z = 0.0;
  return AcGeVector3d::kXAxis.angleTo(v, AcGeVector3d::kZAxis);
}

double includedAngle(const AcGeLine3d& line1, const AcGeLine3d& line2) {
  const AcGeVector3d d1 = line1.direction();
  const AcGeVector3d d2 = line2.direction();
  const AcGeVector3d up = AcGeVector3d::kZAxis;
  const AcGeVector3d down = -AcGeVector3d::kZAxis;
  const double a1 = d1.angleTo(d2, up);
  if (kHalfPi >= a1) {
    return a1;
  }
  const double a2 = d1.angleTo(-d2, up);
  if (kHalfPi >= a2) {
    return a2;
  }
  const double a3 = d1.angleTo(d2, down);
  if (kHalfPi >= a3) {
    return a3;
  }
  return d1.angleTo(-d2, down);
}

struct MeetLists {
  std::vector<const WallEntityLikeRect*> start;
  std::vector<const WallEntityLikeRect*> end;
};

MeetLists meetLists(const WallEntityLikeRect& show, const std::vector<WallEntityLikeRect>& walls,
                    double projectScale) {
  const double capture = (1.0 / projectScale) * 10.0;
  MeetLists lists;
  for (const WallEntityLikeRect& wall : walls) {
    const double startToStart = wall.ptStart.distanceTo(show.ptStart);
    const double endToStart = wall.ptEnd.distanceTo(show.ptStart);
    const double startToEnd = wall.ptStart.distanceTo(show.ptEnd);
    const double endToEnd = wall.ptEnd.distanceTo(show.ptEnd);
    const double distStart = endToStart < startToStart ? endToStart : startToStart;
    const double distEnd = endToEnd < startToEnd ? endToEnd : startToEnd;
    if (distEnd > distStart) {
      if (capture > distStart) {
        lists.start.push_back(&wall);
      }
    } else {
      if (capture > distEnd) {
        lists.end.push_back(&wall);
      }
    }
  }
  return lists;
}

struct Terminal {
  bool isFree = true;
  AcGePoint3d left;
  AcGePoint3d middle;
  AcGePoint3d right;
  std::vector<Connection> connections;
};

/// One end, with the middle point that only the preparation for 3D reads.
Terminal treatTerminal(const AcGePoint3d& terminal, const WallEntityLikeRect& show,
                       std::vector<const WallEntityLikeRect*> meet) {
  Terminal result;
  const Corners c = rectCorners(terminal, show);
  result.left = c.c0;
  result.right = c.c1;
  const AcGeLine3d across(terminal, c.c1 - c.c0);
  result.middle = (c.c0 + c.c1.asVector()) * 0.5;
  if (meet.empty()) {
    return result;
  }
  result.isFree = false;
  meet.push_back(&show);
  std::stable_sort(meet.begin(), meet.end(),
                   [&](const WallEntityLikeRect* a, const WallEntityLikeRect* b) {
                     return outAngle(terminal, *a) < outAngle(terminal, *b);
                   });
  std::size_t i = 0;
  while (meet[i] != &show) {
    ++i;
  }
  const std::size_t n = meet.size();
  const WallEntityLikeRect& previous = *meet[(n + i - 1) % n];
  const WallEntityLikeRect& next = *meet[(i + 1) % n];
  const AcGeLine3d leftEdge(c.c0, c.c2);
  const AcGeLine3d rightEdge(c.c1, c.c3);

  across.intersectWith(AcGeLine3d(previous.ptStart, previous.ptEnd), result.middle);
  const Corners p = rectCorners(terminal, previous);
  const AcGeLine3d previousLeft(p.c0, p.c2);
  const double a = includedAngle(rightEdge, previousLeft);
  if (std::fabs(CGeomDegree(a, 1).GetAngleDegree()) < 5.0) {
    result.connections.push_back({p.c0, c.c1});
  } else {
    rightEdge.intersectWith(previousLeft, result.right);
  }

  across.intersectWith(AcGeLine3d(previous.ptStart, previous.ptEnd), result.middle);
  const Corners q = rectCorners(terminal, next);
  const AcGeLine3d nextRight(q.c1, q.c3);
  const double b = includedAngle(leftEdge, nextRight);
  if (std::fabs(CGeomDegree(b, 1).GetAngleDegree()) < 5.0) {
    result.connections.push_back({c.c0, q.c1});
  } else {
    leftEdge.intersectWith(nextRight, result.left);
  }
  return result;
}

}  // namespace

ShownWall showWall(const WallEntityLikeRect& show, const std::vector<WallEntityLikeRect>& walls,
                   double projectScale) {
  const MeetLists lists = meetLists(show, walls, projectScale);
  const Terminal start = treatTerminal(show.ptStart, show, lists.start);
  const Terminal end = treatTerminal(show.ptEnd, show, lists.end);
  ShownWall shown;
  shown.left = {start.left, end.right};
  shown.right = {start.right, end.left};
  const Corners c = rectCorners(show.ptStart, show);
  if (start.isFree) {
    shown.start = WallDrawingSeg{c.c0, c.c1};
  }
  if (end.isFree) {
    shown.end = WallDrawingSeg{c.c2, c.c3};
  }
  shown.startConnections = start.connections;
  shown.endConnections = end.connections;
  return shown;
}

PreparedWall prepareWallFor3d(const WallEntityLikeRect& show,
                              const std::vector<WallEntityLikeRect>& walls, double projectScale) {
  const MeetLists lists = meetLists(show, walls, projectScale);
  const Terminal start = treatTerminal(show.ptStart, show, lists.start);
  const Terminal end = treatTerminal(show.ptEnd, show, lists.end);
  PreparedWall prepared;
  prepared.data.bHasStartWall = start.isFree;
  prepared.data.ptStartLeft = start.left;
  prepared.data.ptStartMid = start.middle;
  prepared.data.ptStartRight = start.right;
  prepared.data.bHasEndWall = end.isFree;
  prepared.data.ptEndLeft = end.right;
  prepared.data.ptEndMid = end.middle;
  prepared.data.ptEndRight = end.left;
  prepared.startConnections = start.connections;
  prepared.endConnections = end.connections;
  return prepared;
}

}  // namespace quoin::oracle
