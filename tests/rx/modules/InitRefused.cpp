// Answers its initialisation with an error, after it has registered a command.
#include "accmd.h"
#include "rxframe.h"

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void*) {
  if (msg == AcRx::kInitAppMsg) {
    acedRegCmds->addCommand(L"LEFTOVERS", L"LEFTOVER", L"LEFTOVER", ACRX_CMD_MODAL, [] {});
  }
  return AcRx::kRetError;
}
extern "C" int APIENTRY DllMain(HINSTANCE, DWORD, LPVOID) {
  return 1;
}
