#include "acedads.h"
#include "arxEntryPoint.h"

AcRxArxApp::AcRxArxApp() = default;
AcRxArxApp::~AcRxArxApp() = default;

AcRx::AppRetCode AcRxArxApp::On_kInitAppMsg(void* pkt) {
  AcRx::AppRetCode result = AcRxDbxApp::On_kInitAppMsg(pkt);
  AcEdCommandStack* const commands = acedRegCmds;
  for (const AcRxCommandEntry& entry : m_commandMap) {
    if (!commands || commands->addCommand(entry.groupName, entry.globalName, entry.localName,
                                          entry.flags, entry.function) != Acad::eOk) {
      result = AcRx::kRetError;
    }
  }
  return result;
}

AcRx::AppRetCode AcRxArxApp::On_kUnloadAppMsg(void* pkt) {
  AcRx::AppRetCode result = AcRxDbxApp::On_kUnloadAppMsg(pkt);
  AcEdCommandStack* const commands = acedRegCmds;
  for (const AcRxCommandEntry& entry : m_commandMap) {
    if (commands) {
      // Several rows may name one group: it is gone after the first.
      commands->removeGroup(entry.groupName);
    } else {
      result = AcRx::kRetError;
    }
  }
  return result;
}

AcRx::AppRetCode AcRxArxApp::On_kLoadDwgMsg(void*) {
  short code = 0;
  for (const AcRxLispEntry& entry : m_lispFunctions) {
    acedDefun(entry.name, code);
    acedRegFunc(entry.function, code);
    ++code;
  }
  return AcRx::kRetOK;
}

AcRx::AppRetCode AcRxArxApp::On_kUnloadDwgMsg(void*) {
  short code = 0;
  for (const AcRxLispEntry& entry : m_lispFunctions) {
    acedUndef(entry.name, code++);
  }
  return AcRx::kRetOK;
}

AcRx::AppRetCode AcRxArxApp::On_kInvkSubrMsg(void*) {
  const int code = acedGetFunCode();
  if (code >= 0 && static_cast<std::size_t>(code) < m_lispFunctions.size()) {
    m_lispFunctions[static_cast<std::size_t>(code)].function();
  }
  return AcRx::kRetOK;
}
