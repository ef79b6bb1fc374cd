#include "embedded/dwg/container/PagedHeader.h"

#include "embedded/dwg/container/Bytes.h"
#include "embedded/dwg/container/Checksum.h"

namespace quoin::dwg::container {
namespace {

using namespace std::string_view_literals;

constexpr auto kMark = "AcFssFcAJMB\0"sv;
constexpr std::size_t kSumPlace = 0x68;

std::string combined(std::string_view bytes, std::string_view mask) {
  std::string result(bytes);
  for (std::size_t i = 0; i < result.size(); ++i) {
    result[i] = static_cast<char>(result[i] ^ mask[i]);
  }
  return result;
}

std::uint32_t sumOf(std::string bytes) {
  replaceNumber(bytes, kSumPlace, std::uint32_t{0});
  return crc32(bytes);
}

}  // namespace

std::string paddingBytes(std::size_t size) {
  std::string bytes;
  std::uint32_t random = 1;
  for (std::size_t i = 0; i < size; ++i) {
    random = random * 0x343FD + 0x269EC3;
    bytes.push_back(static_cast<char>(random >> 16 & 0xFF));
  }
  return bytes;
}

PagedHeader readPagedHeader(std::string_view file) {
  PagedHeader header;
  header.bytes =
      combined(slice(file, kPagedHeaderPlace, kPagedHeaderSize), paddingBytes(kPagedHeaderSize));
  const std::string& bytes = header.bytes;
  if (!std::string_view(bytes).starts_with(kMark)) {
    throw Damage("the encrypted header of the file is damaged", kPagedHeaderPlace);
  }
  header.isSumRight = numberAt<std::uint32_t>(bytes, kSumPlace) == sumOf(bytes);
  header.rootGap = numberAt<std::uint32_t>(bytes, 0x18);
  header.largestGap = numberAt<std::uint32_t>(bytes, 0x1C);
  header.smallestGap = numberAt<std::uint32_t>(bytes, 0x20);
  header.lastPage = numberAt<std::uint32_t>(bytes, 0x28);
  header.pagesEnd = numberAt<std::uint64_t>(bytes, 0x2C);
  header.copyPlace = numberAt<std::uint64_t>(bytes, 0x34);
  header.gaps = numberAt<std::uint32_t>(bytes, 0x3C);
  header.pages = numberAt<std::uint32_t>(bytes, 0x40);
  header.pageMap = numberAt<std::uint32_t>(bytes, 0x50);
  header.pageMapPlace = numberAt<std::uint64_t>(bytes, 0x54);
  header.sectionMap = numberAt<std::uint32_t>(bytes, 0x5C);
  header.largestPage = numberAt<std::uint32_t>(bytes, 0x60);
  header.largestGapNumber = numberAt<std::uint32_t>(bytes, 0x64);
  return header;
}

std::string pagedHeaderBytes(const PagedHeader& header) {
  std::string bytes = header.bytes;
  replaceNumber(bytes, 0x18, header.rootGap);
  replaceNumber(bytes, 0x1C, header.largestGap);
  replaceNumber(bytes, 0x20, header.smallestGap);
  replaceNumber(bytes, 0x28, header.lastPage);
  replaceNumber(bytes, 0x2C, header.pagesEnd);
  replaceNumber(bytes, 0x34, header.copyPlace);
  replaceNumber(bytes, 0x3C, header.gaps);
  replaceNumber(bytes, 0x40, header.pages);
  replaceNumber(bytes, 0x50, header.pageMap);
  replaceNumber(bytes, 0x54, header.pageMapPlace);
  replaceNumber(bytes, 0x5C, header.sectionMap);
  replaceNumber(bytes, 0x60, header.largestPage);
  replaceNumber(bytes, 0x64, header.largestGapNumber);
  replaceNumber(bytes, kSumPlace, sumOf(bytes));
  return combined(bytes, paddingBytes(bytes.size()));
}

}  // namespace quoin::dwg::container
