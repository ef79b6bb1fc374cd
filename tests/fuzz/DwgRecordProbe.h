// What must hold for any bits whatever when they are decoded as a record of a DWG drawing. The
// mutation test and the libFuzzer target share it.
//
// An input is a digit for the version (SmallDrawing.h), how many bits the handles take (two bytes,
// the lower first; R2010 and later), and the record from its object type on.
#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>

#include "dwg/records/SmallDrawing.h"
#include "embedded/dwg/records/RecordCodec.h"
#include "fuzz/DxfProbe.h"

namespace quoin::test {
namespace probe {

inline constexpr std::uint64_t kRecordHandle = 0x2AB;
inline constexpr std::size_t kInputHead = 3;

struct RecordInput {
  dxf::Version version = dxf::Version::R2018;
  std::uint64_t handleBits = 0;
  std::string_view data;

  dwg::RecordSource source() const { return {kRecordHandle, data, handleBits}; }
};

/// Fails: false for what is too short.
inline bool readInput(std::string_view bytes, RecordInput& input) {
  if (bytes.size() <= kInputHead) {
    return false;
  }
  const auto byteAt = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
  input.version = dwg::testing::kVersions[byteAt(0) % std::size(dwg::testing::kVersions)];
  input.handleBits = byteAt(1) + std::uint64_t{256} * byteAt(2);
  input.data = bytes.substr(kInputHead);
  return true;
}

/// The input that readInput() reads as this record.
inline std::string inputOf(std::size_t version, const dwg::RecordBytes& record) {
  std::string bytes(1, static_cast<char>('0' + version));
  bytes.push_back(static_cast<char>(record.handleBits & 0xFF));
  bytes.push_back(static_cast<char>(record.handleBits >> 8 & 0xFF));
  return bytes + record.data;
}

/// A drawing of each version, made once.
struct RecordDrawing {
  explicit RecordDrawing(dxf::Version version)
      : facts(dwg::testing::smallFacts(version, "ANSI_936")) {}
  RecordDrawing(const RecordDrawing&) = delete;  // the codec refers to the facts beside it
  RecordDrawing& operator=(const RecordDrawing&) = delete;

  dwg::DrawingFacts facts;
  dwg::ClassMap classes = dwg::testing::allClasses();
  dwg::RecordCodec codec{facts, classes};
};

inline const dwg::RecordCodec& codecOf(dxf::Version version) {
  static const RecordDrawing drawings[] = {
      RecordDrawing(dwg::testing::kVersions[0]), RecordDrawing(dwg::testing::kVersions[1]),
      RecordDrawing(dwg::testing::kVersions[2]), RecordDrawing(dwg::testing::kVersions[3]),
      RecordDrawing(dwg::testing::kVersions[4]), RecordDrawing(dwg::testing::kVersions[5]),
      RecordDrawing(dwg::testing::kVersions[6]), RecordDrawing(dwg::testing::kVersions[7])};
  for (const RecordDrawing& drawing : drawings) {
    if (drawing.facts.format.version == version) {
      return drawing.codec;
    }
  }
  throw std::logic_error("a version that is read");
}

/// What is kept of a record, in so many bytes.
inline std::size_t sizeOf(const dwg::RecordValues& values) {
  std::size_t size = values.size() * sizeof(dwg::Value);
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i].type == dwg::Value::Type::Text) {
      size += values.textOf(values[i]).size() * sizeof(wchar_t);
    } else if (values[i].type == dwg::Value::Type::Bytes) {
      size += values.bytesOf(values[i]).size();
    }
  }
  return size;
}

inline bool isSameValue(const dwg::RecordValues& values, const dwg::Value& value,
                        const dwg::RecordValues& others, const dwg::Value& other) {
  if (value.key != other.key || value.type != other.type) {
    return false;
  }
  switch (value.type) {
    case dwg::Value::Type::Text:
      return values.textOf(value) == others.textOf(other);
    case dwg::Value::Type::Bytes:
      return values.bytesOf(value) == others.bytesOf(other);
    case dwg::Value::Type::Double:
      return std::bit_cast<std::uint64_t>(value.number) ==
             std::bit_cast<std::uint64_t>(other.number);
    default:
      return value.integer == other.integer;
  }
}

inline bool areSame(const dwg::RecordValues& values, const dwg::RecordValues& others) {
  if (values.size() != others.size()) {
    return false;
  }
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!isSameValue(values, values[i], others, others[i])) {
      return false;
    }
  }
  return true;
}

/// A record that is given its own tags again, as an edit of something else does.
inline void editRecord(const dwg::RecordCodec& codec, const dwg::DecodedRecord& record,
                       const std::string& tags, dxf::Version version) {
  dwg::DecodedRecord edited = record;
  std::string problem;
  if (!codec.readTags(tags, edited, problem)) {
    require(!problem.empty(), "a refusal says why");
    return;
  }
  dwg::RecordBytes bytes;
  if (codec.encode(kRecordHandle, edited, bytes)) {
    dwg::DecodedRecord again;
    codec.decode({kRecordHandle, bytes.data, bytes.handleBits}, again);
    std::string meant;
    std::string written;
    codec.writeTags(edited, meant);
    codec.writeTags(again, written);
    // The tags of R13 do not say who owns what; it is read alone.
    require(version < dxf::Version::R14 || meant == written, "what is written is what was meant");
  }
}

}  // namespace probe

/// Fails: throws std::logic_error naming the law that does not hold.
inline ProbeResult probeDwgRecord(std::string_view input) {
  probe::RecordInput given;
  if (!probe::readInput(input, given)) {
    return ProbeResult::NotRecognised;
  }
  const dwg::RecordCodec& codec = probe::codecOf(given.version);
  dwg::DecodedRecord record;
  codec.decode(given.source(), record);
  // So many fields however short the record is, and a field for each bit: a double takes two.
  constexpr std::size_t kMostShared = 300;
  probe::require(
      probe::sizeOf(record.values) <= (kMostShared + 8 * given.data.size()) * sizeof(dwg::Value),
      "memory is bounded by the record's size");
  std::string tags;
  codec.writeTags(record, tags);
  dwg::RecordBytes bytes;
  if (!codec.encode(probe::kRecordHandle, record, bytes)) {
    probe::require(!codec.isExact(given.source(), record), "what cannot be written is not exact");
    return ProbeResult::Refused;
  }
  const dwg::RecordSource written{probe::kRecordHandle, bytes.data, bytes.handleBits};
  dwg::DecodedRecord again;
  codec.decode(written, again);
  const bool isKnown = record.kind != nullptr;
  probe::require(again.isWhole == isKnown && again.type == record.type && again.kind == record.kind,
                 "what is written is a whole record of the same kind");
  if (codec.isExact(given.source(), record)) {
    probe::require(probe::areSame(record.values, again.values),
                   "the same bits are the same values");
    if (isKnown) {
      probe::editRecord(codec, record, tags, given.version);
    }
  } else if (isKnown) {
    probe::require(codec.isExact(written, again), "what is written may be edited");
  }
  return ProbeResult::Loaded;
}

}  // namespace quoin::test
