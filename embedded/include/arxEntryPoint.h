// The application object of a module that talks to the editor: on top of what AcRxDbxApp
// does it registers the module's commands and AutoLISP functions from two tables.
#pragma once

#include "accmd.h"
#include "dbxEntryPoint.h"

/// One row of a module's command map. Local names default to the global ones.
struct AcRxCommandEntry {
  const ACHAR* groupName;
  const ACHAR* globalName;
  const ACHAR* localName;
  Adesk::Int32 flags;
  AcRxFunctionPtr function;
};

/// One row of a module's table of AutoLISP functions; its place is its function code.
struct AcRxLispEntry {
  const ACHAR* name;
  int (*function)();
};

class HOST_API AcRxArxApp : public AcRxDbxApp {
 public:
  /// As the base class, then adds the commands of the command map.
  /// Fails: kRetError when a command cannot be added; the others are added all the same.
  AcRx::AppRetCode On_kInitAppMsg(void* pkt) override;
  /// As the base class, then removes the groups of the command map from the host's
  /// registered commands.
  /// Fails: kRetError when there are groups to remove and no host runs.
  AcRx::AppRetCode On_kUnloadAppMsg(void* pkt) override;
  /// Defines the AutoLISP functions for the drawing.
  AcRx::AppRetCode On_kLoadDwgMsg(void* pkt) override;
  /// Undefines them.
  AcRx::AppRetCode On_kUnloadDwgMsg(void* pkt) override;
  /// Calls the AutoLISP function whose code the host names; a code that is not in the table
  /// is nobody's call.
  AcRx::AppRetCode On_kInvkSubrMsg(void* pkt) override;

 protected:
  AcRxArxApp();
  ~AcRxArxApp();

  /// The module's commands and AutoLISP functions; empty unless set.
  std::span<const AcRxCommandEntry> m_commandMap;
  std::span<const AcRxLispEntry> m_lispFunctions;
};
