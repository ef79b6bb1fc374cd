// Work side by side in processes of its own.
#include "embedded/os/Process.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <stdexcept>

namespace quoin::os {
namespace {

constexpr auto kNobodyListens = [](std::size_t) {};

TEST(SideBySide, AnswersByNumberHoweverManyRunAtATime) {
  for (const std::size_t jobs : {std::size_t{0}, std::size_t{1}, std::size_t{3}, std::size_t{50}}) {
    std::size_t heard = 0;
    const std::vector<SideResult> results = runSideBySide(
        20, jobs, [](std::size_t number) { return std::to_string(number * number); },
        [&](std::size_t done) { EXPECT_EQ(done, ++heard); });
    ASSERT_EQ(results.size(), 20u);
    EXPECT_EQ(heard, 20u);
    for (std::size_t i = 0; i < results.size(); ++i) {
      EXPECT_TRUE(results[i].isDone);
      EXPECT_EQ(results[i].text, std::to_string(i * i));
    }
  }
}

TEST(SideBySide, ALongAnswerComesWhole) {
  const std::vector<SideResult> results = runSideBySide(
      2, 2, [](std::size_t number) { return std::string(1'000'000 + number, 'x'); },
      kNobodyListens);
  EXPECT_EQ(results[0].text.size(), 1'000'000u);
  EXPECT_EQ(results[1].text.size(), 1'000'001u);
}

TEST(SideBySide, WhatDiesTakesNothingWithIt) {
  const std::vector<SideResult> results = runSideBySide(
      3, 2,
      [](std::size_t number) -> std::string {
        if (number == 0) {
          raise(SIGKILL);
        }
        if (number == 1) {
          throw std::runtime_error("no room");
        }
        return "fine";
      },
      kNobodyListens);
  EXPECT_FALSE(results[0].isDone);
  EXPECT_NE(results[0].text.find("Killed"), std::string::npos) << results[0].text;
  EXPECT_FALSE(results[1].isDone);
  EXPECT_EQ(results[1].text, "no room");
  EXPECT_TRUE(results[2].isDone);
  EXPECT_EQ(results[2].text, "fine");
}

TEST(SideBySide, TheWorkChangesNothingHere) {
  int value = 1;
  runSideBySide(
      1, 1, [&](std::size_t) { return std::to_string(value = 2); }, kNobodyListens);
  EXPECT_EQ(value, 1);
}

TEST(SideBySide, AfterARequestToStopNothingMoreBegins) {
  const std::vector<SideResult> results = runSideBySide(
      5, 1, [](std::size_t) { return std::string("ran"); },
      [](std::size_t) { setInterrupted(true); });
  setInterrupted(false);
  EXPECT_EQ(results[0].text, "ran");
  for (std::size_t i = 1; i < results.size(); ++i) {
    EXPECT_FALSE(results[i].isDone);
  }
}

}  // namespace
}  // namespace quoin::os
