#include "embedded/ed/InputPrompts.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace {

using quoin::ed::InputPrompts;
using quoin::ed::Prompt;
using quoin::ed::PromptReply;
using quoin::ed::PromptRequest;

std::wstring textOf(const ACHAR* text) {
  return text ? text : L"(none)";
}

/// Writes down every notification with its arguments.
class RecordingReactor : public AcEdInputContextReactor {
 public:
  std::vector<std::wstring> calls;
  std::function<void()> onBegin = [] {};

  std::vector<std::wstring> take() { return std::exchange(calls, {}); }

  void beginGetPoint(const AcGePoint3d* p, const ACHAR* t, int f, const ACHAR* k) override {
    begin(L"Point", p, t, f, k);
  }
  void endGetPoint(Acad::PromptStatus s, const AcGePoint3d& p, const ACHAR*& k) override {
    end(L"Point", s, p.x, k);
  }
  void beginGetAngle(const AcGePoint3d* p, const ACHAR* t, int f, const ACHAR* k) override {
    begin(L"Angle", p, t, f, k);
  }
  void endGetAngle(Acad::PromptStatus s, double& v, const ACHAR*& k) override {
    end(L"Angle", s, v, k);
  }
  void beginGetDistance(const AcGePoint3d* p, const ACHAR* t, int f, const ACHAR* k) override {
    begin(L"Distance", p, t, f, k);
  }
  void endGetDistance(Acad::PromptStatus s, double& v, const ACHAR*& k) override {
    end(L"Distance", s, v, k);
  }
  void beginGetOrientation(const AcGePoint3d* p, const ACHAR* t, int f, const ACHAR* k) override {
    begin(L"Orientation", p, t, f, k);
  }
  void endGetOrientation(Acad::PromptStatus s, double& v, const ACHAR*& k) override {
    end(L"Orientation", s, v, k);
  }
  void beginGetCorner(const AcGePoint3d* p, const ACHAR* t, int f, const ACHAR* k) override {
    begin(L"Corner", p, t, f, k);
  }
  void endGetCorner(Acad::PromptStatus s, AcGePoint3d& p, const ACHAR*& k) override {
    end(L"Corner", s, p.x, k);
  }
  void beginGetScaleFactor(const ACHAR* t, int f, const ACHAR* k) override {
    begin(L"ScaleFactor", nullptr, t, f, k);
  }
  void endGetScaleFactor(Acad::PromptStatus s, double& v, const ACHAR*& k) override {
    end(L"ScaleFactor", s, v, k);
  }
  void beginGetString(const ACHAR* t, int f) override { begin(L"String", nullptr, t, f, nullptr); }
  void endGetString(Acad::PromptStatus s, ACHAR*& v) override {
    end(L"String", s, static_cast<double>(std::wcslen(v)), nullptr);
  }
  void beginGetKeyword(const ACHAR* t, int f, const ACHAR* k) override {
    begin(L"Keyword", nullptr, t, f, k);
  }
  void endGetKeyword(Acad::PromptStatus s, const ACHAR*& k) override { end(L"Keyword", s, 0, k); }
  void beginGetInteger(const ACHAR* t, int f, const ACHAR* k) override {
    begin(L"Integer", nullptr, t, f, k);
  }
  void endGetInteger(Acad::PromptStatus s, int& v, const ACHAR*& k) override {
    end(L"Integer", s, v, k);
  }
  void beginGetColor(const int* d, const ACHAR* t, int f, const ACHAR* k) override {
    begin(d && *d == 256 ? L"Color" : L"Color?", nullptr, t, f, k);
  }
  void endGetColor(Acad::PromptStatus s, int& v, const ACHAR*& k) override {
    end(L"Color", s, v, k);
  }
  void beginGetReal(const ACHAR* t, int f, const ACHAR* k) override {
    begin(L"Real", nullptr, t, f, k);
  }
  void endGetReal(Acad::PromptStatus s, double& v, const ACHAR*& k) override {
    end(L"Real", s, v, k);
  }
  void beginEntsel(const ACHAR* t, int f, const ACHAR* k) override {
    begin(L"Entity", nullptr, t, f, k);
  }
  void endEntsel(Acad::PromptStatus s, AcDbObjectId& id, AcGePoint3d& p, const ACHAR* k) override {
    end(nameOf(L"Entity", id), s, p.x, k);
  }
  void beginNentsel(const ACHAR* t, Adesk::Boolean pick, int f, const ACHAR* k) override {
    begin(pick ? L"NestedEntity" : L"NestedEntity?", nullptr, t, f, k);
  }
  void endNentsel(Acad::PromptStatus s, const AcDbObjectId& id, const AcGePoint3d& p,
                  const AcGeMatrix3d& m, const resbuf*, const ACHAR* k) override {
    end(nameOf(m(0, 3) == 9.0 ? L"NestedEntity" : L"NestedEntity?", id), s, p.x, k);
  }
  void beginSSGet(const ACHAR* t, int f, const ACHAR* k, const ACHAR* prompts,
                  const AcArray<AcGePoint3d>& points, const resbuf*) override {
    begin(textOf(prompts) == L"add" && points.length() == 1 ? L"Selection" : L"Selection?", nullptr,
          t, f, k);
  }
  void endSSGet(Acad::PromptStatus s, const AcDbObjectIdArray& ids) override {
    end(nameOf(L"Selection", ids.isEmpty() ? AcDbObjectId() : ids[0]), s, ids.length(), nullptr);
  }
  void beginDragSequence(const ACHAR* t) override { begin(L"Drag", nullptr, t, 7, L"kw"); }
  void endDragSequence(Acad::PromptStatus s, AcGePoint3d& p, AcGeVector3d& v) override {
    end(v.y == 2.0 ? L"Drag" : L"Drag?", s, p.x, L"kw");
  }
  void beginQuiescentState() override { calls.push_back(L"quiescent"); }
  void endQuiescentState() override { calls.push_back(L"busy"); }

