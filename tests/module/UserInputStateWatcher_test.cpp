#include "UserInputStateWatcher.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "UserInputStateWatcherInternal.h"
#include "embedded/product/HostApplication.h"

namespace {

using quoin::ed::Prompt;

class WatcherTest : public testing::Test {
 protected:
  quoin::ed::InputPrompts& prompts(AcApDocument& of) { return host.editor().prompts(of); }
  CUserInputReactor& reactor() { return *UserInputStateWatcherDoor::Reactor(watcher); }

  quoin::HostApplication host;
  AcApDocument& document = *curDoc();
  CUserInputStateWatcher watcher;
};

TEST_F(WatcherTest, BeforeItIsTurnedOnNoCornerIsBeingPicked) {
  EXPECT_FALSE(watcher.InGetCorner());
  prompts(document).begin(Prompt::Corner);
  EXPECT_FALSE(watcher.InGetCorner());
  EXPECT_FALSE(reactor().IsAttached());
  EXPECT_EQ(reactor().GetDocument(), nullptr);
}

TEST_F(WatcherTest, ACornerPromptInTheCurrentDocumentIsSeenUntilItEnds) {
  watcher.TurnOn();
  EXPECT_EQ(reactor().GetDocument(), &document);
  EXPECT_FALSE(watcher.InGetCorner());
  const AcGePoint3d first(1.0, 2.0, 0.0);
  quoin::ed::PromptRequest request;
  request.basePoint = &first;
  request.text = L"Other corner";
  prompts(document).begin(Prompt::Corner, request);
  EXPECT_TRUE(watcher.InGetCorner());
  EXPECT_TRUE(watcher.InGetCorner()) << "asking changes nothing";
  prompts(document).end();
  EXPECT_FALSE(watcher.InGetCorner());
}

TEST_F(WatcherTest, ACancelledCornerPromptHasEndedToo) {
  watcher.TurnOn();
  prompts(document).begin(Prompt::Corner);
  prompts(document).cancelAll();
  EXPECT_FALSE(watcher.InGetCorner());
}

TEST_F(WatcherTest, OtherPromptsAreNoCornerPicks) {
  watcher.TurnOn();
  for (int prompt = 0; prompt <= static_cast<int>(Prompt::Drag); ++prompt) {
    if (static_cast<Prompt>(prompt) == Prompt::Corner) {
      continue;
    }
    prompts(document).begin(static_cast<Prompt>(prompt));
    EXPECT_FALSE(watcher.InGetCorner()) << prompt;
    prompts(document).end();
  }
}

TEST_F(WatcherTest, OtherPromptsInsideACornerPromptDoNotEndIt) {
  watcher.TurnOn();
  prompts(document).begin(Prompt::Corner);
  prompts(document).begin(Prompt::Drag);
  EXPECT_TRUE(watcher.InGetCorner());
  prompts(document).end();
  EXPECT_TRUE(watcher.InGetCorner());
  prompts(document).end();
  EXPECT_FALSE(watcher.InGetCorner());
}

TEST_F(WatcherTest, CornerPromptsInAnotherDocumentAreNotSeen) {
  watcher.TurnOn();
  AcApDocument& other = host.editor().openDocument(L"other.dwg");
  prompts(other).begin(Prompt::Corner);
  EXPECT_FALSE(watcher.InGetCorner());
  prompts(document).begin(Prompt::Corner);
  prompts(other).end();
  EXPECT_TRUE(watcher.InGetCorner()) << "the other document's end is not ours either";
}

TEST_F(WatcherTest, TurningOnTwiceRegistersOnce) {
  watcher.TurnOn();
  watcher.TurnOn();
  EXPECT_EQ(prompts(document).reactorCount(), 1);
  watcher.TurnOff();
  EXPECT_EQ(prompts(document).reactorCount(), 0);
}

/// Notes what the watcher says while a corner pick begins.
class Listener : public AcEdInputContextReactor {
 public:
  explicit Listener(CUserInputStateWatcher& watched) : watcher(watched) {}
  void beginGetCorner(const AcGePoint3d*, const ACHAR*, int, const ACHAR*) override {
    sawPick = watcher.InGetCorner();
  }

