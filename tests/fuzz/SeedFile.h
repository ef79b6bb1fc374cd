// First inputs of a fuzzer as one text file: a line for each, a name and the bytes in hexadecimal.
// ./dev fuzz makes a folder of files of it. The tests make them and check that they are up to date.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <string_view>

#include "fuzz/DxfProbe.h"

namespace quoin::test {

using Seeds = std::map<std::string, std::string>;  // by name

inline std::string hexOf(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  for (const char byte : bytes) {
    text += kDigits[static_cast<unsigned char>(byte) >> 4];
    text += kDigits[static_cast<unsigned char>(byte) & 15];
  }
  return text;
}

inline std::string pathOfSeeds(const std::string& file) {
  return std::string(QUOIN_SOURCE_DIR) + "/tests/fuzz/corpus/" + file;
}

/// Compares the file with what it should be, or writes it.
inline void checkSeeds(const std::string& file, const Seeds& seeds) {
  std::string text;
  for (const auto& [name, input] : seeds) {
    text += name + ' ' + hexOf(input) + '\n';
  }
  if (std::getenv("QUOIN_WRITE_SEEDS") != nullptr) {
    std::ofstream(pathOfSeeds(file)) << text;
    return;
  }
  std::ifstream written(pathOfSeeds(file));
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(written), {}) == text, true)
      << "QUOIN_WRITE_SEEDS=1 build/dev/bin/test_fuzz --gtest_filter='*Seeds*' writes " << file;
}

/// Probes each seed and so many of its mutations; counts what they led to.
inline std::map<ProbeResult, int> probeSeeds(const Seeds& seeds, unsigned mutations,
                                             ProbeResult (*probe)(std::string_view)) {
  std::map<ProbeResult, int> results;
  for (const auto& [name, seed] : seeds) {
    std::mt19937 random(static_cast<unsigned>(seed.size()));
    for (unsigned number = 0; number <= mutations; ++number) {
      std::string input = seed;
      for (std::size_t changes = number == 0 ? 0 : 1 + random() % 3; changes != 0; --changes) {
        const std::size_t at = 1 + random() % (input.size() - 1);
        const auto flipped = static_cast<unsigned char>(input[at]) ^ 1U << random() % 8;
        input[at] = static_cast<char>(random() % 2 == 0 ? random() : flipped);
      }
      try {
        const ProbeResult result = probe(input);
        EXPECT_TRUE(number != 0 || result == ProbeResult::Loaded) << name;
        ++results[result];
      } catch (const std::exception& error) {
        ADD_FAILURE() << name << ", mutation " << number << ": " << error.what()
                      << "; the input is " << hexOf(input);
      }
    }
  }
  return results;
}

}  // namespace quoin::test
