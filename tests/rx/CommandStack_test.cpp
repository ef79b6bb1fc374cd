#include "embedded/rx/CommandStack.h"

#include <gtest/gtest.h>

namespace {

void drawWall() {}
void drawLine() {}

class CommandStackTest : public testing::Test {
 protected:
  Acad::ErrorStatus add(const ACHAR* group, const ACHAR* global, const ACHAR* local,
                        AcRxFunctionPtr function = drawWall) {
    return stack.addCommand(group, global, local, ACRX_CMD_MODAL, function);
  }

  quoin::rx::CommandStack stack;
};

TEST_F(CommandStackTest, ACommandIsFoundByBothNamesInAnyLetterCase) {
  ASSERT_EQ(add(L"WALLS", L"DRAWWALL", L"MAUER"), Acad::eOk);
  AcEdCommand* const command = stack.lookupCmd(L"drawwall");
  ASSERT_NE(command, nullptr);
  EXPECT_EQ(stack.lookupCmd(L"Mauer"), command);
  EXPECT_EQ(stack.lookupCmd(L"walls", L"DRAWWALL"), command);
  EXPECT_STREQ(command->globalName(), L"DRAWWALL");
  EXPECT_STREQ(command->localName(), L"MAUER");
  EXPECT_EQ(command->functionAddr(), &drawWall);
  EXPECT_EQ(command->commandFlags(), ACRX_CMD_MODAL);
  EXPECT_EQ(stack.lookupCmd(L"other"), nullptr);
  EXPECT_EQ(stack.lookupCmd(L"LINES", L"DRAWWALL"), nullptr);
  EXPECT_EQ(stack.lookupCmd(nullptr), nullptr);
}

TEST_F(CommandStackTest, AGroupHasEachNameOnce) {
  ASSERT_EQ(add(L"WALLS", L"DRAWWALL", L"MAUER"), Acad::eOk);
  EXPECT_EQ(add(L"Walls", L"DrawWall", L"NEU"), Acad::eDuplicateKey);
  EXPECT_EQ(add(L"WALLS", L"NEW", L"mauer"), Acad::eDuplicateKey);
  EXPECT_EQ(add(L"LINES", L"DRAWWALL", nullptr, drawLine), Acad::eOk);
  EXPECT_EQ(stack.lookupCmd(L"DRAWWALL")->functionAddr(), &drawWall) << "the older group wins";
  EXPECT_EQ(stack.groupNames(), (std::vector<std::wstring>{L"WALLS", L"LINES"}));
  EXPECT_EQ(stack.commandNames(), (std::vector<std::wstring>{L"DRAWWALL", L"DRAWWALL"}));
}

TEST_F(CommandStackTest, NamesAndFunctionMustBeThere) {
  EXPECT_EQ(add(nullptr, L"A", nullptr), Acad::eInvalidInput);
  EXPECT_EQ(add(L"", L"A", nullptr), Acad::eInvalidInput);
  EXPECT_EQ(add(L"G", L"", nullptr), Acad::eInvalidInput);
  EXPECT_EQ(add(L"G", L"A", nullptr, nullptr), Acad::eInvalidInput);
  EXPECT_TRUE(stack.groupNames().empty());
}

TEST_F(CommandStackTest, RemovingTheLastCommandRemovesTheGroup) {
  ASSERT_EQ(add(L"WALLS", L"A", nullptr), Acad::eOk);
  ASSERT_EQ(add(L"WALLS", L"B", L"LOCALB"), Acad::eOk);
  EXPECT_EQ(stack.removeCmd(L"walls", L"a"), Acad::eOk);
  EXPECT_EQ(stack.removeCmd(L"WALLS", L"A"), Acad::eKeyNotFound);
  EXPECT_EQ(stack.removeCmd(L"WALLS", L"LOCALB"), Acad::eKeyNotFound) << "by global name only";
  EXPECT_EQ(stack.removeCmd(L"WALLS", L"B"), Acad::eOk);
  EXPECT_TRUE(stack.groupNames().empty());
  EXPECT_EQ(stack.removeCmd(L"WALLS", L"B"), Acad::eKeyNotFound);
}

TEST_F(CommandStackTest, AGroupGoesWithAllItsCommands) {
  ASSERT_EQ(add(L"WALLS", L"A", nullptr), Acad::eOk);
  ASSERT_EQ(add(L"WALLS", L"B", nullptr), Acad::eOk);
  EXPECT_EQ(stack.removeGroup(L"Walls"), Acad::eOk);
  EXPECT_EQ(stack.removeGroup(L"Walls"), Acad::eKeyNotFound);
  EXPECT_EQ(stack.lookupCmd(L"A"), nullptr);
}

TEST_F(CommandStackTest, CommandsOfAnOwnerGoWithIt) {
  const int owner = 0;
  ASSERT_EQ(add(L"WALLS", L"HOSTS", nullptr), Acad::eOk);
  stack.setOwner(&owner);
  ASSERT_EQ(add(L"WALLS", L"OWNED", nullptr), Acad::eOk);
  ASSERT_EQ(add(L"OTHER", L"OWNED", nullptr), Acad::eOk);
  stack.setOwner(nullptr);
  stack.removeCommandsOf(&owner);
  EXPECT_EQ(stack.lookupCmd(L"OWNED"), nullptr);
  EXPECT_NE(stack.lookupCmd(L"HOSTS"), nullptr);
  EXPECT_EQ(stack.groupNames(), (std::vector<std::wstring>{L"WALLS"}));
}

}  // namespace
