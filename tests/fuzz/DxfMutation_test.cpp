// Thousands of damaged drawings, the same ones on every run: an error or a whole load, and
// whatever loads obeys every law of the probe.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "fuzz/DrawingProbe.h"
#include "fuzz/DxfProbe.h"
#include "support/SharedData.h"

namespace quoin::test {
namespace {

constexpr int kMutationsPerSeedFile = 4000;
constexpr unsigned kMeasuredPerSeedFile = 120;

std::vector<std::filesystem::path> seedFiles() {
  std::vector<std::filesystem::path> files;
  const auto folder = std::filesystem::path(QUOIN_SOURCE_DIR) / "tests" / "fuzz" / "corpus" / "dxf";
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

/// Damages a file as disks, transfers and careless programs do.
class Mutator {
 public:
  explicit Mutator(unsigned seed) : m_random(seed) {}

  std::string mutated(std::string bytes) {
    for (std::size_t changes = 1 + below(4); changes > 0 && !bytes.empty(); --changes) {
      mutateOnce(bytes);
    }
    return bytes;
  }

 private:
  std::size_t below(std::size_t limit) { return limit == 0 ? 0 : m_random() % limit; }

  void mutateOnce(std::string& bytes) {
    static const std::vector<std::string> kTokens = {"  0\nSECTION\n",
                                                     "  0\nENDSEC\n",
                                                     "  0\nENDTAB\n",
                                                     "  0\nBLOCK\n",
                                                     "  0\nENDBLK\n",
                                                     "  0\nTABLE\n",
                                                     "  0\nVERTEX\n",
                                                     "  0\nSEQEND\n",
                                                     "  0\nEOF\n",
                                                     "  5\nFFFFFFFF\n",
                                                     "  5\n50\n",
                                                     "102\n{X\n",
                                                     "330\n1F\n",
                                                     " 67\n1\n",
                                                     "\n",
                                                     "\r",
                                                     "999\nx\n",
                                                     "-1\n\n",
                                                     "99999\nx\n",
                                                     "1e999",
                                                     "\\U+",
                                                     "\\M+1",
                                                     std::string(1, 0),
                                                     "\xFF\xEA\x03{",
                                                     "\x1A"};
    const std::size_t at = below(bytes.size());
    const std::size_t size = std::min(below(1 + below(40)), bytes.size() - at);
    switch (below(8)) {
      case 0:
        bytes[at] = static_cast<char>(m_random() & 0xFF);
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
        bytes.insert(at, kTokens[below(kTokens.size())]);
        break;
      case 5:
        bytes.resize(at);
        break;
      case 6:
        eraseLine(bytes, at);
        break;
      default:
        swapLines(bytes, at, below(bytes.size()));
        break;
    }
  }

  static std::pair<std::size_t, std::size_t> lineAround(const std::string& bytes, std::size_t at) {
    const std::size_t before = at == 0 ? std::string::npos : bytes.rfind('\n', at - 1);
    const std::size_t begin = before == std::string::npos ? 0 : before + 1;
    const std::size_t end = std::min(bytes.find('\n', at), bytes.size() - 1) + 1;
    return {begin, end};
  }

  static void eraseLine(std::string& bytes, std::size_t at) {
    const auto [begin, end] = lineAround(bytes, at);
    bytes.erase(begin, end - begin);
  }

  static void swapLines(std::string& bytes, std::size_t one, std::size_t other) {
    const auto first = lineAround(bytes, std::min(one, other));
    const auto second = lineAround(bytes, std::max(one, other));
    if (first.second > second.first) {
      return;
    }
    bytes = bytes.substr(0, first.first) +
            bytes.substr(second.first, second.second - second.first) +
            bytes.substr(first.second, second.first - first.second) +
            bytes.substr(first.first, first.second - first.first) + bytes.substr(second.second);
  }

  std::mt19937 m_random;
};

TEST(DxfMutation, TheSeedsThemselvesAreDrawings) {
  ASSERT_GE(seedFiles().size(), 5U);
  for (const auto& path : seedFiles()) {
    SCOPED_TRACE(path.filename().string());
    EXPECT_EQ(probeDxf(bytesOf(path)), ProbeResult::Loaded);
  }
}

TEST(DxfMutation, DamagedDrawingsAreRefusedOrLoadedWholeAndNeverCrash) {
  int loaded = 0;
  int refused = 0;
  for (const auto& path : seedFiles()) {
    const std::string seed = bytesOf(path);
    for (unsigned number = 1; number <= kMutationsPerSeedFile; ++number) {
      const std::string bytes = Mutator(number).mutated(seed);
      try {
        const ProbeResult result = probeDxf(bytes);
        loaded += result == ProbeResult::Loaded ? 1 : 0;
        refused += result == ProbeResult::Refused ? 1 : 0;
      } catch (const std::exception& error) {
        const auto kept = std::filesystem::temp_directory_path() / "quoin-mutation.dxf";
        std::ofstream(kept, std::ios::binary) << bytes;
        FAIL() << path.filename() << ", mutation " << number << ": " << error.what()
               << "; the input is kept as " << kept;
      }
    }
  }
  // Inputs that are all refused at once, or all harmless, would test nothing.
  EXPECT_GT(loaded, 1000);
  EXPECT_GT(refused, 1000);
}

TEST(DxfMutation, DamagedDrawingsAreMeasuredAndNeverCrash) {
  int measured = 0;
  for (const auto& path : seedFiles()) {
    const std::string seed = bytesOf(path);
    for (unsigned number = 1; number <= kMeasuredPerSeedFile; ++number) {
      SCOPED_TRACE(path.filename().string() + ", mutation " + std::to_string(number));
      EXPECT_NO_THROW(measured += probeDrawing(Mutator(number).mutated(seed)) ? 1 : 0);
    }
  }
  // Inputs that are all refused at once would test nothing.
  EXPECT_GT(measured, 100);
}

}  // namespace
}  // namespace quoin::test
