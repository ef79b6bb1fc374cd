// The application object that handles the host's messages for a module. A module derives
// from AcRxDbxApp, or from AcRxArxApp (arxEntryPoint.h) when it talks to the editor, keeps
// exactly one static object of its class and hands every message to dispatch().
#pragma once

#include <cstddef>
#include <span>

#include "rxdefs.h"

class AcRxClass;

/// One custom class of a module: how it is registered and how its descriptor is found.
struct AcRxCustomClass {
  void (*rxInit)();
  AcRxClass* (*desc)();
};

class HOST_API AcRxDbxApp {
 public:
  AcRxDbxApp(const AcRxDbxApp&) = delete;
  AcRxDbxApp& operator=(const AcRxDbxApp&) = delete;

  // The handlers, in slot order: the codes 1 to 15, then code 0. Those without a comment
  // return kRetOK and do nothing.

  /// Unlocks the module and declares it MDI-aware, as its load options say, registers its
  /// custom classes and rebuilds the class hierarchy.
  /// Fails: kRetError when no host runs or the host does not know the packet.
  virtual AcRx::AppRetCode On_kInitAppMsg(void* pkt);
  /// Deletes the module's custom classes, last registered first.
  virtual AcRx::AppRetCode On_kUnloadAppMsg(void* pkt);
  virtual AcRx::AppRetCode On_kLoadDwgMsg(void* pkt);
  virtual AcRx::AppRetCode On_kUnloadDwgMsg(void* pkt);
  virtual AcRx::AppRetCode On_kInvkSubrMsg(void* pkt);
  virtual AcRx::AppRetCode On_kCfgMsg(void* pkt);
  virtual AcRx::AppRetCode On_kEndMsg(void* pkt);
  virtual AcRx::AppRetCode On_kQuitMsg(void* pkt);
  virtual AcRx::AppRetCode On_kSaveMsg(void* pkt);
  virtual AcRx::AppRetCode On_kDependencyMsg(void* pkt);
  virtual AcRx::AppRetCode On_kNoDependencyMsg(void* pkt);
  virtual AcRx::AppRetCode On_kOleUnloadAppMsg(void* pkt);
  virtual AcRx::AppRetCode On_kPreQuitMsg(void* pkt);
  virtual AcRx::AppRetCode On_kInitDialogMsg(void* pkt);
  virtual AcRx::AppRetCode On_kEndDialogMsg(void* pkt);
  virtual AcRx::AppRetCode On_kNullMsg(void* pkt);

  /// The hook where a module registers server components.
  virtual void RegisterServerComponents() = 0;

  /// A message handler.
  using Handler = AcRx::AppRetCode (AcRxDbxApp::*)(void* pkt);
  static constexpr std::size_t kHandlerCount = 16;
  /// The handler that dispatch() calls for a code from 0 to 15.
  static Handler handlerFor(AcRx::AppMsgCode msg);

  /// Calls the handler for a message and returns its result; kRetOK, without a call, for a
  /// code outside 0 to 15.
  AcRx::AppRetCode dispatch(AcRx::AppMsgCode msg, void* pkt);

 protected:
  AcRxDbxApp();
  ~AcRxDbxApp();

  // Load options, both false unless the module's class sets them when it is made.
  bool m_bUnlocked = false;
  bool m_bMDIAware = false;

  /// The module's custom classes in registration order; empty unless set.
  std::span<const AcRxCustomClass> m_customClasses;
};