 protected:
  static std::wstring nameOf(const wchar_t* prompt, const AcDbObjectId& id) {
    return id.isNull() ? std::wstring(prompt) + L" of nothing" : prompt;
  }
  void begin(const std::wstring& name, const AcGePoint3d* point, const ACHAR* text, int flags,
             const ACHAR* keywords) {
    calls.push_back(L"begin " + name + L" " + (point ? std::to_wstring(point->x) : L"-") + L" " +
                    textOf(text) + L" " + std::to_wstring(flags) + L" " + textOf(keywords));
    onBegin();
  }
  void end(const std::wstring& name, Acad::PromptStatus status, double value,
           const ACHAR* keyword) {
    calls.push_back(L"end " + name + L" " + std::to_wstring(status) + L" " +
                    std::to_wstring(value) + L" " + textOf(keyword));
  }
};

class InputPromptsTest : public testing::Test {
 protected:
  InputPrompts prompts;
  RecordingReactor reactor;

  void attach() { ASSERT_EQ(prompts.pointManager().addInputContextReactor(&reactor), Acad::eOk); }
};

struct PromptCase {
  Prompt prompt;
  const wchar_t* begin;
  const wchar_t* end;
};

TEST_F(InputPromptsTest, EveryPromptReachesItsOwnNotificationsWithItsArguments) {
  attach();
  const AcGePoint3d base(2.0, 0.0, 0.0);
  const AcDbObjectId someEntity = AcDbObjectId().setFromOldId(16);
  const int defaultColor = 256;
  PromptRequest request;
  request.text = L"Pick";
  request.flags = 7;
  request.keywords = L"kw";
  request.basePoint = &base;
  request.defaultColor = &defaultColor;
  request.picksByPoint = true;
  request.selectionPrompts = L"add";
  request.selectionPoints.append(base);
  const PromptCase cases[] = {
      {Prompt::Point, L"begin Point 2.000000 Pick 7 kw", L"end Point 5100 1.000000 (none)"},
      {Prompt::Angle, L"begin Angle 2.000000 Pick 7 kw", L"end Angle 5100 1.500000 (none)"},
      {Prompt::Distance, L"begin Distance 2.000000 Pick 7 kw",
       L"end Distance 5100 1.500000 (none)"},
      {Prompt::Orientation, L"begin Orientation 2.000000 Pick 7 kw",
       L"end Orientation 5100 1.500000 (none)"},
      {Prompt::Corner, L"begin Corner 2.000000 Pick 7 kw", L"end Corner 5100 1.000000 (none)"},
      {Prompt::ScaleFactor, L"begin ScaleFactor - Pick 7 kw",
       L"end ScaleFactor 5100 1.500000 (none)"},
      {Prompt::String, L"begin String - Pick 7 (none)", L"end String 5100 3.000000 (none)"},
      {Prompt::Keyword, L"begin Keyword - Pick 7 kw", L"end Keyword 5100 0.000000 (none)"},
      {Prompt::Integer, L"begin Integer - Pick 7 kw", L"end Integer 5100 4.000000 (none)"},
      {Prompt::Color, L"begin Color - Pick 7 kw", L"end Color 5100 4.000000 (none)"},
      {Prompt::Real, L"begin Real - Pick 7 kw", L"end Real 5100 1.500000 (none)"},
      {Prompt::Entity, L"begin Entity - Pick 7 kw", L"end Entity 5100 1.000000 (none)"},
      {Prompt::NestedEntity, L"begin NestedEntity - Pick 7 kw",
       L"end NestedEntity 5100 1.000000 (none)"},
      {Prompt::Selection, L"begin Selection - Pick 7 kw", L"end Selection 5100 2.000000 (none)"},
      {Prompt::Drag, L"begin Drag - Pick 7 kw", L"end Drag 5100 1.000000 kw"},
  };
  for (const PromptCase& expected : cases) {
    prompts.begin(expected.prompt, request);
    PromptReply reply;
    reply.point.set(1.0, 0.0, 0.0);
    reply.number = 1.5;
    reply.integer = 4;
    reply.text = L"abc";
    reply.displacement.set(0.0, 2.0, 0.0);
    reply.transform(0, 3) = 9.0;
    reply.entity = someEntity;
    reply.selection.append(someEntity);
    reply.selection.append(someEntity);
    EXPECT_TRUE(prompts.end(reply));
    EXPECT_EQ(reactor.take(),
              (std::vector<std::wstring>{L"busy", expected.begin, expected.end, L"quiescent"}));
  }
}

