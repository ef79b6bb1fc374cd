// The end of a wall among the walls that meet it: corners of the wall rectangles, the order of
// the walls around the end, mitres and connecting records. Shared by the outline in plan and
// the preparation for 3D. Not exported.
//
//        c2 ____________ c3        GetRectCorners(ptRef, wall): the wall seen from the end
//          |            |          nearer ptRef, looking along it: c0 and c1 are its left
//          |     ^      |          and right corner there, c2 and c3 those at the far end.
//        c0|_____|______|c1
//              ptRef
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "GeomConst.h"
#include "GeomDegree.h"
#include "GeomLinearCommon.h"
#include "Log.h"
#include "ShowWallLikeAlgorithm.h"

namespace WallTerminalInternal {

/// Faces at a smaller angle than this (strictly) are parallel or nearly so: a connecting
/// record joins them instead of a far-away intersection.
constexpr double kMinMitreDegrees = 5.0;

/// A wall as seen from one of its ends.
struct SeenFromEnd {
  AcGePoint3d ptNear;
  AcGePoint3d ptFar;
  double dLeft;
  double dRight;
};

/// Turned so that the end nearer to ptRef comes first; a tie keeps the wall's own order.
inline SeenFromEnd SeeFromEnd(const AcGePoint3d& ptRef, const WallEntityLikeRect& rect) {
  if (rect.ptStart.distanceTo(ptRef) > rect.ptEnd.distanceTo(ptRef)) {
    return {rect.ptEnd, rect.ptStart, rect.dRightWidth, rect.dLeftWidth};
  }
  return {rect.ptStart, rect.ptEnd, rect.dLeftWidth, rect.dRightWidth};
}

inline std::array<AcGePoint3d, 4> GetRectCorners(const AcGePoint3d& ptRef,
                                                 const WallEntityLikeRect* pRect) {
  const SeenFromEnd seen = SeeFromEnd(ptRef, *pRect);
  const AcGeVector3d vecAlong = (seen.ptFar - seen.ptNear).normal();
  AcGeVector3d vecLeft = vecAlong;
  vecLeft.rotateBy(GeomConst::kHalfPi, AcGeVector3d::kZAxis);
  return {seen.ptNear + vecLeft * seen.dLeft, seen.ptNear - vecLeft * seen.dRight,
          seen.ptFar + vecLeft * seen.dLeft, seen.ptFar - vecLeft * seen.dRight};
}

/// The direction in which the wall leaves ptRef: its angle from the X axis in [0, 2 pi).
inline double GetTerminalOutAngle(const AcGePoint3d& ptRef, const WallEntityLikeRect* pRect) {
  if (!pRect) {
    return 0.0;
  }
  const SeenFromEnd seen = SeeFromEnd(ptRef, *pRect);
  AcGeVector3d vecOut = seen.ptFar - seen.ptNear;
  vecOut.z = 0.0;
  return AcGeVector3d::kXAxis.angleTo(vecOut, AcGeVector3d::kZAxis);
}

/// Joins two faces of neighbouring walls. At less than the least mitre angle a connecting
/// record from ptFrom to ptTo is added; otherwise ptCorner moves to where the show wall's
/// face crosses the neighbour's (and stays where they do not cross).
inline void JoinFaces(const AcGeLine3d& lineShowFace, const AcGeLine3d& lineNeighbourFace,
                      const AcGePoint3d& ptFrom, const AcGePoint3d& ptTo, AcGePoint3d& ptCorner,
                      std::vector<WallEntityLikeRect*>& vecTerminalWallArray) {
  const double angle = CGeomLinearCommon::GetLineIncludedAngle(lineShowFace, lineNeighbourFace);
  if (std::fabs(CGeomDegree(angle, CGeomDegree::eAngleRadian).GetAngleDegree()) <
      kMinMitreDegrees) {
    WallEntityLikeRect* pConnect = new WallEntityLikeRect();
    pConnect->ptStart = ptFrom;
    pConnect->ptEnd = ptTo;
    vecTerminalWallArray.push_back(pConnect);
  } else {
    lineShowFace.intersectWith(lineNeighbourFace, ptCorner);
  }
}

/// Lines that a failed search for the show wall reports.
constexpr int kAssertLineInPlan = 567;
constexpr int kAssertLineFor3d = 486;

/// The show wall's index among the walls that meet it; their count, and one line in the log,
/// for a list that it is not in.
inline std::size_t FindShowWall(const std::vector<WallEntityLikeRect*>& vecMeetWalls,
                                const WallEntityLikeRect* pShowWall, int assertLine) {
  const auto found = std::find(vecMeetWalls.begin(), vecMeetWalls.end(), pShowWall);
  if (found == vecMeetWalls.end()) {
    CLog::LogError(kAssertionFormat, L"FALSE", L"Algorithm\\DrawWallAlgorithm", assertLine);
  }
  return static_cast<std::size_t>(found - vecMeetWalls.begin());
}

/// The whole treatment of one end; `MovePoint(previous wall)` is called before each of the two
/// corners is computed (the preparation for 3D moves its middle point there, both times by
/// the same wall). `assertLine` is the line that a failed search reports.
template <class MovePoint>
void ProcessTerminal(const AcGePoint3d& ptTerminal, WallEntityLikeRect* pShowWall,
                     bool& bHasTerminalWall, AcGePoint3d& ptLeftCorner, AcGePoint3d& ptRightCorner,
                     std::vector<WallEntityLikeRect*>& vecMeetWalls,
                     std::vector<WallEntityLikeRect*>& vecTerminalWallArray, int assertLine,
                     MovePoint movePoint) {
  const std::array<AcGePoint3d, 4> c = GetRectCorners(ptTerminal, pShowWall);
  ptLeftCorner = c[0];
  ptRightCorner = c[1];
  if (vecMeetWalls.empty()) {
    return;
  }
  bHasTerminalWall = false;
  vecMeetWalls.push_back(pShowWall);
  // Walls that leave in the same direction keep the order in which they were found. Angles
  // that are NaN compare with nothing; a merge sort stays within the list all the same.
  std::stable_sort(vecMeetWalls.begin(), vecMeetWalls.end(),
                   [&](const WallEntityLikeRect* pRect1, const WallEntityLikeRect* pRect2) {
                     return GetTerminalOutAngle(ptTerminal, pRect1) <
                            GetTerminalOutAngle(ptTerminal, pRect2);
                   });
  const std::size_t count = vecMeetWalls.size();
  const std::size_t index = FindShowWall(vecMeetWalls, pShowWall, assertLine);
  if (index == count) {
    return;
  }
  WallEntityLikeRect* const pPrevious = vecMeetWalls[(count + index - 1) % count];
  WallEntityLikeRect* const pNext = vecMeetWalls[(index + 1) % count];

  movePoint(pPrevious);
  const std::array<AcGePoint3d, 4> p = GetRectCorners(ptTerminal, pPrevious);
  JoinFaces(AcGeLine3d(c[1], c[3]), AcGeLine3d(p[0], p[2]), p[0], c[1], ptRightCorner,
            vecTerminalWallArray);

  movePoint(pPrevious);
  const std::array<AcGePoint3d, 4> q = GetRectCorners(ptTerminal, pNext);
  JoinFaces(AcGeLine3d(c[0], c[2]), AcGeLine3d(q[1], q[3]), c[0], q[1], ptLeftCorner,
            vecTerminalWallArray);
}

}  // namespace WallTerminalInternal
