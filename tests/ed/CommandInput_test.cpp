#include "embedded/ed/CommandInput.h"

#include <gtest/gtest.h>

#include "acedads.h"
#include "embedded/ed/Editor.h"
#include "hostcommand.h"

namespace {

using quoin::ed::Editor;
using Words = std::vector<std::wstring>;

/// Counts prompts, and makes every distance one longer, as reactors may.
struct Watcher : AcEdInputContextReactor {
  void beginGetDistance(const AcGePoint3d* point, const ACHAR* prompt, int /*flags*/,
                        const ACHAR* /*keywords*/) override {
    base = point ? *point : AcGePoint3d(0.0, 0.0, 0.0);
    text = prompt;
  }
  void endGetDistance(Acad::PromptStatus status, double& value,
                      const ACHAR*& /*keyword*/) override {
    last = status;
    value += 1.0;
  }
  AcGePoint3d base;
  std::wstring text;
  Acad::PromptStatus last = Acad::eNone;
};

class CommandInputTest : public testing::Test {
 protected:
  void answer(Words words) { editor.commandInput().begin(std::move(words)); }
  const std::wstring& failure() { return editor.commandInput().failure(); }

  Editor editor;
  AcApDocument& document = editor.openDocument(L"plan");
};

TEST_F(CommandInputTest, EachWordAnswersOnePrompt) {
  answer({L"A-WALL", L"-7", L"2.5e3", L"4", L"1,-2", L"1,2,3"});
  ACHAR text[kMaxStringInput + 1] = L"";
  int whole = 0;
  double real = 0.0;
  double distance = 0.0;
  ads_point point = {9.0, 9.0, 9.0};
  EXPECT_EQ(acedGetString(0, L"Layer: ", text), RTNORM);
  EXPECT_STREQ(text, L"A-WALL");
  EXPECT_EQ(acedGetInt(L"Count: ", &whole), RTNORM);
  EXPECT_EQ(whole, -7);
  EXPECT_EQ(acedGetReal(L"Factor: ", &real), RTNORM);
  EXPECT_EQ(real, 2500.0);
  EXPECT_EQ(acedGetDist(nullptr, L"Distance: ", &distance), RTNORM);
  EXPECT_EQ(distance, 4.0);
  EXPECT_EQ(acedGetPoint(nullptr, L"From: ", point), RTNORM);
  EXPECT_EQ(AcGePoint3d(point[0], point[1], point[2]), AcGePoint3d(1.0, -2.0, 0.0));
  EXPECT_EQ(acedGetPoint(point, L"To: ", point), RTNORM);
  EXPECT_EQ(point[2], 3.0);
  EXPECT_EQ(failure(), L"");
  EXPECT_EQ(editor.commandInput().unused(), Words());
}

TEST_F(CommandInputTest, APromptWithoutAWordIsCancelledAndNamed) {
  answer({L"1"});
  double value = 5.0;
  EXPECT_EQ(acedGetReal(L"Width: ", &value), RTNORM);
  EXPECT_EQ(acedGetReal(L"\nHeight: ", &value), RTCAN);
  EXPECT_EQ(acedGetReal(L"\nDepth: ", &value), RTCAN);
  EXPECT_EQ(value, 1.0);
  EXPECT_EQ(failure(), L"it asks \"Height:\", and no argument is left to answer that");
  EXPECT_TRUE(document.isQuiescent());
}

TEST_F(CommandInputTest, AWordThatDoesNotFitIsAnErrorAndNamed) {
  ads_point point = {7.0, 7.0, 7.0};
  int whole = 7;
  double real = 7.0;
  for (const wchar_t* const word : {L"x", L"1x", L"1.5.5", L" 1", L"nan", L"inf", L"1e999"}) {
    answer({word, word, word});
    EXPECT_EQ(acedGetInt(L"?", &whole), RTERROR) << word;
    EXPECT_EQ(acedGetReal(L"?", &real), RTERROR) << word;
    EXPECT_EQ(acedGetPoint(nullptr, L"?", point), RTERROR) << word;
  }
  for (const wchar_t* const word : {L"1", L"1,2,3,4", L"1,", L",1", L"1,,2"}) {
    answer({word});
    EXPECT_EQ(acedGetPoint(nullptr, L"Where?", point), RTERROR) << word;
  }
  EXPECT_EQ(failure(), L"it asks \"Where?\", and '1,,2' is not a point, X,Y or X,Y,Z");
  EXPECT_EQ(whole + real + point[0] + point[1] + point[2], 35.0);
}

TEST_F(CommandInputTest, TextsHaveRoomFor132Letters) {
  ACHAR text[kMaxStringInput + 1] = L"";
  answer({std::wstring(kMaxStringInput, L'w'), std::wstring(kMaxStringInput + 1, L'w'), L""});
  EXPECT_EQ(acedGetString(1, nullptr, text), RTNORM);
  EXPECT_EQ(std::wstring(text).size(), kMaxStringInput);
  EXPECT_EQ(acedGetString(1, nullptr, text), RTERROR);
  EXPECT_EQ(acedGetString(1, nullptr, text), RTNORM);
  EXPECT_STREQ(text, L"");
}

TEST_F(CommandInputTest, AnEmptyWordIsABareEnter) {
  answer({L""});
  double value = 5.0;
  EXPECT_EQ(acedGetReal(L"Width <5>: ", &value), RTNONE);
  EXPECT_EQ(value, 5.0);
  EXPECT_EQ(failure(), L"");
}

TEST_F(CommandInputTest, ReactorsOfTheDocumentHearOfPromptsAndMayChangeValues) {
  Watcher watcher;
  ASSERT_EQ(document.inputPointManager()->addInputContextReactor(&watcher), Acad::eOk);
  answer({L"4"});
  const ads_point base = {1.0, 2.0, 3.0};
  double distance = 0.0;
  EXPECT_EQ(acedGetDist(base, L"How far?", &distance), RTNORM);
  EXPECT_EQ(distance, 5.0);
  EXPECT_EQ(watcher.base, AcGePoint3d(1.0, 2.0, 3.0));
  EXPECT_EQ(watcher.text, L"How far?");
  EXPECT_EQ(acedGetDist(base, L"How far?", &distance), RTCAN);
  EXPECT_EQ(watcher.last, Acad::eCancel);
  EXPECT_EQ(distance, 5.0);
  document.inputPointManager()->removeInputContextReactor(&watcher);
}

TEST_F(CommandInputTest, ACommandCanTakeAllWordsAtOnce) {
  answer({L"a", L"b"});
  EXPECT_EQ(editor.commandInput().unused(), (Words{L"a", L"b"}));
  EXPECT_EQ(hostx::commandArguments(), (Words{L"a", L"b"}));
  EXPECT_EQ(editor.commandInput().unused(), Words());
}

TEST(CommandInput, WithoutAnEditorOrADocumentNobodyIsAsked) {
  double value = 5.0;
  EXPECT_EQ(acedGetReal(L"?", &value), RTERROR);
  EXPECT_EQ(hostx::commandArguments(), Words());
  Editor editor;
  editor.commandInput().begin({L"1"});
  EXPECT_EQ(acedGetReal(L"?", &value), RTERROR);
  EXPECT_EQ(acedGetReal(L"?", nullptr), RTERROR);
  EXPECT_EQ(value, 5.0);
}

}  // namespace
