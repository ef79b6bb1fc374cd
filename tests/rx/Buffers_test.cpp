#include <gtest/gtest.h>

#include <cstdlib>

#include "acutmem.h"
#include "adscodes.h"

namespace {

TEST(Buffers, ATextIsCopiedAndFreed) {
  ACHAR* copy = nullptr;
  ASSERT_EQ(acutNewString(L"墙", copy), Acad::eOk);
  EXPECT_STREQ(copy, L"墙");
  ASSERT_EQ(acutUpdString(copy, copy), Acad::eOk) << "from itself";
  EXPECT_STREQ(copy, L"墙");
  ASSERT_EQ(acutUpdString(L"other", copy), Acad::eOk);
  EXPECT_STREQ(copy, L"other");
  acutDelString(copy);
  EXPECT_EQ(copy, nullptr);
  acutDelString(copy);
  EXPECT_EQ(acutNewString(nullptr, copy), Acad::eInvalidInput);
  EXPECT_EQ(copy, nullptr);
}

TEST(Buffers, UpdatingWithNothingFreesTheText) {
  ACHAR* copy = nullptr;
  ASSERT_EQ(acutNewString(L"a", copy), Acad::eOk);
  EXPECT_EQ(acutUpdString(nullptr, copy), Acad::eOk);
  EXPECT_EQ(copy, nullptr);
}

TEST(Buffers, ABufferIsMadeAndFreed) {
  double* numbers = nullptr;
  ASSERT_EQ(acutNewBuffer(numbers, 4 * sizeof(double)), Acad::eOk);
  numbers[3] = 1.0;
  acutDelBuffer(numbers);
  EXPECT_EQ(numbers, nullptr);
  EXPECT_EQ(acutNewBuffer(numbers, 0), Acad::eOutOfMemory);
}

TEST(Buffers, AListOfResultBuffersGoesWithItsTexts) {
  resbuf* const first = acutNewRb(RTSTR);
  first->rbnext = acutNewRb(RTREAL);
  first->rbnext->rbnext = acutNewRb(1004);
  first->rbnext->rbnext->rbnext = acutNewRb(1000);
  EXPECT_EQ(first->restype, RTSTR);
  EXPECT_EQ(first->rbnext->resval.rreal, 0.0);
  acutNewString(L"text", first->resval.rstring);
  acutNewString(L"xdata", first->rbnext->rbnext->rbnext->resval.rstring);
  first->rbnext->rbnext->resval.rbinary.buf = static_cast<char*>(std::malloc(3));
  EXPECT_EQ(acutRelRb(first), RTNORM);  // a leak would be found by the sanitizers
  EXPECT_EQ(acutRelRb(nullptr), RTERROR);
}

}  // namespace
