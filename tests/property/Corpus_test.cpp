// Every case of the corpus, by the module and by the direct forms.
#include <gtest/gtest.h>

#include <cctype>
#include <fstream>
#include <map>
#include <set>

#include "support/CorpusRun.h"
#include "support/RunningHost.h"

namespace {

using quoin::test::CorpusCase;
using quoin::test::corpusFolder;
using quoin::test::joined;
using quoin::test::readCorpus;
using quoin::test::Runner;
using quoin::test::RunningHost;

std::string resultOf(RunningHost& host, const CorpusCase& entry, Runner runner) {
  host.setScale(entry.scale);
  return joined(quoin::test::runCorpusCase(entry, runner));
}

std::string headOf(const CorpusCase& entry) {
  return entry.place + ": " + entry.name + "\n(" + entry.why + ")";
}

/// A case is a test: `ctest -R Corpus.*AGapOf10` runs one.
class CorpusCases : public testing::TestWithParam<CorpusCase> {};

TEST_P(CorpusCases, GivesWhatItExpects) {
  RunningHost host;
  const CorpusCase& entry = GetParam();
  EXPECT_EQ(resultOf(host, entry, Runner::Module), joined(entry.expected)) << headOf(entry);
  EXPECT_EQ(resultOf(host, entry, Runner::Oracle), joined(entry.expected))
      << headOf(entry) << "\nby the direct form";
}

/// "break: a gap of -9.999" as "BreakAGapOfMinus9_999".
std::string testNameOf(const testing::TestParamInfo<CorpusCase>& info) {
  std::string name;
  bool beginsWord = true;
  const std::string& words = info.param.name;
  for (std::size_t i = 0; i < words.size(); ++i) {
    const auto letter = static_cast<unsigned char>(words[i]);
    const bool isBeforeDigit =
        i + 1 < words.size() && std::isdigit(static_cast<unsigned char>(words[i + 1])) != 0;
    if (std::isalnum(letter) != 0) {
      name += beginsWord ? static_cast<char>(std::toupper(letter)) : words[i];
    } else if (letter == '-' && isBeforeDigit) {
      name += "Minus";
    } else if (isBeforeDigit && !beginsWord) {
      name += '_';
    }
    beginsWord = std::isalnum(letter) == 0;
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(Corpus, CorpusCases, testing::ValuesIn(readCorpus()), testNameOf);

TEST(Corpus, AKnownFailureThatPassesMustMoveToTheIssues) {
  RunningHost host;
  for (const CorpusCase& entry : quoin::test::readCorpusFolder(corpusFolder() / "failure")) {
    EXPECT_NE(resultOf(host, entry, Runner::Module), joined(entry.expected)) << headOf(entry);
  }
}

TEST(Corpus, EveryAlgorithmHasCasesAndEveryNameIsThereOnce) {
  std::map<std::string, int> casesOf;
  std::set<std::string> names;
  for (const CorpusCase& entry : readCorpus()) {
    ++casesOf[entry.algorithm];
    EXPECT_TRUE(names.insert(entry.name).second) << headOf(entry);
  }
  for (const char* algorithm : {"break", "draw", "axes", "gouges", "walls", "show", "show3d"}) {
    EXPECT_GE(casesOf[algorithm], 10) << algorithm;
  }
}

class CorpusFiles : public testing::Test {
 protected:
  CorpusFiles()
      : m_root(std::filesystem::path(testing::TempDir()) /
               (std::string("quoin-corpus-") +
                testing::UnitTest::GetInstance()->current_test_info()->name())) {
    for (const char* folder : {"general", "degenerate", "issue"}) {
      std::filesystem::create_directories(m_root / folder);
    }
  }
  ~CorpusFiles() override { std::filesystem::remove_all(m_root); }
  void write(const char* content) { std::ofstream(m_root / "general" / "cases.txt") << content; }

  std::filesystem::path m_root;
};

TEST_F(CorpusFiles, AnEmptyCorpusIsRefused) {
  EXPECT_THROW(readCorpus(m_root), std::runtime_error);
  write("# nothing but a comment\n");
  EXPECT_THROW(readCorpus(m_root), std::runtime_error);
}

TEST_F(CorpusFiles, ACaseWithoutReasonOrExpectationIsRefused) {
  write("case a\ndo break\nline 0,0 1,0\n=>\n");
  EXPECT_THROW(readCorpus(m_root), std::runtime_error);
  write("case a\nwhy b\ndo break\nline 0,0 1,0\n");
  EXPECT_THROW(readCorpus(m_root), std::runtime_error);
}

TEST_F(CorpusFiles, UnknownAlgorithmsAndKeysAreRefused) {
  write("case a\nwhy b\ndo dig\nline 0,0 1,0\n=>\n\ncase c\nwhy d\ndo break\nlime 0,0 1,0\n=>\n");
  for (const CorpusCase& entry : readCorpus(m_root)) {
    EXPECT_THROW(quoin::test::runCorpusCase(entry, Runner::Oracle), std::runtime_error);
  }
}

TEST_F(CorpusFiles, CasesAreReadWithTheirPlaceAndOrder) {
  write(
      "case one\nwhy w\ndo break\nscale 0.5\nline 0,0 1,0\n=>\npiece 0: 0,0 1,0\n\n\n"
      "case two\nwhy w\ndo axes\nnull\n=>\n");
  const auto cases = readCorpus(m_root);
  ASSERT_EQ(cases.size(), 2u);
  EXPECT_EQ(cases[0].scale, 0.5);
  EXPECT_EQ(cases[0].expected, (std::vector<std::string>{"piece 0: 0,0 1,0"}));
  EXPECT_EQ(cases[1].place, "cases.txt:10");
  EXPECT_EQ(cases[1].input.front().first, "null");
}

}  // namespace
