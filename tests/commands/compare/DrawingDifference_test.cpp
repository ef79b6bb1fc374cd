#include "commands/compare/DrawingDifference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

using quoin::commands::ChangeCounts;
using quoin::commands::differenceOf;
using quoin::commands::Drawing;
using quoin::commands::DrawingDifference;

/// Drawings as lists of records, each codes and values separated by blanks.
class DrawingDifferenceTest : public testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(m_folder); }
  void TearDown() override { std::filesystem::remove_all(m_folder); }

  std::string save(const std::string& name, const std::vector<std::string>& records) const {
    const std::filesystem::path file = m_folder / name;
    std::ofstream out(file);
    out << "0\nSECTION\n2\nENTITIES\n";
    for (std::string record : records) {
      std::replace(record.begin(), record.end(), ' ', '\n');
      out << record << '\n';
    }
    out << "0\nENDSEC\n0\nEOF\n";
    return file.string();
  }

  static DrawingDifference compare(const std::string& before, const std::string& after) {
    Drawing old(before);
    Drawing now(after);
    return differenceOf(old, now, {});
  }

  const std::filesystem::path m_folder =
      std::filesystem::temp_directory_path() /
      ("quoin-difference-" + std::to_string(std::random_device()()));
};

std::string record(std::mt19937_64& random, int handle) {
  const auto number = [&](int below) {
    return std::to_string(random() % static_cast<unsigned>(below));
  };
  static const char* const kKinds[] = {"LINE", "CIRCLE", "TEXT"};
  const std::string kind = kKinds[random() % 3];
  std::string text = "0 " + kind + " 5 " + std::to_string(handle) + " 8 L" + number(3) + " 10 " +
                     number(8) + ".5 20 " + number(8) + ".25";
  if (kind == "LINE") {
    text += " 11 " + number(8) + ".5 21 " + number(8) + ".25";
  } else {
    text += " 40 " + std::to_string(1 + random() % 3);
  }
  return kind == "TEXT" ? text + " 1 T" + number(3) : text;
}

std::string sums(const ChangeCounts& counts) {
  return std::to_string(counts.added) + " " + std::to_string(counts.removed) + " " +
         std::to_string(counts.moved) + " " + std::to_string(counts.changed) + " " +
         std::to_string(counts.same);
}

TEST_F(DrawingDifferenceTest, ADrawingIsTheSameAsItselfInAnyOrder) {
  std::mt19937_64 random(11);
  for (int round = 0; round < 20; ++round) {
    std::vector<std::string> records;
    for (int i = 0; i < 60; ++i) {
      records.push_back(record(random, i + 10));
    }
    const std::string plan = save("a.dxf", records);
    std::shuffle(records.begin(), records.end(), random);
    const std::string shuffled = save("b.dxf", records);
    for (std::string& one : records) {
      one.replace(one.find(" 5 ") + 3, 0, "9");  // other handles
    }
    const std::string renumbered = save("c.dxf", records);
    for (const std::string& other : {plan, shuffled, renumbered}) {
      const DrawingDifference difference = compare(plan, other);
      EXPECT_TRUE(difference.isSame());
      EXPECT_EQ(sums(difference.counts()), "0 0 0 0 60");
    }
  }
}

TEST_F(DrawingDifferenceTest, TheOtherWayRoundIsTheMirrorImage) {
  std::mt19937_64 random(12);
  for (int round = 0; round < 60; ++round) {
    std::vector<std::string> olds;
    std::vector<std::string> news;
    for (int i = 0; i < 40; ++i) {
      const std::string one = record(random, i + 10);
      const auto fate = random() % 6;
      if (fate != 0) {
        olds.push_back(one);
      }
      if (fate == 1) {
        news.push_back(record(random, i + 10));
      } else if (fate == 2) {
        news.push_back(record(random, i + 1010));
      } else if (fate != 3) {
        news.push_back(one);
      }
    }
    const std::string before = save("a.dxf", olds);
    const std::string after = save("b.dxf", news);
    const ChangeCounts there = compare(before, after).counts();
    ChangeCounts back = compare(after, before).counts();
    std::swap(back.added, back.removed);
    EXPECT_EQ(sums(there), sums(back));
    EXPECT_EQ(there.removed + there.moved + there.changed + there.same, olds.size());
    EXPECT_EQ(there.added + there.moved + there.changed + there.same, news.size());
    std::shuffle(news.begin(), news.end(), random);
    EXPECT_EQ(sums(there), sums(compare(before, save("c.dxf", news)).counts()));
  }
}

TEST_F(DrawingDifferenceTest, FewDecimalsAreComparedToTheirDigits) {
  const std::string whole =
      save("a.dxf", {"0 LINE 5 A 8 0 10 0.1234567890123 20 0 11 1.4142135623731 21 1"});
  const std::string rounded = save("b.dxf", {"0 LINE 5 A 8 0 10 0.123457 20 0.0 11 1.414214 21 1"});
  const std::string other = save("c.dxf", {"0 LINE 5 A 8 0 10 0.123457 20 0.0 11 1.414216 21 1"});
  EXPECT_TRUE(compare(whole, rounded).isSame());
  EXPECT_TRUE(compare(rounded, whole).isSame());
  EXPECT_EQ(sums(compare(rounded, other).counts()), "0 0 0 1 0");
}

}  // namespace
