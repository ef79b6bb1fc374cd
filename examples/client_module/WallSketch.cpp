// A client module in one file. It registers the command WALLSKETCH, which draws a wall line
// through a room and prints what happens to the room's walls.
#include <cstdio>
#include <memory>
#include <vector>

#include "DrawWallAlgorithm/DrawWallLikeAlgorithm.h"
#include "afxext.h"
#include "arxEntryPoint.h"
#include "rxframe.h"

namespace {

void print(const char* what, const std::vector<WallLineLikeSeg*>& lines) {
  for (const WallLineLikeSeg* line : lines) {
    std::printf("%s %g,%g to %g,%g\n", what, line->ptStart.x, line->ptStart.y, line->ptEnd.x,
                line->ptEnd.y);
  }
}

void sketchWall() {
  CDrawWallLikeAlgorithm algorithm;
  const AcGePoint3d corners[] = {{0, 0, 0}, {4000, 0, 0}, {4000, 3000, 0}, {0, 3000, 0}};
  // The algorithm takes over the lines near the new one; the others stay ours.
  std::vector<std::unique_ptr<WallLineLikeSeg>> ours;
  for (int i = 0; i < 4; ++i) {
    ours.push_back(std::make_unique<WallLineLikeSeg>(corners[i], corners[(i + 1) % 4]));
    algorithm.GetSrcWallLines().push_back(ours.back().get());
  }
  algorithm.CalcNewWallLine(AcGePoint3d(-500, 1500, 0), AcGePoint3d(4500, 1500, 0));
  for (const WallLineLikeSeg* taken : algorithm.GetSrcModifyiedWallLines()) {
    for (std::unique_ptr<WallLineLikeSeg>& line : ours) {
      if (line.get() == taken) {
        line.release();
      }
    }
  }
  print("shortened", algorithm.GetSrcModifyiedWallLines());
  print("cut off", algorithm.GetSrcNewWallLines());
  print("new", algorithm.GetNewWallLines());
}

constexpr AcRxCommandEntry kCommands[] = {
    {L"EXAMPLES", L"WALLSKETCH", L"WALLSKETCH", ACRX_CMD_MODAL, &sketchWall}};

class WallSketchApp : public AcRxArxApp {
 public:
  WallSketchApp() {
    m_bUnlocked = true;
    m_bMDIAware = true;
    m_commandMap = kCommands;
  }
  void RegisterServerComponents() override {}
};

WallSketchApp s_app;

}  // namespace

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void* pkt) {
  return s_app.dispatch(msg, pkt);
}

extern "C" int APIENTRY DllMain(HINSTANCE, DWORD, LPVOID) {
  return 1;
}
