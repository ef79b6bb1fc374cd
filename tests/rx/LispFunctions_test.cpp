#include "embedded/rx/LispFunctions.h"

#include <gtest/gtest.h>

#include "acedads.h"
#include "embedded/rx/Runtime.h"

namespace {

int s_calls = 0;
int s_codeInCall = 0;

class LispFunctionsTest : public testing::Test {
 protected:
  LispFunctionsTest() { s_calls = 0; }

  quoin::rx::Runtime runtime;
  quoin::rx::LispFunctions& functions = runtime.lispFunctions();
  const int moduleA = 0;
  const int moduleB = 0;
};

TEST_F(LispFunctionsTest, OnlyAModuleThatIsBeingServedDefinesFunctions) {
  EXPECT_EQ(acedDefun(L"c:wall", 1), RTERROR);
  functions.setServed(&moduleA);
  EXPECT_EQ(acedDefun(L"c:wall", 1), RTNORM);
  EXPECT_EQ(acedDefun(L"", 1), RTERROR);
  EXPECT_EQ(acedDefun(nullptr, 1), RTERROR);
  EXPECT_EQ(acedDefun(L"c:other", -1), RTERROR);
  EXPECT_TRUE(functions.isDefined(L"C:Wall"));
}

TEST_F(LispFunctionsTest, ANameBelongsToTheModuleThatDefinedIt) {
  functions.setServed(&moduleA);
  ASSERT_EQ(acedDefun(L"c:wall", 1), RTNORM);
  functions.setServed(&moduleB);
  EXPECT_EQ(acedDefun(L"C:WALL", 1), RTERROR);
  EXPECT_EQ(acedUndef(L"C:WALL", 1), RTERROR);
  functions.setServed(&moduleA);
  EXPECT_EQ(acedUndef(L"C:WALL", 2), RTERROR) << "another code";
  EXPECT_EQ(acedUndef(L"C:WALL", 1), RTNORM);
  EXPECT_EQ(acedUndef(L"C:WALL", 1), RTERROR);
}

TEST_F(LispFunctionsTest, ARegisteredFunctionIsCalledWithItsCodeInReach) {
  functions.setServed(&moduleA);
  ASSERT_EQ(acedDefun(L"c:wall", 7), RTNORM);
  ASSERT_EQ(acedRegFunc(
                [] {
                  ++s_calls;
                  s_codeInCall = acedGetFunCode();
                  return RTNORM;
                },
                7),
            RTNORM);
  functions.setServed(nullptr);
  EXPECT_EQ(acedGetFunCode(), RTERROR) << "nobody is being called";
  EXPECT_TRUE(functions.call(L"C:WALL"));
  EXPECT_EQ(s_calls, 1);
  EXPECT_EQ(s_codeInCall, 7);
  EXPECT_EQ(acedGetFunCode(), RTERROR);
  EXPECT_FALSE(functions.call(L"c:unknown"));
}

TEST_F(LispFunctionsTest, WithoutARegisteredFunctionTheModuleIsInvoked) {
  const void* invoked = nullptr;
  quoin::rx::LispFunctions table([&](const void* module) { invoked = module; });
  table.setServed(&moduleA);
  ASSERT_TRUE(table.define(L"c:wall", 0));
  EXPECT_TRUE(table.call(L"c:wall"));
  EXPECT_EQ(invoked, &moduleA);
}

TEST_F(LispFunctionsTest, AFunctionPointerNeedsAModuleAndACode) {
  EXPECT_EQ(acedRegFunc([] { return 0; }, 1), RTERROR);
  functions.setServed(&moduleA);
  EXPECT_EQ(acedRegFunc(nullptr, 1), RTERROR);
  EXPECT_EQ(acedRegFunc([] { return 0; }, -1), RTERROR);
}

TEST(LispFunctionsWithoutHost, EveryCallIsAnError) {
  EXPECT_EQ(acedDefun(L"c:wall", 1), RTERROR);
  EXPECT_EQ(acedUndef(L"c:wall", 1), RTERROR);
  EXPECT_EQ(acedRegFunc([] { return 0; }, 1), RTERROR);
  EXPECT_EQ(acedGetFunCode(), RTERROR);
}

}  // namespace
