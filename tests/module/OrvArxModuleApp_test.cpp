#include "OrvArxModuleApp.h"

#include <gtest/gtest.h>

#include "UserInputStateWatcherInternal.h"
#include "embedded/product/HostApplication.h"
#include "embedded/rx/ExtensionModules.h"
#include "rxframe.h"

namespace {

using quoin::HostApplication;
using quoin::rx::extensionModuleCounts;

/// A linker that knows every packet and notes what it is told.
class RecordingLinker : public AcRxDynamicLinker {
 public:
  std::vector<std::string> calls;
  bool answer = true;

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
    return answer;
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
  // That it is deleted again is what the leak check of the sanitizers looks at.
}

TEST_F(ModuleAppTest, InitialisationAnswersTheFramesResultAndMakesTheWatcherAllTheSame) {
  linker.answer = false;
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

TEST_F(ModuleAppTest, AllOtherMessagesAreAnsweredOkAndTouchNothing) {
  for (int code = 0; code <= 30; ++code) {
    if (code != AcRx::kInitAppMsg && code != AcRx::kUnloadAppMsg) {
      EXPECT_EQ(send(static_cast<AcRx::AppMsgCode>(code)), AcRx::kRetOK) << code;
    }
  }
  EXPECT_EQ(send(static_cast<AcRx::AppMsgCode>(-1)), AcRx::kRetOK);
  EXPECT_TRUE(linker.calls.empty());
  EXPECT_EQ(UserInputStateWatcherDoor::Instance(), nullptr);
  EXPECT_EQ(host.serviceLookups().factoryCalls(), 0U);
}

TEST_F(ModuleAppTest, DefinesNoAutoLispFunctions) {
  EXPECT_EQ(send(AcRx::kLoadDwgMsg), AcRx::kRetOK);
  EXPECT_EQ(send(AcRx::kInvkSubrMsg), AcRx::kRetOK);
  EXPECT_EQ(send(AcRx::kUnloadDwgMsg), AcRx::kRetOK);
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
