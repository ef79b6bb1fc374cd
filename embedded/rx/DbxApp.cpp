#include <array>

#include "dbxEntryPoint.h"
#include "rxdlinkr.h"

AcRxDbxApp::AcRxDbxApp() = default;
AcRxDbxApp::~AcRxDbxApp() = default;

AcRx::AppRetCode AcRxDbxApp::On_kInitAppMsg(void* pkt) {
  AcRxDynamicLinker* const linker = acrxDynamicLinker;
  if (!linker) {
    return AcRx::kRetError;
  }
  bool known = true;
  if (m_bUnlocked) {
    known = linker->unlockApplication(pkt) && known;
  }
  if (m_bMDIAware) {
    known = linker->registerAppMDIAware(pkt) && known;
  }
  for (const AcRxCustomClass& custom : m_customClasses) {
    custom.rxInit();
  }
  acrxBuildClassHierarchy();
  return known ? AcRx::kRetOK : AcRx::kRetError;
}

AcRx::AppRetCode AcRxDbxApp::On_kUnloadAppMsg(void*) {
  for (std::size_t i = m_customClasses.size(); i-- > 0;) {
    deleteAcRxClass(m_customClasses[i].desc());
  }
  return AcRx::kRetOK;
}

AcRx::AppRetCode AcRxDbxApp::On_kLoadDwgMsg(void*) {
  return AcRx::kRetOK;
}
AcRx::AppRetCode AcRxDbxApp::On_kUnloadDwgMsg(void*) {
  return AcRx::kRetOK;
}
AcRx::AppRetCode AcRxDbxApp::On_kInvkSubrMsg(void*) {
  return AcRx::kRetOK;
}
AcRx::AppRetCode AcRxDbxApp::On_kCfgMsg(void*) {
  return AcRx::kRetOK;
}
AcRx::AppRetCode AcRxDbxApp::On_kEndMsg(void*) {
  return AcRx::kRetOK;
}
AcRx::AppRetCode AcRxDbxApp::On_kQuitMsg(void*) {
  return AcRx::kRetOK;
}
AcRx::AppRetCode AcRxDbxApp::On_kSaveMsg(void*) {
  return AcRx::kRetOK;
}
AcRx::AppRetCode AcRxDbxApp::On_kDependencyMsg(void*) {
  return AcRx::kRetOK;
}
AcRx::AppRetCode AcRxDbxApp::On_kNoDependencyMsg(void*) {
  return AcRx::kRetOK;
}
AcRx::AppRetCode AcRxDbxApp::On_kOleUnloadAppMsg(void*) {
  return AcRx::kRetOK;
}
AcRx::AppRetCode AcRxDbxApp::On_kPreQuitMsg(void*) {
  return AcRx::kRetOK;
}
AcRx::AppRetCode AcRxDbxApp::On_kInitDialogMsg(void*) {
  return AcRx::kRetOK;
}
AcRx::AppRetCode AcRxDbxApp::On_kEndDialogMsg(void*) {
  return AcRx::kRetOK;
}
AcRx::AppRetCode AcRxDbxApp::On_kNullMsg(void*) {
  return AcRx::kRetOK;
}

namespace {

/// The handlers by message code.
constexpr std::array<AcRxDbxApp::Handler, AcRxDbxApp::kHandlerCount> kHandlers = {
    &AcRxDbxApp::On_kNullMsg,          // 0
    &AcRxDbxApp::On_kInitAppMsg,       // 1
    &AcRxDbxApp::On_kUnloadAppMsg,     // 2
    &AcRxDbxApp::On_kLoadDwgMsg,       // 3
    &AcRxDbxApp::On_kUnloadDwgMsg,     // 4
    &AcRxDbxApp::On_kInvkSubrMsg,      // 5
    &AcRxDbxApp::On_kCfgMsg,           // 6
    &AcRxDbxApp::On_kEndMsg,           // 7
    &AcRxDbxApp::On_kQuitMsg,          // 8
    &AcRxDbxApp::On_kSaveMsg,          // 9
    &AcRxDbxApp::On_kDependencyMsg,    // 10
    &AcRxDbxApp::On_kNoDependencyMsg,  // 11
    &AcRxDbxApp::On_kOleUnloadAppMsg,  // 12
    &AcRxDbxApp::On_kPreQuitMsg,       // 13
    &AcRxDbxApp::On_kInitDialogMsg,    // 14
    &AcRxDbxApp::On_kEndDialogMsg,     // 15
};

}  // namespace

AcRxDbxApp::Handler AcRxDbxApp::handlerFor(AcRx::AppMsgCode msg) {
  return kHandlers[static_cast<std::size_t>(msg)];
}

AcRx::AppRetCode AcRxDbxApp::dispatch(AcRx::AppMsgCode msg, void* pkt) {
  // Codes below 0 wrap to large ones.
  if (static_cast<std::size_t>(msg) >= kHandlerCount) {
    return AcRx::kRetOK;
  }
  return (this->*handlerFor(msg))(pkt);
}
