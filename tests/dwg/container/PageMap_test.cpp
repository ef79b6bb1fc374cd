#include "embedded/dwg/container/PageMap.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

#include "embedded/dwg/container/Bytes.h"
#include "support/SharedData.h"

namespace quoin::dwg::container {
namespace {

struct Gap {
  std::uint64_t size;
  std::int32_t parent, left, right;
};

std::map<std::int32_t, Gap> gapsIn(const std::string& contents) {
  std::map<std::int32_t, Gap> gaps;
  ByteReader reader(contents);
  while (!reader.isAtEnd()) {
    const auto number = reader.next<std::int32_t>();
    const auto size = reader.next<std::uint32_t>();
    if (number < 0) {
      Gap& gap = gaps[number];
      gap.size = size;
      gap.parent = reader.next<std::int32_t>();
      gap.left = reader.next<std::int32_t>();
      gap.right = reader.next<std::int32_t>();
      EXPECT_EQ(reader.next<std::int32_t>(), 0);
    }
  }
  return gaps;
}

/// The law of the tree of gaps: each one is in it once, smaller ones to the left.
void expectTree(const std::map<std::int32_t, Gap>& gaps, const PagedHeader& header) {
  std::set<std::int32_t> seen;
  std::vector<std::uint64_t> sizes;
  std::vector<std::int32_t> open;
  auto next = static_cast<std::int32_t>(header.rootGap);
  ASSERT_EQ(next == 0, gaps.empty());
  while (next != 0 || !open.empty()) {
    for (; next != 0; next = gaps.at(next).left) {
      ASSERT_TRUE(seen.insert(next).second);
      open.push_back(next);
    }
    const std::int32_t number = open.back();
    open.pop_back();
    if (sizes.empty()) {
      EXPECT_EQ(static_cast<std::int32_t>(header.smallestGap), number);
    }
    sizes.push_back(gaps.at(number).size);
    if (sizes.size() == gaps.size()) {
      EXPECT_EQ(static_cast<std::int32_t>(header.largestGap), number);
    }
    for (const std::int32_t below : {gaps.at(number).left, gaps.at(number).right}) {
      EXPECT_TRUE(below == 0 || gaps.at(below).parent == number);
    }
    next = gaps.at(number).right;
  }
  EXPECT_TRUE(std::is_sorted(sizes.begin(), sizes.end()));
  EXPECT_EQ(seen.size(), gaps.size());
  EXPECT_EQ(header.gaps, gaps.size());
  EXPECT_LE(gaps.empty() ? 0 : -gaps.begin()->first,
            static_cast<std::int32_t>(header.largestGapNumber));
}

TEST(PageMap, ComesBackWithItsGaps) {
  std::mt19937 random(2);
  for (std::size_t count = 0; count < 200; count += 7) {
    std::vector<PageSlot> slots;
    std::uint64_t place = kPagesBegin;
    for (std::size_t i = 1; i <= count; ++i) {
      const bool isGap = random() % 3 == 0;
      slots.push_back({isGap ? 0 : static_cast<std::uint32_t>(i), place, 32 * (1 + random() % 20)});
      place += slots.back().size;
    }
    PagedHeader header;
    const std::string contents = pageMapContents(slots, header);
    const std::vector<PageSlot> back = readPageMap(contents, place);
    ASSERT_EQ(back.size(), slots.size());
    for (std::size_t i = 0; i < count; ++i) {
      EXPECT_EQ(back[i].number, slots[i].number);
      EXPECT_EQ(back[i].place, slots[i].place);
      EXPECT_EQ(back[i].size, slots[i].size);
    }
    EXPECT_EQ(header.pages + header.gaps, slots.size());
    ASSERT_NO_FATAL_FAILURE(expectTree(gapsIn(contents), header));
  }
}

TEST(PageMap, GapsOfAPublishedDrawingObeyTheSameLaw) {
  std::size_t gaps = 0;
  for (const auto& path : test::sharedFiles(".dwg")) {
    const std::string file = test::bytesOf(path);
    if (file.compare(0, 6, "AC1018") < 0 || file.compare(0, 6, "AC1021") == 0) {
      continue;
    }
    SCOPED_TRACE(path.filename().string());
    const PagedHeader header = readPagedHeader(file);
    const SystemPage page =
        readSystemPage(file, header.pageMapPlace + kPagesBegin, kPageMapType, file.size());
    EXPECT_TRUE(page.isSumRight);
    ASSERT_NO_FATAL_FAILURE(expectTree(gapsIn(page.contents), header));
    gaps += header.gaps;
  }
  EXPECT_TRUE(gaps == 3 || test::sharedFiles(".dwg").empty());
}

TEST(PageMap, PagesBehindTheEndOfTheFileAreRefused) {
  PagedHeader header;
  const std::string contents = pageMapContents({{1, 0x100, 0x40}, {2, 0x140, 0x40}}, header);
  EXPECT_EQ(readPageMap(contents, 0x180).size(), 2U);
  EXPECT_THROW(readPageMap(contents, 0x140), Damage);
  EXPECT_THROW(readPageMap(pageMapContents({{1, 0x100, 0x10}}, header), 0x180), Damage);
}

}  // namespace
}  // namespace quoin::dwg::container
