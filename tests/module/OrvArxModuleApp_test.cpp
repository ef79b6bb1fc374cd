#include "OrvArxModuleApp.h"

#include <gtest/gtest.h>

#include "UserInputStateWatcherInternal.h"
#include "embedded/product/HostApplication.h"
#include "embedded/rx/ExtensionModules.h"
#include "rxframe.h"
#include "support/HeapWatch.h"
#include "support/ServiceLookups.h"

namespace {

using quoin::HostApplication;
using quoin::rx::extensionModuleCounts;

/// A linker that knows every packet and notes what it is told.
class RecordingLinker : public AcRxDynamicLinker {
 public:
  std::vector<std::string> calls;
  bool result = true;

  bool loadModule(const ACHAR*, bool, bool) override { return false; }
  bool unloadModule(const ACHAR*, bool) override { return false; }
  bool unlockApplication(void* appId) override { return note("unlock", appId); }
  bool lockApplication(void* appId) override { return note("lock", appId); }
  bool registerAppMDIAware(void* appId) override { return note("mdi", appId); }
  bool registerAppNotMDIAware(void* appId) override { return note("no mdi", appId); }
  bool isModuleLoaded(const ACHAR*) const override { return false; }
  bool isApplicationLocked(const ACHAR*) const override { return false; }
  bool isAppMDIAware(const ACHAR*) const override { return false; }

  void* packet = nullptr;

 private:
  bool note(const char* call, void* appId) {
    calls.push_back(call);
    packet = appId;
    return result;
  }
};

class ModuleAppTest : public testing::Test {
 protected:
  ModuleAppTest() {
    host.runtime().systemRegistry().atPut(ACRX_DYNAMIC_LINKER, &linker);
    UserInputStateWatcherDoor::Instance() = nullptr;
  }
  // An unloaded module's accessor names a watcher that is gone; the tests' process goes on.
  ~ModuleAppTest() override { UserInputStateWatcherDoor::Instance() = nullptr; }

  static AcRx::AppRetCode send(AcRx::AppMsgCode msg, void* pkt = nullptr) {
    return acrxEntryPoint(msg, pkt);
  }

  HostApplication host;
  RecordingLinker linker;
};

TEST_F(ModuleAppTest, InitialisationUnlocksDeclaresMdiAndMakesTheWatcher) {
  int packet = 0;
  EXPECT_EQ(send(AcRx::kInitAppMsg, &packet), AcRx::kRetOK);
  EXPECT_EQ(linker.calls, (std::vector<std::string>{"unlock", "mdi"}));
  EXPECT_EQ(linker.packet, &packet);
  EXPECT_NE(UserInputStateWatcherDoor::Instance(), nullptr);
  EXPECT_TRUE(host.runtime().commands().groupNames().empty());
  EXPECT_EQ(send(AcRx::kUnloadAppMsg, &packet), AcRx::kRetOK);
}

TEST_F(ModuleAppTest, TheWatcherLivesFromLoadToUnloadAndTheAccessorIsNotReset) {
  ASSERT_EQ(send(AcRx::kInitAppMsg), AcRx::kRetOK);
  CUserInputStateWatcher* const watcher = UserInputStateWatcherDoor::Instance();
  EXPECT_EQ(CUserInputStateWatcher::Instance(), watcher);
  watcher->TurnOn();
  EXPECT_EQ(host.editor().prompts(*curDoc()).reactorCount(), 1);
  EXPECT_EQ(send(AcRx::kUnloadAppMsg), AcRx::kRetOK);
  EXPECT_EQ(host.editor().prompts(*curDoc()).reactorCount(), 0) << "the watcher is destroyed";
  EXPECT_EQ(UserInputStateWatcherDoor::Instance(), watcher) << "deliberately not reset";
}

TEST_F(ModuleAppTest, UnloadingWithoutInitialisationMakesAndDeletesOneWatcher) {
  EXPECT_EQ(send(AcRx::kUnloadAppMsg), AcRx::kRetOK);
  EXPECT_NE(UserInputStateWatcherDoor::Instance(), nullptr) << "one was made";
}

TEST_F(ModuleAppTest, UnloadingLeavesNoWatcherInMemory) {
  using quoin::test::HeapWatch;
  // What the host makes at first use and keeps is made by now.
  ASSERT_EQ(send(AcRx::kInitAppMsg), AcRx::kRetOK);
  ASSERT_EQ(send(AcRx::kUnloadAppMsg), AcRx::kRetOK);
  for (const bool isInitialised : {true, false}) {
    UserInputStateWatcherDoor::Instance() = nullptr;
    const long alive = HeapWatch::handedOut - HeapWatch::takenBack;
    if (isInitialised) {
      CUserInputStateWatcher::Instance();
    }
    const long handedOut = HeapWatch::handedOut;
    EXPECT_EQ(send(AcRx::kUnloadAppMsg), AcRx::kRetOK);
    EXPECT_EQ(HeapWatch::handedOut - handedOut, isInitialised ? 0 : 2) << "watcher and reactor";
    EXPECT_EQ(HeapWatch::handedOut - HeapWatch::takenBack, alive);
  }
}

TEST_F(ModuleAppTest, InitialisationReturnsTheFramesResultAndMakesTheWatcherAllTheSame) {
  linker.result = false;
  EXPECT_EQ(send(AcRx::kInitAppMsg), AcRx::kRetError);
  EXPECT_NE(UserInputStateWatcherDoor::Instance(), nullptr);
  EXPECT_EQ(send(AcRx::kUnloadAppMsg), AcRx::kRetOK) << "empty tables: nothing to remove";
}

TEST_F(ModuleAppTest, ASecondInitialisationKeepsTheWatcher) {
  ASSERT_EQ(send(AcRx::kInitAppMsg), AcRx::kRetOK);
  CUserInputStateWatcher* const watcher = UserInputStateWatcherDoor::Instance();
  ASSERT_EQ(send(AcRx::kInitAppMsg), AcRx::kRetOK);
  EXPECT_EQ(UserInputStateWatcherDoor::Instance(), watcher);
  EXPECT_EQ(send(AcRx::kUnloadAppMsg), AcRx::kRetOK);
}

TEST_F(ModuleAppTest, AllOtherMessagesReturnOkAndTouchNothing) {
  const quoin::test::ServiceLookups lookups(host.platform());
  for (int code = 0; code <= 30; ++code) {
    if (code != AcRx::kInitAppMsg && code != AcRx::kUnloadAppMsg) {
      EXPECT_EQ(send(static_cast<AcRx::AppMsgCode>(code)), AcRx::kRetOK) << code;
    }
  }
  EXPECT_EQ(send(static_cast<AcRx::AppMsgCode>(-1)), AcRx::kRetOK);
  EXPECT_TRUE(linker.calls.empty());
  EXPECT_EQ(UserInputStateWatcherDoor::Instance(), nullptr);
  EXPECT_EQ(lookups.factoryCalls(), 0U);
}

TEST_F(ModuleAppTest, DefinesNoAutoLispFunctions) {
  EXPECT_EQ(send(AcRx::kLoadDwgMsg), AcRx::kRetOK);
  EXPECT_EQ(send(AcRx::kInvkSubrMsg), AcRx::kRetOK);
  EXPECT_EQ(send(AcRx::kUnloadDwgMsg), AcRx::kRetOK);
}

/// The module's application object with a custom class in the frame's table, so that a test
/// sees when the frame registers its classes and deletes them again.
class AppWithAClass : public COrvArxModuleApp {
 public:
  AppWithAClass() { m_customClasses = kClasses; }

