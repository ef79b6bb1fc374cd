#include "embedded/dwg/container/SectionFrame.h"

#include "embedded/dwg/container/Bytes.h"
#include "embedded/dwg/container/Checksum.h"

namespace quoin::dwg::container {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t kMarkSize = 16;
constexpr auto kHeaderBegin = "\xCF\x7B\x1F\x23\xFD\xDE\x38\xA9\x5F\x7C\x68\xB8\x4E\x6D\x33\x5F"sv;
constexpr auto kClassesBegin = "\x8D\xA1\xC4\xB8\xC4\xA9\xF8\xC5\xC0\xDC\xF4\x5F\xE7\xCF\xB6\x8A"sv;

std::string_view beginMark(FramedSection which) {
  return which == FramedSection::Header ? kHeaderBegin : kClassesBegin;
}

/// An end mark is the beginning's with every bit turned over.
std::string endMark(FramedSection which) {
  std::string mark(beginMark(which));
  for (char& c : mark) {
    c = static_cast<char>(~c);
  }
  return mark;
}

/// Whether the upper half of a size of 64 bits follows the lower one.
bool hasHighSize(dxf::Version version, unsigned maintenance) {
  return version >= dxf::Version::R2018 || (version >= dxf::Version::R2010 && maintenance > 3);
}

}  // namespace

SectionFrame readSectionFrame(std::string_view section, FramedSection which, dxf::Version version,
                              unsigned maintenance) {
  if (slice(section, 0, kMarkSize) != beginMark(which)) {
    throw Damage("the mark of its beginning is missing");
  }
  ByteReader reader(section, kMarkSize);
  const auto size = reader.next<std::uint32_t>();
  if (hasHighSize(version, maintenance) && reader.next<std::uint32_t>() != 0) {
    throw Damage("its size is none", kMarkSize);
  }
  SectionFrame frame;
  frame.begin = static_cast<std::size_t>(reader.place());
  frame.contents = reader.take(size);
  const std::string_view summed = section.substr(kMarkSize, frame.begin + size - kMarkSize);
  frame.isSumRight = reader.next<std::uint16_t>() == crc16(kCrc16Seed, summed);
  if (reader.take(kMarkSize) != endMark(which)) {
    throw Damage("the mark of its end is missing", reader.place() - kMarkSize);
  }
  return frame;
}

std::string withContents(std::string_view section, FramedSection which, dxf::Version version,
                         unsigned maintenance, std::string_view contents) {
  const SectionFrame old = readSectionFrame(section, which, version, maintenance);
  std::string summed;
  appendNumber(summed, static_cast<std::uint32_t>(contents.size()));
  if (hasHighSize(version, maintenance)) {
    appendNumber(summed, std::uint32_t{0});
  }
  summed += contents;
  const std::uint16_t sum = crc16(kCrc16Seed, summed);
  std::string fresh(beginMark(which));
  fresh += summed;
  appendNumber(fresh, sum);
  fresh += section.substr(old.begin + old.contents.size() + sizeof(sum));
  return fresh;
}

}  // namespace quoin::dwg::container
