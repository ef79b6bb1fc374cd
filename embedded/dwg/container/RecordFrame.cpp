#include "embedded/dwg/container/RecordFrame.h"

#include "embedded/dwg/container/Bytes.h"
#include "embedded/dwg/container/Checksum.h"

namespace quoin::dwg::container {
namespace {

/// A size in groups of 15 bits, each in two bytes, the lowest first; a set highest bit says that
/// more follow.
std::uint64_t nextSize(ByteReader& reader) {
  std::uint64_t size = 0;
  for (unsigned shift = 0; shift < 60; shift += 15) {
    const auto group = reader.next<std::uint16_t>();
    size |= std::uint64_t{group & 0x7FFFU} << shift;
    if (group < 0x8000) {
      return size;
    }
  }
  throw Damage("the size of the record is none", reader.place());
}

/// The same in groups of 7 bits.
std::uint64_t nextBits(ByteReader& reader) {
  std::uint64_t bits = 0;
  for (unsigned shift = 0; shift < 63; shift += 7) {
    const auto group = reader.next<std::uint8_t>();
    bits |= std::uint64_t{group & 0x7FU} << shift;
    if (group < 0x80) {
      return bits;
    }
  }
  throw Damage("the size of the record's handles is none", reader.place());
}

}  // namespace

RecordFrame readRecordFrame(std::string_view objects, std::uint64_t place, bool hasHandleBits) {
  ByteReader reader(objects, place);
  RecordFrame frame;
  const std::uint64_t size = nextSize(reader);
  frame.handleBits = hasHandleBits ? nextBits(reader) : 0;
  frame.data = reader.take(size);
  if (size == 0 || frame.handleBits > size * 8) {
    throw Damage("the record has no data", place);
  }
  frame.size = reader.place() + sizeof(std::uint16_t) - place;
  slice(objects, place, frame.size);
  return frame;
}

bool isRecordSumRight(std::string_view objects, std::uint64_t place, std::uint64_t size) {
  const std::string_view frame = slice(objects, place, size);
  const std::size_t sumPlace = frame.size() - sizeof(std::uint16_t);
  return numberAt<std::uint16_t>(frame, sumPlace) == crc16(kCrc16Seed, frame.substr(0, sumPlace));
}

std::string framedRecord(std::string_view data, std::uint64_t handleBits, bool hasHandleBits) {
  std::string frame;
  frame.reserve(data.size() + 12);
  std::size_t size = data.size();
  for (; size > 0x7FFF; size >>= 15) {
    appendNumber(frame, static_cast<std::uint16_t>((size & 0x7FFF) | 0x8000));
  }
  appendNumber(frame, static_cast<std::uint16_t>(size));
  if (hasHandleBits) {
    for (; handleBits > 0x7F; handleBits >>= 7) {
      appendNumber(frame, static_cast<std::uint8_t>((handleBits & 0x7F) | 0x80));
    }
    appendNumber(frame, static_cast<std::uint8_t>(handleBits));
  }
  frame += data;
  appendNumber(frame, crc16(kCrc16Seed, frame));
  return frame;
}

}  // namespace quoin::dwg::container
