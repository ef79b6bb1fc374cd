// The client module's frame: announces the command line's runner while it is loaded.
#include "afxext.h"
#include "arxEntryPoint.h"
#include "commands/CommandLine.h"
#include "embedded/product/CommandLine.h"
#include "rxframe.h"

namespace {

class CommandsApp : public AcRxArxApp {
 public:
  CommandsApp() {
    m_bUnlocked = true;
    m_bMDIAware = true;
  }

  AcRx::AppRetCode On_kInitAppMsg(void* pkt) override {
    const AcRx::AppRetCode result = AcRxArxApp::On_kInitAppMsg(pkt);
    quoin::product::setCommandLineRunner(&quoin::commands::runCommandLine);
    return result;
  }
  AcRx::AppRetCode On_kUnloadAppMsg(void* pkt) override {
    quoin::product::setCommandLineRunner(nullptr);
    return AcRxArxApp::On_kUnloadAppMsg(pkt);
  }
  void RegisterServerComponents() override {}
};

CommandsApp s_app;

}  // namespace

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void* pkt) {
  return s_app.dispatch(msg, pkt);
}

extern "C" int APIENTRY DllMain(HINSTANCE, DWORD, LPVOID) {
  return 1;
}
