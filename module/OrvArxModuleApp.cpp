#include "OrvArxModuleApp.h"

#include "UserInputStateWatcher.h"
#include "rxframe.h"

namespace {

COrvArxModuleApp s_moduleApp;
AFX_EXTENSION_MODULE s_extensionModule = {FALSE, nullptr};

}  // namespace

COrvArxModuleApp::COrvArxModuleApp() {
  m_bUnlocked = true;
  m_bMDIAware = true;
}

AcRx::AppRetCode COrvArxModuleApp::On_kInitAppMsg(void* pkt) {
  const AcRx::AppRetCode result = AcRxArxApp::On_kInitAppMsg(pkt);
  CUserInputStateWatcher::Instance();
  return result;
}

AcRx::AppRetCode COrvArxModuleApp::On_kUnloadAppMsg(void* pkt) {
  const AcRx::AppRetCode result = AcRxArxApp::On_kUnloadAppMsg(pkt);
  // The accessor goes on naming the destroyed watcher: the module is leaving memory.
  delete CUserInputStateWatcher::Instance();
  return result;
}

void COrvArxModuleApp::RegisterServerComponents() {}

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void* pkt) {
  return s_moduleApp.dispatch(msg, pkt);
}

extern "C" int APIENTRY DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) {
    if (AfxInitExtensionModule(s_extensionModule, instance)) {
      new CDynLinkLibrary(s_extensionModule);  // the framework's from here on
    }
  } else if (reason == DLL_PROCESS_DETACH && s_extensionModule.bInitialized) {
    AfxTermExtensionModule(s_extensionModule);
  }
  return 1;
}
