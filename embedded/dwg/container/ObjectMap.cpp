#include "embedded/dwg/container/ObjectMap.h"

#include <algorithm>

#include "embedded/dwg/container/Bytes.h"
#include "embedded/dwg/container/Checksum.h"

namespace quoin::dwg::container {
namespace {

constexpr const char* kSection = "AcDb:Handles";
// The section is a row of chunks: a size (two bytes, the higher first) that counts itself and the
// pairs, but not the checksum behind them. The last chunk has no pairs.
constexpr std::size_t kSizeBytes = 2;
constexpr std::size_t kMostChunk = 2032;

std::size_t bigEndianAt(std::string_view bytes, std::size_t place) {
  const std::string_view two = slice(bytes, place, 2);
  return static_cast<unsigned char>(two[0]) * std::size_t{256} + static_cast<unsigned char>(two[1]);
}

void appendBigEndian(std::string& bytes, std::size_t number) {
  bytes.push_back(static_cast<char>(number >> 8 & 0xFF));
  bytes.push_back(static_cast<char>(number & 0xFF));
}

/// Numbers in groups of 7 bits, the lowest first; a set highest bit says that more follow.
class PairReader {
 public:
  explicit PairReader(std::string_view pairs) : m_pairs(pairs) {}

  bool isAtEnd() const { return m_at == m_pairs.size(); }

  std::uint64_t difference() {
    std::uint64_t number = 0;
    unsigned shift = 0;
    for (unsigned byte = next();; byte = next(), shift += 7) {
      number |= group(byte & 0x7F, shift);
      if (byte < 0x80) {
        return number;
      }
    }
  }

  /// As above; the last group has 6 bits, and its bit 6 is the sign.
  std::int64_t signedDifference() {
    std::uint64_t number = 0;
    unsigned shift = 0;
    for (unsigned byte = next();; byte = next(), shift += 7) {
      if (byte >= 0x80) {
        number |= group(byte & 0x7F, shift);
        continue;
      }
      number |= group(byte & 0x3F, shift);
      const auto size = static_cast<std::int64_t>(number & INT64_MAX);
      return (byte & 0x40) != 0 ? -size : size;
    }
  }

 private:
  unsigned next() {
    if (m_at == m_pairs.size()) {
      throw Damage("a chunk of the object map ends within a number", m_at);
    }
    return static_cast<unsigned char>(m_pairs[m_at++]);
  }
  static std::uint64_t group(std::uint64_t bits, unsigned shift) {
    return shift < 64 ? bits << shift : 0;
  }

  std::string_view m_pairs;
  std::size_t m_at = 0;
};

void readChunk(std::string_view pairs, std::vector<MapEntry>& entries) {
  PairReader reader(pairs);
  MapEntry entry;  // handles and places count on within a chunk
  while (!reader.isAtEnd()) {
    entry.handle += reader.difference();
    entry.place += static_cast<std::uint64_t>(reader.signedDifference());
    entries.push_back(entry);
  }
}

void readChunks(std::string_view section, std::uint64_t offset, std::uint64_t mostEntries,
                std::vector<MapEntry>& entries, Warnings& warnings) {
  std::size_t at = 0;
  while (true) {
    const std::size_t size = bigEndianAt(section, at);
    if (size < kSizeBytes) {
      throw Damage("a chunk of the object map has no size", at);
    }
    const std::string_view chunk = slice(section, at, size);
    const std::size_t sum = bigEndianAt(section, at + size);
    if (sum != crc16(kCrc16Seed, chunk)) {
      warnings.addDamage(kSection, offset + at, "the checksum of a part of the map is wrong");
    }
    if (size == kSizeBytes) {
      return;
    }
    if (entries.size() > mostEntries) {
      throw Damage("the object map has more records than there is room for", at);
    }
    try {
      readChunk(chunk.substr(kSizeBytes), entries);
    } catch (const Damage& damage) {
      throw Damage(damage.what(), at + kSizeBytes + damage.place);
    }
    at += size + 2;
  }
}

bool isBefore(const MapEntry& one, const MapEntry& other) {
  return one.handle < other.handle;
}

void appendDifference(std::string& bytes, std::uint64_t number) {
  for (; number > 0x7F; number >>= 7) {
    bytes.push_back(static_cast<char>((number & 0x7F) | 0x80));
  }
  bytes.push_back(static_cast<char>(number));
}

void appendSigned(std::string& bytes, std::int64_t difference) {
  std::uint64_t number = static_cast<std::uint64_t>(difference < 0 ? -difference : difference);
  for (; number > 0x3F; number >>= 7) {
    bytes.push_back(static_cast<char>((number & 0x7F) | 0x80));
  }
  bytes.push_back(static_cast<char>(number | (difference < 0 ? 0x40 : 0)));
}

void appendChunk(std::string& section, std::string_view pairs) {
  std::string chunk;
  appendBigEndian(chunk, pairs.size() + kSizeBytes);
  chunk += pairs;
  section += chunk;
  appendBigEndian(section, crc16(kCrc16Seed, chunk));
}

std::string pairBehind(const MapEntry& before, const MapEntry& entry) {
  std::string pair;
  appendDifference(pair, entry.handle - before.handle);
  appendSigned(pair, static_cast<std::int64_t>(entry.place - before.place));
  return pair;
}

}  // namespace

std::vector<MapEntry> readObjectMap(std::string_view section, std::uint64_t offset,
                                    std::uint64_t mostEntries, Warnings& warnings) {
  std::vector<MapEntry> entries;
  try {
    readChunks(section, offset, mostEntries, entries, warnings);
  } catch (const Damage& damage) {
    warnings.addDamage(kSection, offset + damage.place, damage.what());
  }
  if (!std::is_sorted(entries.begin(), entries.end(), isBefore)) {
    warnings.add(kSection, offset, "the handles are not in order");
    std::stable_sort(entries.begin(), entries.end(), isBefore);
  }
  if (!entries.empty() && entries.front().handle == 0) {
    warnings.addDamage(kSection, offset, "a record has the handle 0");
    const auto isNull = [](const MapEntry& entry) { return entry.handle == 0; };
    entries.erase(entries.begin(), std::find_if_not(entries.begin(), entries.end(), isNull));
  }
  const auto isSame = [](const MapEntry& one, const MapEntry& other) {
    return one.handle == other.handle;
  };
  const auto end = std::unique(entries.begin(), entries.end(), isSame);
  if (end != entries.end()) {
    warnings.addDamage(kSection, offset, "two records have one handle");
    entries.erase(end, entries.end());
  }
  return entries;
}

std::string objectMapOf(const std::vector<MapEntry>& entries) {
  std::string section;
  std::string pairs;
  MapEntry before;
  for (const MapEntry& entry : entries) {
    std::string pair = pairBehind(before, entry);
    if (kSizeBytes + pairs.size() + pair.size() > kMostChunk) {
      appendChunk(section, pairs);
      pairs.clear();
      pair = pairBehind({}, entry);
    }
    pairs += pair;
    before = entry;
  }
  if (!pairs.empty()) {
    appendChunk(section, pairs);
  }
  appendChunk(section, {});
  return section;
}

}  // namespace quoin::dwg::container
