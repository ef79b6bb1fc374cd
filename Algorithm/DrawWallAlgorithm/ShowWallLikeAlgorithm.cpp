#include "ShowWallLikeAlgorithm.h"

#include <algorithm>

#include "BoxReject.h"
#include "ProjectScale.h"
#include "WallTerminalInternal.h"

namespace {

/// The walls that meet the show wall at its start and at its end, in their order.
void CollectMeetWalls(const std::vector<WallEntityLikeRect*>& vecAllWallRect,
                      const WallEntityLikeRect* pShowWall,
                      std::vector<WallEntityLikeRect*>& vecStartMeet,
                      std::vector<WallEntityLikeRect*>& vecEndMeet) {
  const double captureDistance = GetCaptureDistance(GetProjectScale());
  const AcGePoint3d& ptStart = pShowWall->ptStart;
  const AcGePoint3d& ptEnd = pShowWall->ptEnd;
  CPointBoxReject reject(captureDistance);
  reject.Add(ptStart);
  reject.Add(ptEnd);
  reject.VisitNear(vecAllWallRect, [&](WallEntityLikeRect* pRect) {
    if (pRect == pShowWall) {
      return;
    }
    const double distStart =
        std::min(pRect->ptStart.distanceTo(ptStart), pRect->ptEnd.distanceTo(ptStart));
    const double distEnd =
        std::min(pRect->ptStart.distanceTo(ptEnd), pRect->ptEnd.distanceTo(ptEnd));
    // A wall counts at its nearer end only; a tie goes to the end.
    if (distEnd > distStart) {
      if (captureDistance > distStart) {
        vecStartMeet.push_back(pRect);
      }
    } else if (captureDistance > distEnd) {
      vecEndMeet.push_back(pRect);
    }
  });
}

}  // namespace

CShowWallLikeAlgorithm::CShowWallLikeAlgorithm()
    : m_pShowWall(new WallEntityLikeRect()), m_bHasStartWall(false), m_bHasEndWall(false) {}

CShowWallLikeAlgorithm::CShowWallLikeAlgorithm(const CShowWallLikeAlgorithm& other) = default;
CShowWallLikeAlgorithm& CShowWallLikeAlgorithm::operator=(const CShowWallLikeAlgorithm& other) =
    default;

CShowWallLikeAlgorithm::~CShowWallLikeAlgorithm() {
  ClearWallRectArray(m_vecAllWallRect);
  ClearWallRectArray(m_vecStartWallArray);
  ClearWallRectArray(m_vecEndWallArray);
}

std::vector<WallEntityLikeRect*>& CShowWallLikeAlgorithm::GetAllWallRect() {
  return m_vecAllWallRect;
}

WallEntityLikeRect* CShowWallLikeAlgorithm::GetShowWall() {
  return m_pShowWall;
}

WallDrawingSeg* CShowWallLikeAlgorithm::GetLeftWall() {
  return &m_leftWall;
}

WallDrawingSeg* CShowWallLikeAlgorithm::GetRightWall() {
  return &m_rightWall;
}

WallDrawingSeg* CShowWallLikeAlgorithm::GetStartWall() {
  return m_bHasStartWall ? &m_startWall : nullptr;
}

WallDrawingSeg* CShowWallLikeAlgorithm::GetEndWall() {
  return m_bHasEndWall ? &m_endWall : nullptr;
}

const std::vector<WallEntityLikeRect*>& CShowWallLikeAlgorithm::GetStartWallArray() const {
  return m_vecStartWallArray;
}

const std::vector<WallEntityLikeRect*>& CShowWallLikeAlgorithm::GetEndWallArray() const {
  return m_vecEndWallArray;
}

void CShowWallLikeAlgorithm::CalcShowWall() {
  std::vector<WallEntityLikeRect*> vecStartMeet;
  std::vector<WallEntityLikeRect*> vecEndMeet;
  CollectMeetWalls(m_vecAllWallRect, m_pShowWall, vecStartMeet, vecEndMeet);

  AcGePoint3d ptStartLeft;
  AcGePoint3d ptStartRight;
  m_bHasStartWall = true;
  ProcessWallTerminalDrawing(m_pShowWall->ptStart, m_bHasStartWall, ptStartLeft, ptStartRight,
                             vecStartMeet, m_vecStartWallArray);
  AcGePoint3d ptEndLeft;
  AcGePoint3d ptEndRight;
  m_bHasEndWall = true;
  ProcessWallTerminalDrawing(m_pShowWall->ptEnd, m_bHasEndWall, ptEndLeft, ptEndRight, vecEndMeet,
                             m_vecEndWallArray);

  // Seen from the end, left and right are exchanged.
  m_leftWall = {ptStartLeft, ptEndRight};
  m_rightWall = {ptStartRight, ptEndLeft};
  const auto corners = WallTerminalInternal::GetRectCorners(m_pShowWall->ptStart, m_pShowWall);
  if (m_bHasStartWall) {
    m_startWall = {corners[0], corners[1]};
  }
  if (m_bHasEndWall) {
    m_endWall = {corners[2], corners[3]};
  }
}

