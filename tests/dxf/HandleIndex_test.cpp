// The table of handles against a map of the standard library, for handles that count up, that
// come in runs whose places are the same, and that differ in a few high digits only.
#include "embedded/dxf/HandleIndex.h"

#include <gtest/gtest.h>

#include <random>
#include <unordered_map>

#include "embedded/dxf/RecordStore.h"

namespace {

using quoin::dxf::HandleIndex;

class HandleIndexTest : public testing::Test {
 protected:
  void add(std::uint64_t handle) {
    const auto number = static_cast<std::uint32_t>(stubs.size());
    stubs.emplace_back().handle = handle;
    const auto [known, isNew] = expected.emplace(handle, number);
    ASSERT_EQ(index.insert(number), known->second) << std::hex << handle;
  }
  void expectAllFound() {
    for (const auto& [handle, number] : expected) {
      ASSERT_EQ(index.find(handle), number) << std::hex << handle;
      if (!expected.contains(handle ^ kFarBit)) {
        ASSERT_EQ(index.find(handle ^ kFarBit), HandleIndex::kNone) << std::hex << handle;
      }
    }
  }

  static constexpr std::uint64_t kFarBit = 1ULL << 40;
  std::deque<AcDbStub> stubs;
  HandleIndex index{stubs};
  std::unordered_map<std::uint64_t, std::uint32_t> expected;
};

TEST_F(HandleIndexTest, AnEmptyOneFindsNothing) {
  EXPECT_EQ(index.find(0), HandleIndex::kNone);
  EXPECT_EQ(index.find(1), HandleIndex::kNone);
  add(1);
  EXPECT_EQ(index.find(0), HandleIndex::kNone);
  EXPECT_EQ(index.find(1), 0U);
  index.clear();
  EXPECT_EQ(index.find(1), HandleIndex::kNone);
}

TEST_F(HandleIndexTest, AHandleThatComesTwiceKeepsItsFirstStub) {
  add(0x2F);
  add(0x30);
  add(0x2F);
  EXPECT_EQ(index.find(0x2F), 0U);
}

TEST_F(HandleIndexTest, HandlesThatCountUp) {
  for (std::uint64_t handle = 1; handle < 100000; ++handle) {
    add(handle);
  }
  expectAllFound();
}

TEST_F(HandleIndexTest, RunsWhosePlacesAreTheSame) {
  // Were the next free place behind a run looked for step by step, this would not end.
  for (std::uint64_t run = 0; run < 8; ++run) {
    for (std::uint64_t i = 1; i < 60000; ++i) {
      add((run << 32) + i);
    }
  }
  expectAllFound();
}

TEST_F(HandleIndexTest, HandlesThatDifferInHighDigitsOnly) {
  for (std::uint64_t i = 1; i < 60000; ++i) {
    add(i << 36);
  }
  expectAllFound();
}

TEST_F(HandleIndexTest, RandomHandles) {
  std::mt19937_64 random(95);
  for (int i = 0; i < 50000; ++i) {
    add(1 + random() % (1ULL << (8 + i % 56)));
  }
  expectAllFound();
}

}  // namespace