  CUserInputStateWatcher& watcher;
  bool sawPick = false;
};

TEST_F(WatcherTest, TurningOnTwiceRegistersAnewBehindTheOthers) {
  watcher.TurnOn();
  Listener listener(watcher);
  ASSERT_EQ(document.inputPointManager()->addInputContextReactor(&listener), Acad::eOk);
  prompts(document).begin(Prompt::Corner);
  EXPECT_TRUE(listener.sawPick) << "the watcher came first and was told first";
  prompts(document).end();
  watcher.TurnOn();
  prompts(document).begin(Prompt::Corner);
  EXPECT_FALSE(listener.sawPick) << "now the listener is told first";
  EXPECT_TRUE(watcher.InGetCorner());
  prompts(document).end();
  document.inputPointManager()->removeInputContextReactor(&listener);
}

TEST_F(WatcherTest, TurningOnAgainMovesToTheDocumentThatIsCurrentThen) {
  watcher.TurnOn();
  AcApDocument& other = host.editor().openDocument(L"other.dwg");
  EXPECT_EQ(reactor().GetDocument(), &document) << "it does not follow by itself";
  watcher.TurnOn();
  EXPECT_EQ(prompts(document).reactorCount(), 0);
  EXPECT_EQ(prompts(other).reactorCount(), 1);
  prompts(other).begin(Prompt::Corner);
  EXPECT_TRUE(watcher.InGetCorner());
}

TEST_F(WatcherTest, WithoutACurrentDocumentTurningOnDetaches) {
  watcher.TurnOn();
  host.editor().setCurrentDocument(nullptr);
  watcher.TurnOn();
  EXPECT_FALSE(reactor().IsAttached());
  EXPECT_EQ(prompts(document).reactorCount(), 0);
  EXPECT_FALSE(watcher.InGetCorner());
}

TEST_F(WatcherTest, TurningOffWhileDetachedDoesNothing) {
  watcher.TurnOff();
  watcher.TurnOff();
  EXPECT_FALSE(reactor().IsAttached());
  watcher.TurnOn();
  EXPECT_EQ(prompts(document).reactorCount(), 1);
}

TEST_F(WatcherTest, AFlagLeftByAnInterruptedPickIsHiddenWhileDetachedAndSeenAgainAfterwards) {
  watcher.TurnOn();
  prompts(document).begin(Prompt::Corner);
  watcher.TurnOff();
  EXPECT_FALSE(watcher.InGetCorner());
  prompts(document).end();  // not told of it
  EXPECT_TRUE(reactor().IsInGetCorner());
  watcher.TurnOn();
  EXPECT_TRUE(watcher.InGetCorner()) << "the flag stays until the next end";
  prompts(document).begin(Prompt::Corner);
  prompts(document).end();
  EXPECT_FALSE(watcher.InGetCorner());
}

TEST_F(WatcherTest, ADocumentThatIsClosedWhileWatchedEndsThePickAndLetsTheWatcherGo) {
  watcher.TurnOn();
  prompts(document).begin(Prompt::Corner);
  host.editor().closeDocument(document);
  EXPECT_FALSE(watcher.InGetCorner()) << "closing cancels the prompt";
  EXPECT_EQ(reactor().GetDocument(), &document) << "nobody told the reactor to detach";
  AcApDocument& next = host.editor().openDocument(L"next.dwg");
  watcher.TurnOn();
  EXPECT_EQ(prompts(next).reactorCount(), 1);
  watcher.TurnOff();
}

TEST_F(WatcherTest, ADestroyedWatcherLeavesTheDocument) {
  auto second = std::make_unique<CUserInputStateWatcher>();
  second->TurnOn();
  EXPECT_EQ(prompts(document).reactorCount(), 1);
  second.reset();
  EXPECT_EQ(prompts(document).reactorCount(), 0);
  prompts(document).begin(Prompt::Corner);  // nobody is told
}

TEST_F(WatcherTest, AssignmentSharesTheReactor) {
  // Only one of the two may be destroyed: the other one's storage is given back by hand.
  auto* const copy = new CUserInputStateWatcher;
  delete UserInputStateWatcherDoor::Reactor(*copy);
  *copy = watcher;
  EXPECT_EQ(UserInputStateWatcherDoor::Reactor(*copy), &reactor());
  copy->TurnOn();
  prompts(document).begin(Prompt::Corner);
  EXPECT_TRUE(watcher.InGetCorner());
  ::operator delete(copy);
}

TEST_F(WatcherTest, TheInstanceIsMadeOnceAndDetached) {
  UserInputStateWatcherDoor::Instance() = nullptr;
  CUserInputStateWatcher* const instance = CUserInputStateWatcher::Instance();
  ASSERT_NE(instance, nullptr);
  EXPECT_EQ(CUserInputStateWatcher::Instance(), instance);
  EXPECT_FALSE(instance->InGetCorner());
  EXPECT_FALSE(UserInputStateWatcherDoor::Reactor(*instance)->IsAttached());
  delete instance;
  UserInputStateWatcherDoor::Instance() = nullptr;
}

class UserInputReactorTest : public testing::Test {
 protected:
  quoin::HostApplication host;
  AcApDocument& document = *curDoc();
  quoin::ed::InputPrompts& prompts = host.editor().prompts(document);
};

TEST_F(UserInputReactorTest, MadeWithADocumentItIsRegisteredAtOnce) {
  {
    CUserInputReactor reactor(&document);
    EXPECT_TRUE(reactor.IsAttached());
    EXPECT_FALSE(reactor.IsInGetCorner());
    EXPECT_EQ(prompts.reactorCount(), 1);
  }
  EXPECT_EQ(prompts.reactorCount(), 0);
}

TEST_F(UserInputReactorTest, AttachingToNothingDetaches) {
  CUserInputReactor reactor(&document);
  reactor.AttachToDocument(nullptr);
  EXPECT_FALSE(reactor.IsAttached());
  EXPECT_EQ(prompts.reactorCount(), 0);
  reactor.DetachFromDocument();
  reactor.AttachToDocument(&document);
  EXPECT_EQ(reactor.GetDocument(), &document);
}

#if defined(__GNUC__)
template <class Member>
std::size_t slotOf(Member member) {
  std::size_t word = 0;
  std::memcpy(&word, &member, sizeof word);
  return (word - 1) / sizeof(void*);
}

TEST(UserInputReactor, ItsOwnOperationsFollowTheNotificationsAndTheDestructor) {
  // 32 notifications, then the destructor, which takes two places in the common C++ ABI.
  EXPECT_EQ(slotOf(&CUserInputReactor::AttachToDocument), 34U);
  EXPECT_EQ(slotOf(&CUserInputReactor::DetachFromDocument), 35U);
  EXPECT_EQ(slotOf(&CUserInputReactor::GetDocument), 36U);
  EXPECT_EQ(slotOf(&CUserInputReactor::IsAttached), 37U);
}
#endif

}  // namespace