PrepareFrom2dTo3dData CShowWallLikeAlgorithm::CalcShowWallPrepareFor3d() const {
  std::vector<WallEntityLikeRect*> vecStartMeet;
  std::vector<WallEntityLikeRect*> vecEndMeet;
  CollectMeetWalls(m_vecAllWallRect, m_pShowWall, vecStartMeet, vecEndMeet);

  // The operation is const to its callers, yet it keeps what it finds out about the ends.
  CShowWallLikeAlgorithm* const pThis = const_cast<CShowWallLikeAlgorithm*>(this);
  PrepareFrom2dTo3dData data;
  pThis->m_bHasStartWall = true;
  pThis->ProcessWallTerminalDrawingFor3d(m_pShowWall->ptStart, pThis->m_bHasStartWall,
                                         data.ptStartLeft, data.ptStartMid, data.ptStartRight,
                                         vecStartMeet, pThis->m_vecStartWallArray);
  data.bHasStartWall = m_bHasStartWall;
  // Seen from the end, left and right are exchanged.
  pThis->m_bHasEndWall = true;
  pThis->ProcessWallTerminalDrawingFor3d(m_pShowWall->ptEnd, pThis->m_bHasEndWall, data.ptEndRight,
                                         data.ptEndMid, data.ptEndLeft, vecEndMeet,
                                         pThis->m_vecEndWallArray);
  data.bHasEndWall = m_bHasEndWall;
  return data;
}

void CShowWallLikeAlgorithm::ProcessWallTerminalDrawing(
    const AcGePoint3d& ptTerminal, bool& bHasTerminalWall, AcGePoint3d& ptLeftCorner,
    AcGePoint3d& ptRightCorner, std::vector<WallEntityLikeRect*>& vecMeetWalls,
    std::vector<WallEntityLikeRect*>& vecTerminalWallArray) {
  WallTerminalInternal::ProcessTerminal(
      ptTerminal, m_pShowWall, bHasTerminalWall, ptLeftCorner, ptRightCorner, vecMeetWalls,
      vecTerminalWallArray, WallTerminalInternal::kAssertLineInPlan, [](WallEntityLikeRect*) {});
}

void CShowWallLikeAlgorithm::ProcessWallTerminalDrawingFor3d(
    const AcGePoint3d& ptTerminal, bool& bHasTerminalWall, AcGePoint3d& ptLeftCorner,
    AcGePoint3d& ptMidPoint, AcGePoint3d& ptRightCorner,
    std::vector<WallEntityLikeRect*>& vecMeetWalls,
    std::vector<WallEntityLikeRect*>& vecTerminalWallArray) {
  const auto corners = WallTerminalInternal::GetRectCorners(ptTerminal, m_pShowWall);
  AcGeLine3d lineTerminal(ptTerminal, corners[1] - corners[0]);
  ptMidPoint = (corners[0] + corners[1].asVector()) * 0.5;
  WallTerminalInternal::ProcessTerminal(
      ptTerminal, m_pShowWall, bHasTerminalWall, ptLeftCorner, ptRightCorner, vecMeetWalls,
      vecTerminalWallArray, WallTerminalInternal::kAssertLineFor3d,
      [&](WallEntityLikeRect* pPrevious) {
        GetTerminalStartMidPt(ptMidPoint, pPrevious, lineTerminal);
      });
}

void CShowWallLikeAlgorithm::GetTerminalStartMidPt(AcGePoint3d& ptResult, WallEntityLikeRect* pRect,
                                                   AcGeLine3d& line) {
  if (pRect) {
    line.intersectWith(AcGeLine3d(pRect->ptStart, pRect->ptEnd), ptResult);
  }
}

void CShowWallLikeAlgorithm::ClearWallRectArray(std::vector<WallEntityLikeRect*>& vec) {
  for (WallEntityLikeRect* pRect : vec) {
    delete pRect;
  }
  vec.clear();
}