  static inline std::vector<std::string> watcherWhenFrame;

 private:
  static void note(const char* frame) {
    CUserInputStateWatcher* const watcher = UserInputStateWatcherDoor::Instance();
    const bool isThere =
        watcher && quoin::ed::Editor::current()->prompts(*curDoc()).reactorCount() > 0;
    watcherWhenFrame.push_back(std::string(frame) + (isThere   ? ": there"
                                                     : watcher ? ": idle"
                                                               : ": none"));
  }
  static void rxInit() { note("registers"); }
  static AcRxClass* desc() {
    note("deletes");
    return nullptr;
  }
  static constexpr AcRxCustomClass kClasses[] = {{&rxInit, &desc}};
};

TEST_F(ModuleAppTest, TheFrameInitialisesBeforeTheWatcherIsMadeAndUnloadsBeforeItGoes) {
  AppWithAClass app;
  AppWithAClass::watcherWhenFrame.clear();
  app.dispatch(AcRx::kInitAppMsg, nullptr);
  CUserInputStateWatcher::Instance()->TurnOn();
  app.dispatch(AcRx::kUnloadAppMsg, nullptr);
  EXPECT_EQ(AppWithAClass::watcherWhenFrame,
            (std::vector<std::string>{"registers: none", "deletes: there"}));
  EXPECT_EQ(host.editor().prompts(*curDoc()).reactorCount(), 0);
}

/// The module's application object with a command, whose group the frame cannot remove where no
/// host runs.
class AppWithACommand : public COrvArxModuleApp {
 public:
  AppWithACommand() { m_commandMap = kCommands; }

 private:
  static constexpr AcRxCommandEntry kCommands[] = {{L"G", L"ONE", nullptr, 0, nullptr}};
};

TEST(ModuleApp, UnloadingReturnsTheFramesResultAndTheWatcherGoesAllTheSame) {
  using quoin::test::HeapWatch;
  UserInputStateWatcherDoor::Instance() = nullptr;
  const long alive = HeapWatch::handedOut - HeapWatch::takenBack;
  AppWithACommand app;
  EXPECT_EQ(app.On_kUnloadAppMsg(nullptr), AcRx::kRetError);
  EXPECT_EQ(HeapWatch::handedOut - HeapWatch::takenBack, alive);
  UserInputStateWatcherDoor::Instance() = nullptr;
}

TEST(ModuleApp, AddsNoDataToTheFramesObject) {
  EXPECT_EQ(sizeof(COrvArxModuleApp), sizeof(AcRxArxApp));
}

TEST(ModuleAttach, RegistersTheModuleOnceAndTerminatesItOnce) {
  const auto before = extensionModuleCounts();
  int anchor = 0;
  const auto handle = reinterpret_cast<HINSTANCE>(&anchor);
  EXPECT_NE(DllMain(handle, DLL_PROCESS_ATTACH, nullptr), 0);
  EXPECT_NE(DllMain(handle, DLL_PROCESS_ATTACH, nullptr), 0) << "attached already";
  EXPECT_EQ(extensionModuleCounts().initialised, before.initialised + 1);
  EXPECT_EQ(extensionModuleCounts().libraries, before.libraries + 1);
  constexpr DWORD kThreadAttach = 2;
  EXPECT_NE(DllMain(handle, kThreadAttach, nullptr), 0);
  EXPECT_NE(DllMain(handle, DLL_PROCESS_DETACH, nullptr), 0);
  EXPECT_NE(DllMain(handle, DLL_PROCESS_DETACH, nullptr), 0) << "detached already";
  EXPECT_EQ(extensionModuleCounts().terminated, before.terminated + 1);
  EXPECT_EQ(extensionModuleCounts().libraries, before.libraries);
  EXPECT_EQ(extensionModuleCounts().initialised, before.initialised + 1);
}

}  // namespace
