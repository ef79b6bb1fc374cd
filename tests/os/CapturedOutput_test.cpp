#include "embedded/os/CapturedOutput.h"

#include <gtest/gtest.h>

#include <iostream>

namespace {

TEST(CapturedOutput, KeepsApartWhatIsPrintedByEitherWayWhileItLives) {
  testing::internal::CaptureStdout();
  std::printf("before ");
  std::string kept;
  {
    quoin::os::CapturedOutput output;
    std::printf("one ");
    std::cout << "two";
    kept = output.finish();
    std::printf("after");
    EXPECT_EQ(output.finish(), "");
  }
  EXPECT_EQ(kept, "one two");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "before after");
}

TEST(CapturedOutput, WhatNobodyTakesDoesNotComeLater) {
  testing::internal::CaptureStdout();
  {
    const quoin::os::CapturedOutput output;
    std::printf("lost");
  }
  std::printf("after");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "after");
}

}  // namespace
