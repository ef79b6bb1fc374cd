// Thousands of damaged DWG drawings, the same ones on every run: an error or a load with warnings,
// and whatever loads obeys every law of the probe.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "dwg/MadeDwg.h"
#include "fuzz/DwgProbe.h"
#include "support/SharedData.h"

namespace quoin::test {
namespace {

constexpr unsigned kMutationsPerMadeFile = 3000;
constexpr unsigned kMutationsPerSharedFile = 60;

/// Damages numbers more than anything else: sizes, places and counts are what leads astray.
std::string mutated(std::string bytes, unsigned seed) {
  std::mt19937 random(seed);
  const auto below = [&](std::size_t limit) { return limit == 0 ? 0 : random() % limit; };
  for (std::size_t changes = 1 + below(4); changes > 0 && bytes.size() > 8; --changes) {
    // The beginning and the end, where headers and maps are, get a third each.
    const std::size_t part = below(3);
    const std::size_t reach = part == 2 ? bytes.size() : std::min<std::size_t>(400, bytes.size());
    const std::size_t at = part == 1 ? bytes.size() - 1 - below(reach) : below(reach);
    const std::size_t size = std::min(below(1 + below(40)), bytes.size() - at);
    switch (below(7)) {
      case 0:
        bytes[at] = static_cast<char>(random() & 0xFF);
        break;
      case 1:
        bytes[at] = static_cast<char>(bytes[at] ^ (1 << below(8)));
        break;
      case 2:
        bytes.erase(at, size);
        break;
      case 3:
        bytes.insert(below(bytes.size()), bytes.substr(at, size));
        break;
      case 4:
        bytes.replace(at, size, size, '\xFF');
        break;
      case 5:
        bytes.replace(at, size, size, '\0');
        break;
      default:
        bytes.resize(bytes.size() - std::min<std::size_t>(below(100), bytes.size() - 8));
        break;
    }
  }
  return bytes;
}

/// Probes so many mutations of a file; counts what they led to.
void probeMutations(const std::string& seedFile, unsigned count, int& loaded, int& refused) {
  for (unsigned number = 1; number <= count; ++number) {
    const std::string bytes = mutated(seedFile, number);
    try {
      const ProbeResult result = probeDwg(bytes);
      loaded += result == ProbeResult::Loaded ? 1 : 0;
      refused += result == ProbeResult::Refused ? 1 : 0;
    } catch (const std::exception& error) {
      const auto kept = std::filesystem::temp_directory_path() / "quoin-mutation.dwg";
      std::ofstream(kept, std::ios::binary) << bytes;
      FAIL() << "mutation " << number << ": " << error.what() << "; the input is kept as " << kept;
    }
  }
}

std::vector<std::string> seeds() {
  std::vector<std::string> files = madeDwgs(MadeContents::numbered(40));
  files.push_back(madeFlatDwg({}, "AC1014"));
  for (const std::string& file : madeDwgs(MadeContents::numbered(400))) {
    // Files with gaps between their pages, and with a map that has moved.
    const dwg::DwgFile whole(file);
    files.push_back(whole.written({{{7, std::string(300, 'g'), 0, false}, {300, "", 0, true}}}));
  }
  return files;
}

TEST(DwgMutation, TheSeedsThemselvesAreDrawings) {
  const auto folder = std::filesystem::path(QUOIN_SOURCE_DIR) / "tests" / "fuzz" / "corpus" / "dwg";
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    EXPECT_EQ(probeDwg(bytesOf(entry.path())), ProbeResult::Loaded) << entry.path();
  }
  for (const std::string& file : seeds()) {
    EXPECT_EQ(probeDwg(file), ProbeResult::Loaded);
  }
}

TEST(DwgMutation, DamagedDrawingsAreRefusedOrLoadedWithWarningsAndNeverCrash) {
  int loaded = 0;
  int refused = 0;
  for (const std::string& file : seeds()) {
    SCOPED_TRACE(file.substr(0, 6));
    ASSERT_NO_FATAL_FAILURE(probeMutations(file, kMutationsPerMadeFile, loaded, refused));
  }
  // Inputs that are all refused at once, or all harmless, would test nothing.
  EXPECT_GT(loaded, 1000);
  EXPECT_GT(refused, 1000);
}

TEST(DwgMutation, DamagedPublishedDrawingsNeverCrash) {
  if (sharedFiles(".dwg").empty()) {
    GTEST_SKIP() << "the shared drawings are absent; set QUOIN_SHARED_DATA";
  }
  int loaded = 0;
  int refused = 0;
  for (const auto& path : sharedFiles(".dwg")) {
    SCOPED_TRACE(path.filename().string());
    ASSERT_NO_FATAL_FAILURE(
        probeMutations(bytesOf(path), kMutationsPerSharedFile, loaded, refused));
  }
  EXPECT_GT(loaded, 50);
}

}  // namespace
}  // namespace quoin::test