TEST_F(InputPromptsTest, AKeywordArrivesInsteadOfAValue) {
  attach();
  prompts.begin(Prompt::Corner);
  reactor.take();
  PromptReply reply;
  reply.status = Acad::eKeyword;
  reply.keyword = L"Undo";
  EXPECT_TRUE(prompts.end(reply));
  EXPECT_EQ(reactor.calls[0], L"end Corner -5005 0.000000 Undo");
}

TEST_F(InputPromptsTest, NestedPromptsEndInnermostFirstAndTheDocumentStaysBusy) {
  attach();
  prompts.begin(Prompt::Corner);
  prompts.begin(Prompt::Drag);
  EXPECT_EQ(prompts.pending(), (std::vector<Prompt>{Prompt::Corner, Prompt::Drag}));
  EXPECT_FALSE(prompts.isQuiescent());
  EXPECT_TRUE(prompts.end());
  EXPECT_FALSE(prompts.isQuiescent());
  EXPECT_TRUE(prompts.end());
  EXPECT_TRUE(prompts.isQuiescent());
  EXPECT_FALSE(prompts.end()) << "there is no prompt to end";
  const auto& calls = reactor.calls;
  EXPECT_EQ(std::count(calls.begin(), calls.end(), L"busy"), 1);
  EXPECT_EQ(std::count(calls.begin(), calls.end(), L"quiescent"), 1);
  EXPECT_EQ(calls.back(), L"quiescent");
}

TEST_F(InputPromptsTest, RegistrationAnswersItsStatus) {
  AcEdInputPointManager& manager = prompts.pointManager();
  EXPECT_EQ(manager.addInputContextReactor(nullptr), Acad::eInvalidInput);
  EXPECT_EQ(manager.removeInputContextReactor(nullptr), Acad::eInvalidInput);
  EXPECT_EQ(manager.removeInputContextReactor(&reactor), Acad::eKeyNotFound);
  EXPECT_EQ(manager.addInputContextReactor(&reactor), Acad::eOk);
  EXPECT_EQ(manager.addInputContextReactor(&reactor), Acad::eDuplicateKey);
  EXPECT_EQ(prompts.reactorCount(), 1);
  EXPECT_EQ(manager.removeInputContextReactor(&reactor), Acad::eOk);
  EXPECT_EQ(prompts.reactorCount(), 0);
  prompts.begin(Prompt::Point);
  EXPECT_TRUE(reactor.calls.empty());
}

