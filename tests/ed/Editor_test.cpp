#include "embedded/ed/Editor.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using quoin::ed::Editor;
using quoin::ed::Prompt;
using quoin::ed::UserSystem;
using quoin::ed::View;

TEST(Editor, TheDocumentOpenedLastIsCurrent) {
  Editor editor;
  EXPECT_EQ(acDocManager->curDocument(), nullptr);
  AcApDocument& first = editor.openDocument(L"C:\\plans\\ground.dwg");
  EXPECT_EQ(acDocManager->curDocument(), &first);
  AcApDocument& second = editor.openDocument(L"/plans/upper.dwg");
  EXPECT_EQ(curDoc(), &second);
  EXPECT_EQ(acDocManager->mdiActiveDocument(), &second);
  EXPECT_EQ(acDocManager->documentCount(), 2);
  EXPECT_STREQ(first.fileName(), L"C:\\plans\\ground.dwg");
  EXPECT_STREQ(first.docTitle(), L"ground.dwg");
  EXPECT_STREQ(second.docTitle(), L"upper.dwg");
  EXPECT_EQ(first.database(), nullptr);
}

TEST(Editor, DocumentsAreWalkedInTheOrderOfOpening) {
  Editor editor;
  AcApDocument& first = editor.openDocument(L"a");
  AcApDocument& second = editor.openDocument(L"b");
  const std::unique_ptr<AcApDocumentIterator> walk(acDocManager->newAcApDocumentIterator());
  EXPECT_FALSE(walk->done());
  EXPECT_EQ(walk->document(), &first);
  walk->step();
  EXPECT_EQ(walk->document(), &second);
  walk->step();
  EXPECT_TRUE(walk->done());
  EXPECT_EQ(walk->document(), nullptr);
}

TEST(Editor, OnlyAnOpenDocumentBecomesCurrent) {
  Editor editor;
  AcApDocument& first = editor.openDocument(L"a");
  AcApDocument& second = editor.openDocument(L"b");
  EXPECT_EQ(acDocManager->setCurDocument(&first), Acad::eOk);
  EXPECT_EQ(curDoc(), &first);
  editor.closeDocument(second);
  EXPECT_EQ(acDocManager->setCurDocument(&second), Acad::eInvalidInput);
  EXPECT_EQ(acDocManager->setCurDocument(nullptr), Acad::eInvalidInput);
  EXPECT_EQ(curDoc(), &first);
  EXPECT_TRUE(editor.setCurrentDocument(nullptr)) << "the host itself may have none";
  EXPECT_EQ(curDoc(), nullptr);
}

TEST(Editor, ClosingTheCurrentDocumentMakesTheLastOpenedCurrent) {
  Editor editor;
  AcApDocument& first = editor.openDocument(L"a");
  AcApDocument& second = editor.openDocument(L"b");
  AcApDocument& third = editor.openDocument(L"c");
  editor.closeDocument(third);
  EXPECT_EQ(curDoc(), &second);
  editor.closeDocument(first);
  EXPECT_EQ(curDoc(), &second) << "another document than the closed one stays current";
  editor.closeDocument(second);
  EXPECT_EQ(curDoc(), nullptr);
  EXPECT_EQ(acDocManager->documentCount(), 0);
  editor.closeDocument(second);  // closing twice does nothing
}

TEST(Editor, AClosedDocumentsObjectStillAnswers) {
  Editor editor;
  AcApDocument& document = editor.openDocument(L"a.dwg");
  AcEdInputContextReactor reactor;
  ASSERT_EQ(document.inputPointManager()->addInputContextReactor(&reactor), Acad::eOk);
  editor.prompts(document).begin(Prompt::Point);
  EXPECT_FALSE(document.isQuiescent());
  editor.closeDocument(document);
  EXPECT_TRUE(document.isQuiescent());
  EXPECT_STREQ(document.docTitle(), L"a.dwg");
  EXPECT_EQ(document.database(), nullptr);
  EXPECT_EQ(document.inputPointManager()->removeInputContextReactor(&reactor), Acad::eKeyNotFound);
  EXPECT_EQ(document.inputPointManager()->addInputContextReactor(&reactor), Acad::eInvalidContext);
}

TEST(Editor, TellsOfOpeningAndClosingWhileTheDocumentIsCurrent) {
  std::vector<std::wstring> told;
  Editor editor;
  editor.setHooks({.onOpened =
                       [&](AcApDocument& document) {
                         EXPECT_EQ(curDoc(), &document);
                         told.push_back(std::wstring(L"+") + document.docTitle());
                       },
                   .onClosing =
                       [&](AcApDocument& document) {
                         EXPECT_EQ(curDoc(), &document);
                         told.push_back(std::wstring(L"-") + document.docTitle());
                       }});
  AcApDocument& first = editor.openDocument(L"a");
  editor.openDocument(L"b");
  editor.closeDocument(first);
  EXPECT_EQ(told, (std::vector<std::wstring>{L"+a", L"+b", L"-a"}));
}

TEST(Editor, ThereIsOneAtATime) {
  for (int round = 0; round < 2; ++round) {
    const Editor editor;
    EXPECT_EQ(Editor::current(), &editor);
    EXPECT_THROW(Editor(), std::logic_error);
  }
  EXPECT_EQ(Editor::current(), nullptr);
}

TEST(Editor, WithoutAHostThereAreNoDocuments) {
  EXPECT_NE(acDocManager, nullptr);
  EXPECT_EQ(acDocManager->curDocument(), nullptr);
  EXPECT_EQ(acDocManager->documentCount(), 0);
  EXPECT_EQ(acDocManager->document(nullptr), nullptr);
  EXPECT_EQ(acDocManager->setCurDocument(nullptr), Acad::eInvalidInput);
  const std::unique_ptr<AcApDocumentIterator> walk(acDocManager->newAcApDocumentIterator());
  EXPECT_TRUE(walk->done());
}

TEST(Editor, RefusesViewsAndUserSystemsThatMakeNoSense) {
  Editor editor;
  AcApDocument& document = editor.openDocument(L"a");
  View view;
  view.height = 0.0;
  EXPECT_FALSE(editor.setView(document, view));
  view = View();
  view.direction.set(0.0, 0.0, 0.0);
  EXPECT_FALSE(editor.setView(document, view));
  view = View();
  view.heightPixels = 0.0;
  EXPECT_FALSE(editor.setView(document, view));
  view = View();
  view.height = 12.0;
  EXPECT_TRUE(editor.setView(document, view));
  EXPECT_EQ(editor.view(document).height, 12.0);

  UserSystem system;
  system.xAxis.set(1.0, 1.0, 0.0);
  EXPECT_FALSE(editor.setUserSystem(document, system));
  system = UserSystem();
  system.yAxis.set(1.0, 0.0, 0.0);
  EXPECT_FALSE(editor.setUserSystem(document, system));
  system = UserSystem();
  system.origin.set(1.0, 2.0, 3.0);
  EXPECT_TRUE(editor.setUserSystem(document, system));
  EXPECT_EQ(editor.userSystem(document).origin, AcGePoint3d(1.0, 2.0, 3.0));
}

}  // namespace
