#include "embedded/dwg/container/PageMap.h"

#include <algorithm>

#include "embedded/dwg/container/Bytes.h"
#include "embedded/dwg/container/Checksum.h"
#include "embedded/dwg/container/Lz77.h"

namespace quoin::dwg::container {
namespace {

constexpr std::uint32_t kPacked = 2;

std::string systemHeader(std::uint32_t type, std::size_t contents, std::size_t packed,
                         std::uint32_t sum) {
  std::string header;
  appendNumber(header, type);
  appendNumber(header, static_cast<std::uint32_t>(contents));
  appendNumber(header, static_cast<std::uint32_t>(packed));
  appendNumber(header, kPacked);
  appendNumber(header, sum);
  return header;
}

/// The checksum begins with the header, in which it is 0 itself.
std::uint32_t systemSum(std::uint32_t type, std::size_t contents, std::string_view packed) {
  return pageChecksum(pageChecksum(0, systemHeader(type, contents, packed.size(), 0)), packed);
}

struct Gap {
  std::int32_t number = 0;
  std::uint64_t size = 0;
  std::int32_t parent = 0;
  std::int32_t left = 0;
  std::int32_t right = 0;
};

/// Makes a balanced tree of gaps[begin..end), which are in order of size; returns its root.
std::int32_t plantGaps(std::vector<Gap>& gaps, std::size_t begin, std::size_t end,
                       std::int32_t parent) {
  if (begin == end) {
    return 0;
  }
  const std::size_t middle = begin + (end - begin) / 2;
  Gap& root = gaps[middle];
  root.parent = parent;
  root.left = plantGaps(gaps, begin, middle, root.number);
  root.right = plantGaps(gaps, middle + 1, end, root.number);
  return root.number;
}

}  // namespace

SystemPage readSystemPage(std::string_view file, std::uint64_t place, std::uint32_t type,
                          std::uint64_t mostBytes) {
  ByteReader reader(file, place);
  if (reader.next<std::uint32_t>() != type) {
    throw Damage("a map of the file is not where it should be", place);
  }
  const auto size = reader.next<std::uint32_t>();
  const auto packedSize = reader.next<std::uint32_t>();
  if (reader.next<std::uint32_t>() != kPacked) {
    throw Damage("a map of the file is packed in an unknown way", place);
  }
  const auto sum = reader.next<std::uint32_t>();
  const std::string_view packed = reader.take(packedSize);
  if (size > mostBytes || size > packed.size() * kMostUnpackedPerByte) {
    throw Damage("a map of the file claims to be larger than it can be", place);
  }
  SystemPage page;
  page.isSumRight = sum == systemSum(type, size, packed);
  page.contents.resize(size);
  try {
    page.contents.resize(unpackLz77(packed, page.contents.data(), size));
  } catch (const Damage& damage) {
    throw Damage(damage.what(), place + kSystemHeaderSize + damage.place);
  }
  return page;
}

std::string systemPageBytes(std::uint32_t type, std::string_view contents) {
  const std::string packed = packLz77(contents);
  return systemHeader(type, contents.size(), packed.size(),
                      systemSum(type, contents.size(), packed)) +
         packed;
}

std::string emptyPageMapHeader() {
  return systemHeader(kPageMapType, 0, 0, 0);
}

std::uint64_t mostSystemPageBytes(std::uint64_t contents) {
  // Literals alone take one byte for each 255 more, and the instructions around them a few.
  return kSystemHeaderSize + contents + contents / kMostUnpackedPerByte + 16;
}

std::vector<PageSlot> readPageMap(std::string_view contents, std::uint64_t fileSize) {
  std::vector<PageSlot> slots;
  std::uint64_t place = kPagesBegin;
  ByteReader reader(contents);
  while (!reader.isAtEnd()) {
    const auto number = reader.next<std::int32_t>();
    const auto size = reader.next<std::uint32_t>();
    if (number == 0 || (number > 0 && size < kPageAlignment)) {
      throw Damage("the page map is damaged", reader.place());
    }
    if (number < 0) {
      reader.take(4 * sizeof(std::uint32_t));  // its place in the tree of gaps
    }
    if (place >= fileSize) {
      throw Damage("the page map has pages behind the end of the file", place);
    }
    slots.push_back({number < 0 ? 0 : static_cast<std::uint32_t>(number), place, size});
    place += size;
  }
  return slots;
}

std::string pageMapContents(const std::vector<PageSlot>& slots, PagedHeader& header) {
  std::vector<Gap> gaps;
  for (const PageSlot& slot : slots) {
    if (slot.number == 0) {
      gaps.push_back({-static_cast<std::int32_t>(gaps.size() + 1), slot.size, 0, 0, 0});
    }
  }
  std::stable_sort(gaps.begin(), gaps.end(),
                   [](const Gap& one, const Gap& other) { return one.size < other.size; });
  header.rootGap = static_cast<std::uint32_t>(plantGaps(gaps, 0, gaps.size(), 0));
  header.smallestGap = gaps.empty() ? 0 : static_cast<std::uint32_t>(gaps.front().number);
  header.largestGap = gaps.empty() ? 0 : static_cast<std::uint32_t>(gaps.back().number);
  header.gaps = header.largestGapNumber = static_cast<std::uint32_t>(gaps.size());
  header.pages = static_cast<std::uint32_t>(slots.size() - gaps.size());
  std::sort(gaps.begin(), gaps.end(),
            [](const Gap& one, const Gap& other) { return one.number > other.number; });

  std::string contents;
  std::size_t nextGap = 0;
  for (const PageSlot& slot : slots) {
    const bool isGap = slot.number == 0;
    appendNumber(contents, isGap ? gaps[nextGap].number : static_cast<std::int32_t>(slot.number));
    appendNumber(contents, static_cast<std::uint32_t>(slot.size));
    if (isGap) {
      appendNumber(contents, gaps[nextGap].parent);
      appendNumber(contents, gaps[nextGap].left);
      appendNumber(contents, gaps[nextGap].right);
      appendNumber(contents, std::uint32_t{0});
      ++nextGap;
    }
  }
  return contents;
}

}  // namespace quoin::dwg::container