TEST_F(InputPromptsTest, AReactorTakenOffByAnotherIsNotToldAnyMore) {
  RecordingReactor second;
  attach();
  ASSERT_EQ(prompts.pointManager().addInputContextReactor(&second), Acad::eOk);
  reactor.onBegin = [&] {
    prompts.pointManager().removeInputContextReactor(&second);
    prompts.pointManager().removeInputContextReactor(&reactor);
  };
  prompts.begin(Prompt::Point);
  prompts.end();
  EXPECT_EQ(reactor.calls.size(), 2U) << "busy and the begin, then it is off";
  EXPECT_EQ(second.calls, std::vector<std::wstring>{L"busy"});
}

TEST_F(InputPromptsTest, ClosingCancelsPromptsAndTakesNoMoreReactors) {
  attach();
  prompts.begin(Prompt::Corner);
  reactor.take();
  prompts.close();
  EXPECT_EQ(reactor.take(),
            (std::vector<std::wstring>{L"end Corner -5002 0.000000 (none)", L"quiescent"}));
  EXPECT_EQ(prompts.reactorCount(), 0);
  EXPECT_EQ(prompts.pointManager().addInputContextReactor(&reactor), Acad::eInvalidContext);
  EXPECT_EQ(prompts.pointManager().removeInputContextReactor(&reactor), Acad::eKeyNotFound);
}

TEST(InputContextReactor, TheBaseClassDoesNothingWhateverItIsTold) {
  InputPrompts prompts;
  AcEdInputContextReactor reactor;
  ASSERT_EQ(prompts.pointManager().addInputContextReactor(&reactor), Acad::eOk);
  for (int prompt = 0; prompt <= static_cast<int>(Prompt::Drag); ++prompt) {
    prompts.begin(static_cast<Prompt>(prompt));
    PromptReply reply;
    reply.number = 3.0;
    EXPECT_TRUE(prompts.end(reply));
    EXPECT_EQ(reply.number, 3.0);
  }
}

#if defined(__GNUC__)
template <class Member>
std::size_t slotOf(Member member) {
  std::size_t word = 0;
  std::memcpy(&word, &member, sizeof word);
  return (word - 1) / sizeof(void*);
}

TEST(InputContextReactor, TheThirtyTwoNotificationsComeFirstInTheirOwnOrder) {
  using R = AcEdInputContextReactor;
  const std::size_t slots[] = {slotOf(&R::beginGetPoint),       slotOf(&R::endGetPoint),
                               slotOf(&R::beginGetAngle),       slotOf(&R::endGetAngle),
                               slotOf(&R::beginGetDistance),    slotOf(&R::endGetDistance),
                               slotOf(&R::beginGetOrientation), slotOf(&R::endGetOrientation),
                               slotOf(&R::beginGetCorner),      slotOf(&R::endGetCorner),
                               slotOf(&R::beginGetScaleFactor), slotOf(&R::endGetScaleFactor),
                               slotOf(&R::beginGetString),      slotOf(&R::endGetString),
                               slotOf(&R::beginGetKeyword),     slotOf(&R::endGetKeyword),
                               slotOf(&R::beginGetInteger),     slotOf(&R::endGetInteger),
                               slotOf(&R::beginGetColor),       slotOf(&R::endGetColor),
                               slotOf(&R::beginGetReal),        slotOf(&R::endGetReal),
                               slotOf(&R::beginEntsel),         slotOf(&R::endEntsel),
                               slotOf(&R::beginNentsel),        slotOf(&R::endNentsel),
                               slotOf(&R::beginSSGet),          slotOf(&R::endSSGet),
                               slotOf(&R::beginDragSequence),   slotOf(&R::endDragSequence),
                               slotOf(&R::beginQuiescentState), slotOf(&R::endQuiescentState)};
  for (std::size_t i = 0; i < std::size(slots); ++i) {
    EXPECT_EQ(slots[i], i);
  }
  EXPECT_EQ(std::size(slots), 32U);
}
#endif

}  // namespace
