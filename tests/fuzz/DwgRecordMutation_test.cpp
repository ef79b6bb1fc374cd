// Records of every kind and version, made up from random bits, the same ones on every run, and
// thousands of damaged ones: whatever is decoded obeys every law of the probe.
#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <string>

#include "embedded/dwg/records/BitWriter.h"
#include "fuzz/DwgRecordProbe.h"
#include "fuzz/SeedFile.h"

namespace quoin::test {
namespace {

using dxf::Version;

constexpr unsigned kMutationsPerRecord = 60;
// Most kinds have small ones; up to R2004 a linetype has an area of 256 bytes.
constexpr std::size_t kSmallRecord = 160;
constexpr std::size_t kLargestRecord = 480;

/// Mostly zeroes: a random number of parts is seldom one that a small record has.
void putRandomBits(dwg::BitWriter& out, std::size_t count, std::mt19937& random) {
  for (; count != 0; --count) {
    out.bit((random() & random() & 1) != 0);
  }
}

/// A record that begins as one of this kind does and goes on with random bits, in all its streams;
/// it has more of them than the kind takes.
dwg::RecordBytes randomBits(Version version, std::uint16_t type, bool isEntity,
                            std::mt19937& random) {
  constexpr std::size_t kDataBits = 4000;
  constexpr std::size_t kTextBits = 800;
  constexpr std::size_t kHandleBits = 1600;
  dwg::BitWriter out;
  std::size_t sizeAt = 0;
  const auto putSize = [&] {
    sizeAt = out.size();
    out.rawLong(0);
  };
  if (version >= Version::R2010) {
    out.objectType(type);
  } else {
    out.bitShort(type);
  }
  const bool isSizeInFront = version >= Version::R2000 && version < Version::R2010;
  if (isSizeInFront) {
    putSize();
  }
  out.handle(dwg::absoluteReference(probe::kRecordHandle, 0));
  out.bitShort(0);  // no extended data
  if (isEntity) {
    out.bit(false);  // no picture
  }
  if (version < Version::R2000) {
    putSize();
  }
  putRandomBits(out, kDataBits, random);
  if (version >= Version::R2007) {
    putRandomBits(out, kTextBits, random);
    out.rawShort(kTextBits);
    out.bit(true);
  }
  const std::size_t dataBits = out.size();
  if (version < Version::R2010) {
    out.replaceLong(sizeAt, static_cast<std::uint32_t>(dataBits));
  }
  putRandomBits(out, kHandleBits, random);
  return {out.bytes(), version >= Version::R2010 ? out.bytes().size() * 8 - dataBits : 0};
}

/// A whole record of this kind, made of the fields that random bits are; empty where there is none
/// among many.
std::string madeInput(std::size_t version, const dwg::Kind& kind, std::size_t largest) {
  const Version release = dwg::testing::kVersions[version];
  const dwg::RecordCodec& codec = probe::codecOf(release);
  const std::uint16_t type = dwg::testing::typeOf(kind, dwg::testing::allClasses());
  std::mt19937 random(static_cast<unsigned>(version) * 1000 + type);
  constexpr int kTries = 200;
  for (int i = 0; i < kTries; ++i) {
    const dwg::RecordBytes bits =
        randomBits(release, type, kind.family == dwg::Family::Entity, random);
    dwg::DecodedRecord record;
    codec.decode({probe::kRecordHandle, bits.data, bits.handleBits}, record);
    record.isWhole = true;
    dwg::RecordBytes bytes;
    if (record.kind != &kind || !codec.encode(probe::kRecordHandle, record, bytes) ||
        bytes.data.size() > largest) {
      continue;
    }
    const dwg::RecordSource source{probe::kRecordHandle, bytes.data, bytes.handleBits};
    codec.decode(source, record);
    if (codec.isExact(source, record)) {
      return probe::inputOf(version, bytes);
    }
  }
  return {};
}

Seeds madeSeeds() {
  Seeds seeds;
  for (std::size_t version = 0; version < std::size(dwg::testing::kVersions); ++version) {
    const std::string release(dxf::releaseName(dwg::testing::kVersions[version]));
    for (const dwg::Kind* kind : dwg::allKinds()) {
      std::string input = madeInput(version, *kind, kSmallRecord);
      input = input.empty() ? madeInput(version, *kind, kLargestRecord) : input;
      EXPECT_FALSE(input.empty()) << kind->name << ' ' << release;
      const std::string type = kind->type == 0 ? "" : std::to_string(kind->type) + '_';
      seeds[kind->name + ('_' + type) + release] = input;
    }
  }
  return seeds;
}

TEST(DwgRecordMutation, TheSeedsAreOneRecordOfEachKindAndVersion) {
  checkSeeds("dwg_records.txt", madeSeeds());
}

TEST(DwgRecordMutation, DamagedRecordsObeyTheLaws) {
  auto results = probeSeeds(madeSeeds(), kMutationsPerRecord, probeDwgRecord);
  // Inputs that are all refused at once, or all harmless, would test nothing.
  EXPECT_GT(results[ProbeResult::Loaded], 1000);
  EXPECT_GT(results[ProbeResult::Refused], 1000);
}

}  // namespace
}  // namespace quoin::test
