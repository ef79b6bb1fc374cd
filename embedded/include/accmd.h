// The host's registered commands: named groups of commands that modules add when they are
// initialised and take back when they leave. Group and command names are the same in any
// letter case.
#pragma once

#include "rxdict.h"

/// What a command runs.
using AcRxFunctionPtr = void (*)();

/// When a command may run.
#define ACRX_CMD_MODAL 0x00000000
#define ACRX_CMD_TRANSPARENT 0x00000001
#define ACRX_CMD_USEPICKSET 0x00000002
#define ACRX_CMD_SESSION 0x00200000

/// One registered command. The stack owns it.
class HOST_API AcEdCommand : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcEdCommand);

  AcEdCommand(const ACHAR* globalName, const ACHAR* localName, Adesk::Int32 flags,
              AcRxFunctionPtr function);

  const ACHAR* globalName() const { return m_globalName.c_str(); }
  const ACHAR* localName() const { return m_localName.c_str(); }
  Adesk::Int32 commandFlags() const { return m_flags; }
  AcRxFunctionPtr functionAddr() const { return m_function; }

 private:
  std::wstring m_globalName;
  std::wstring m_localName;
  Adesk::Int32 m_flags;
  AcRxFunctionPtr m_function;
};

class HOST_API AcEdCommandStack : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcEdCommandStack);

  /// Adds a command at the end of its group, which is made when missing.
  /// Fails: eInvalidInput (a name or the function missing), eDuplicateKey (the group has a
  ///        command of that global or local name).
  virtual Acad::ErrorStatus addCommand(const ACHAR* groupName, const ACHAR* globalName,
                                       const ACHAR* localName, Adesk::Int32 flags,
                                       AcRxFunctionPtr function) = 0;
  /// Removes one command by its global name, and its group with the last one.
  /// Fails: eKeyNotFound.
  virtual Acad::ErrorStatus removeCmd(const ACHAR* groupName, const ACHAR* globalName) = 0;
  /// Removes a group with all its commands.
  /// Fails: eKeyNotFound.
  virtual Acad::ErrorStatus removeGroup(const ACHAR* groupName) = 0;
  /// The first command of this global or local name, groups in the order in which they were
  /// made; null if there is none.
  virtual AcEdCommand* lookupCmd(const ACHAR* name) const = 0;
  /// The same within one group.
  virtual AcEdCommand* lookupCmd(const ACHAR* groupName, const ACHAR* name) const = 0;
};

/// The command stack's name in the system registry.
#define ACAD_REGISTERED_COMMANDS ACRX_T("ACAD_REGISTERED_COMMANDS")
/// The running host's registered commands; null when no host runs.
#define acedRegCmds AcEdCommandStack::cast(acrxSystemObject(ACAD_REGISTERED_COMMANDS))
