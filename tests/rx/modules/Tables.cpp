// A module with a command, an AutoLISP function and a custom class in the frame's tables.
#include "arxEntryPoint.h"
#include "rxframe.h"
#include "rxobject.h"

namespace {

class Shape : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(Shape);
};
ACRX_CONS_DEFINE_MEMBERS(Shape, AcRxObject)

int s_lispCalls = 0;

void runCommand() {}
int callLisp() {
  return ++s_lispCalls;
}

const AcRxCommandEntry s_commands[] = {
    {L"SHAPES", L"DRAWSHAPE", L"ZEICHNE", ACRX_CMD_MODAL, runCommand},
    {L"SHAPES", L"DROPSHAPE", nullptr, ACRX_CMD_TRANSPARENT, runCommand}};
const AcRxLispEntry s_functions[] = {{L"c:shape", callLisp}};
const AcRxCustomClass s_classes[] = {{&Shape::rxInit, &Shape::desc}};

class TablesApp : public AcRxArxApp {
 public:
  TablesApp() {
    m_bUnlocked = true;
    m_commandMap = s_commands;
    m_lispFunctions = s_functions;
    m_customClasses = s_classes;
  }
  void RegisterServerComponents() override {}
};

TablesApp s_app;

}  // namespace

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void* pkt) {
  return s_app.dispatch(msg, pkt);
}
extern "C" AFX_EXT_API int lispCallCount() {
  return s_lispCalls;
}
extern "C" int APIENTRY DllMain(HINSTANCE, DWORD, LPVOID) {
  return 1;
}
