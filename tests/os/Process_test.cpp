// Requests to stop, and work side by side in processes of its own.
#include "embedded/os/Process.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <new>
#include <stdexcept>
#include <thread>

#include "embedded/os/File.h"
#include "support/TemporaryFolder.h"

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

TEST(SideBySide, AnAnswerCutShortIsNone) {
  const std::vector<SideResult> results = runSideBySide(
      2, 1,
      [](std::size_t number) -> std::string {
        _exit(number == 0 ? 0 : 9);  // as what is called may do, before it has answered
      },
      kNobodyListens);
  EXPECT_FALSE(results[0].isDone);
  EXPECT_EQ(results[0].text, "the process ended without a whole answer");
  EXPECT_FALSE(results[1].isDone);
  EXPECT_EQ(results[1].text, "the process ended with exit code 9");
}

TEST(SideBySide, AParentThatIgnoresItsChildrenHearsTheirAnswers) {
  const auto before = signal(SIGCHLD, SIG_IGN);
  const std::vector<SideResult> results = runSideBySide(
      2, 2,
      [](std::size_t number) -> std::string {
        if (number == 0) {
          raise(SIGKILL);
        }
        return "fine";
      },
      kNobodyListens);
  signal(SIGCHLD, before);
  EXPECT_FALSE(results[0].isDone);
  EXPECT_TRUE(results[1].isDone);
  EXPECT_EQ(results[1].text, "fine");
}

TEST(SideBySide, WhatIsPrintedDoesNotBecomeTheAnswerWhereNoStandardStreamIsOpen) {
  std::fflush(nullptr);
  const int input = dup(STDIN_FILENO);
  const int output = dup(STDOUT_FILENO);
  close(STDIN_FILENO);
  close(STDOUT_FILENO);
  const std::vector<SideResult> results = runSideBySide(
      2, 2,
      [](std::size_t) -> std::string {
        std::printf("words for a terminal\n");
        std::fflush(stdout);
        return "fine";
      },
      kNobodyListens);
  dup2(input, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  close(input);
  close(output);
  for (const SideResult& result : results) {
    EXPECT_TRUE(result.isDone);
    EXPECT_EQ(result.text, "fine");
  }
}

TEST(SideBySide, MemoryThatRunsOutIsSaidInWords) {
  const std::vector<SideResult> results = runSideBySide(
      1, 1, [](std::size_t) -> std::string { throw std::bad_alloc(); }, kNobodyListens);
  EXPECT_FALSE(results[0].isDone);
  EXPECT_EQ(results[0].text, "there is not enough memory");
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

using ::testing::ExitedWithCode;
using ::testing::KilledBySignal;

/// A process of its own for each end, in which nothing was written before.
class StopRequest : public ::testing::Test {
 protected:
  StopRequest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
  ~StopRequest() override { GTEST_FLAG_SET(death_test_style, "fast"); }
};

TEST_F(StopRequest, EndsTheProcessAtOnceWhateverItDoes) {
  for (const int request : {SIGINT, SIGTERM}) {
    EXPECT_EXIT(
        {
          watchForInterrupt();
          raise(request);
          std::this_thread::sleep_for(std::chrono::seconds(5));
        },
        ExitedWithCode(130), "^quoin: interrupted; every file is as it was\n$");
  }
}

TEST_F(StopRequest, WaitsForTheLastDelay) {
  EXPECT_EXIT(
      {
        watchForInterrupt();
        {
          const StopDelay outer;
          {
            const StopDelay inner;
            raise(SIGINT);
            fputs("noted, ", isInterrupted() ? stderr : stdout);
          }
          fputs("inner over, ", stderr);
        }
        fputs("not reached", stderr);
      },
      ExitedWithCode(130), "^noted, inner over, quoin: interrupted; every file is as it was\n$");
}

TEST_F(StopRequest, ASecondOneOfTheSameKindWaitsForNothing) {
  EXPECT_EXIT(
      {
        watchForInterrupt();
        const StopDelay delay;
        raise(SIGINT);
        raise(SIGINT);
      },
      KilledBySignal(SIGINT), "^$");
}

TEST(StopRequestInAFork, AFileThatIsBeingWrittenDoesNotStayHalf) {
  const test::TemporaryFolder folder;
  EXPECT_EXIT(
      {
        watchForInterrupt();
        AtomicFile file((folder.path() / "plan.dxf").string());
        file.write("half");
        raise(SIGTERM);
        try {
          file.write(std::string(1 << 20, ' '));
        } catch (const FileFailure& failure) {
          fputs(failure.status == Acad::eUserBreak ? "stopped, " : "failed, ", stderr);
        }
      },
      ExitedWithCode(130), "^stopped, quoin: interrupted; ");
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST(StopRequestInAFork, SaysThatAFileWasWrittenBefore) {
  const test::TemporaryFolder folder;
  EXPECT_EXIT(
      {
        watchForInterrupt();
        AtomicFile((folder.path() / "plan.dxf").string()).commit();
        raise(SIGINT);
      },
      ExitedWithCode(130), "^quoin: interrupted; the files that were written before stay\n$");
}

TEST(StopRequestInAFork, SaysThatAWorkerWroteAFileBefore) {
  const test::TemporaryFolder folder;
  EXPECT_EXIT(
      {
        watchForInterrupt();
        runSideBySide(
            1, 1,
            [&](std::size_t) {
              AtomicFile file((folder.path() / "plan.dxf").string());
              file.commit();
              kill(getppid(), SIGINT);
              while (!isInterrupted()) {
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
              }
              return std::string();  // which nobody hears: the process ends with the file
            },
            kNobodyListens);
      },
      ExitedWithCode(130), "^quoin: interrupted; the files that were written before stay\n$");
}

TEST_F(StopRequest, EndsTheWorkersToo) {
  EXPECT_EXIT(
      {
        watchForInterrupt();
        const StopDelay untilTold;
        const auto begin = std::chrono::steady_clock::now();
        const std::vector<SideResult> results = runSideBySide(
            4, 2,
            [](std::size_t number) {
              if (number == 1) {
                kill(getppid(), SIGINT);  // only the process that they work for hears of it
              }
              std::this_thread::sleep_for(std::chrono::seconds(20));
              return std::string();
            },
            kNobodyListens);
        for (const SideResult& result : results) {
          fputs((result.text + ", ").c_str(), result.isDone ? stdout : stderr);
        }
        const bool isQuick = std::chrono::steady_clock::now() - begin < std::chrono::seconds(2);
        fputs(isQuick ? "quick, " : "slow, ", stderr);
      },
      ExitedWithCode(130),
      "^interrupted, interrupted, not begun: interrupted, not begun: interrupted, quick, quoin: "
      "interrupted; every file is as it was\n$");
}

}  // namespace
}  // namespace quoin::os
