// A client module with one command, TEECOUNT: breaks the two lines of a T and prints the pieces.
#include <cstdio>

#include "BreakWallAlgorithm.h"
#include "afxext.h"
#include "arxEntryPoint.h"
#include "rxframe.h"

namespace {

void countPieces() {
  CBreakWallAlgorithm algorithm;
  algorithm.GetSrcWallLines().push_back(
      new WallLineLikeSeg(AcGePoint3d(0.0, 0.0, 0.0), AcGePoint3d(1000.0, 0.0, 0.0), nullptr));
  algorithm.GetSrcWallLines().push_back(
      new WallLineLikeSeg(AcGePoint3d(400.0, 500.0, 0.0), AcGePoint3d(400.0, 0.0, 0.0), nullptr));
  algorithm.SplitWallLines();
  for (const WallLineLikeSeg* piece : algorithm.GetNewWallLines()) {
    std::printf("piece from %g to %g\n", piece->ptStart.x, piece->ptEnd.x);
  }
}

constexpr AcRxCommandEntry kCommands[] = {
    {L"CONSUMER", L"TEECOUNT", L"TEECOUNT", ACRX_CMD_MODAL, &countPieces}};

class TeeCountApp : public AcRxArxApp {
 public:
  TeeCountApp() {
    m_bUnlocked = true;
    m_bMDIAware = true;
    m_commandMap = kCommands;
  }
  void RegisterServerComponents() override {}
};

TeeCountApp s_app;

}  // namespace

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void* pkt) {
  return s_app.dispatch(msg, pkt);
}

extern "C" int APIENTRY DllMain(HINSTANCE, DWORD, LPVOID) {
  return 1;
}
