#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "arxEntryPoint.h"
#include "embedded/rx/Runtime.h"

namespace {

/// Notes which handler was called, by message code; -1 stands for the seventeenth operation.
class RecordingApp : public AcRxArxApp {
 public:
  std::vector<int> calls;
  std::vector<void*> packets;

#define RECORD(name, code)                         \
  AcRx::AppRetCode On_##name(void* pkt) override { \
    calls.push_back(code);                         \
    packets.push_back(pkt);                        \
    return AcRx::kRetError;                        \
  }
  RECORD(kInitAppMsg, 1)
  RECORD(kUnloadAppMsg, 2)
  RECORD(kLoadDwgMsg, 3)
  RECORD(kUnloadDwgMsg, 4)
  RECORD(kInvkSubrMsg, 5)
  RECORD(kCfgMsg, 6)
  RECORD(kEndMsg, 7)
  RECORD(kQuitMsg, 8)
  RECORD(kSaveMsg, 9)
  RECORD(kDependencyMsg, 10)
  RECORD(kNoDependencyMsg, 11)
  RECORD(kOleUnloadAppMsg, 12)
  RECORD(kPreQuitMsg, 13)
  RECORD(kInitDialogMsg, 14)
  RECORD(kEndDialogMsg, 15)
  RECORD(kNullMsg, 0)
#undef RECORD
  void RegisterServerComponents() override {
    calls.push_back(-1);
  }
};

/// The frame's own behaviour.
class PlainApp : public AcRxArxApp {
 public:
  explicit PlainApp(bool unlocked = false, bool mdiAware = false) {
    m_bUnlocked = unlocked;
    m_bMDIAware = mdiAware;
  }
  void setCommands(std::span<const AcRxCommandEntry> commands) { m_commandMap = commands; }
  void RegisterServerComponents() override {}
};

AcRx::AppMsgCode messageOf(int code) {
  return static_cast<AcRx::AppMsgCode>(code);
}

TEST(ArxApp, EveryCodeFromZeroToFifteenReachesItsOwnHandler) {
  RecordingApp app;
  int packet = 0;
  for (int code = 0; code <= 15; ++code) {
    app.calls.clear();
    app.packets.clear();
    EXPECT_EQ(app.dispatch(messageOf(code), &packet), AcRx::kRetError);
    EXPECT_EQ(app.calls, std::vector<int>{code});
    EXPECT_EQ(app.packets, std::vector<void*>{&packet});
  }
}

TEST(ArxApp, CodesOutsideTheTableAreAnsweredOkWithoutACall) {
  RecordingApp app;
  for (const int code : {16, 17, 18, 19, 1000, 0x7FFFFFFF, -1, -2147483647}) {
    EXPECT_EQ(app.dispatch(messageOf(code), nullptr), AcRx::kRetOK) << code;
  }
  EXPECT_TRUE(app.calls.empty());
}

TEST(ArxApp, TheTableHasSixteenEntries) {
  EXPECT_EQ(AcRxDbxApp::kHandlerCount, 16U);
  EXPECT_EQ(AcRxDbxApp::handlerFor(AcRx::kNullMsg), &AcRxDbxApp::On_kNullMsg);
  EXPECT_EQ(AcRxDbxApp::handlerFor(AcRx::kInitAppMsg), &AcRxDbxApp::On_kInitAppMsg);
  EXPECT_EQ(AcRxDbxApp::handlerFor(AcRx::kEndDialogMsg), &AcRxDbxApp::On_kEndDialogMsg);
}

#if defined(__GNUC__)
/// The place of a virtual operation in its class's table, as the common C++ ABI stores it in a
/// pointer to member: one more than the offset in bytes.
template <class Member>
std::size_t slotOf(Member member) {
  std::size_t word = 0;
  std::memcpy(&word, &member, sizeof word);
  return (word - 1) / sizeof(void*);
}

TEST(ArxApp, SlotsAreTheCodesOneToFifteenThenZeroThenTheServerHook) {
  for (int code = 1; code <= 15; ++code) {
    EXPECT_EQ(slotOf(AcRxDbxApp::handlerFor(messageOf(code))), static_cast<std::size_t>(code - 1));
  }
  EXPECT_EQ(slotOf(AcRxDbxApp::handlerFor(AcRx::kNullMsg)), 15U);
  EXPECT_EQ(slotOf(&AcRxDbxApp::RegisterServerComponents), 16U);
}
#endif

TEST(ArxApp, TheFrameAnswersOkToEveryMessageWithEmptyTables) {
  const quoin::rx::Runtime runtime;
  PlainApp app;
  for (int code = 0; code <= 18; ++code) {
    EXPECT_EQ(app.dispatch(messageOf(code), nullptr), AcRx::kRetOK) << code;
  }
}

TEST(ArxApp, InitialisationWithoutAHostIsAnError) {
  PlainApp app;
  EXPECT_EQ(app.dispatch(AcRx::kInitAppMsg, nullptr), AcRx::kRetError);
  EXPECT_EQ(app.dispatch(AcRx::kUnloadAppMsg, nullptr), AcRx::kRetOK);
  EXPECT_EQ(app.dispatch(AcRx::kLoadDwgMsg, nullptr), AcRx::kRetOK);
  EXPECT_EQ(app.dispatch(AcRx::kInvkSubrMsg, nullptr), AcRx::kRetOK);
}

TEST(ArxApp, AnOptionThatTheHostCannotServeIsAnError) {
  const quoin::rx::Runtime runtime;
  int nobody = 0;
  EXPECT_EQ(PlainApp(true, false).dispatch(AcRx::kInitAppMsg, &nobody), AcRx::kRetError);
  EXPECT_EQ(PlainApp(false, true).dispatch(AcRx::kInitAppMsg, &nobody), AcRx::kRetError);
  EXPECT_EQ(PlainApp(false, false).dispatch(AcRx::kInitAppMsg, &nobody), AcRx::kRetOK);
}

TEST(ArxApp, ACommandThatCannotBeAddedIsAnErrorAndTheOthersAreAdded) {
  quoin::rx::Runtime runtime;
  const AcRxCommandEntry commands[] = {{L"G", L"ONE", nullptr, 0, [] {}},
                                       {L"G", L"ONE", nullptr, 0, [] {}},
                                       {L"G", L"TWO", nullptr, 0, [] {}}};
  PlainApp app;
  app.setCommands(commands);
  EXPECT_EQ(app.dispatch(AcRx::kInitAppMsg, nullptr), AcRx::kRetError);
  EXPECT_NE(acedRegCmds->lookupCmd(L"TWO"), nullptr);
  EXPECT_EQ(app.dispatch(AcRx::kUnloadAppMsg, nullptr), AcRx::kRetOK);
  EXPECT_TRUE(runtime.commands().groupNames().empty());
}

TEST(ArxApp, ACommandMapWithoutAHostIsAnErrorAtUnloading) {
  const AcRxCommandEntry commands[] = {{L"G", L"ONE", nullptr, 0, [] {}}};
  PlainApp app;
  app.setCommands(commands);
  EXPECT_EQ(app.dispatch(AcRx::kInitAppMsg, nullptr), AcRx::kRetError);
  EXPECT_EQ(app.dispatch(AcRx::kUnloadAppMsg, nullptr), AcRx::kRetError);
}

}  // namespace
