// The corpus of readable cases in tests/corpus: see the README there for the format. Whoever
// wants geometry to start from (unit tests, fuzzers, benchmarks) reads it through here.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "support/GeometryText.h"

namespace quoin::test {

struct CorpusCase {
  std::string place;  // file and line
  std::string name;
  std::string why;
  std::string algorithm;
  double scale = 1.0;
  std::vector<std::pair<std::string, std::string>> input;  // key and value, in order
  std::vector<std::string> expected;

  /// What a test calls it where it lists its cases.
  friend std::ostream& operator<<(std::ostream& out, const CorpusCase& entry) {
    return out << entry.place;
  }
};

namespace detail {

/// Splits "key   value" at the first run of spaces.
inline std::pair<std::string, std::string> keyAndValue(const std::string& line) {
  const std::size_t space = std::min(line.find(' '), line.size());
  const std::size_t value = std::min(line.find_first_not_of(' ', space), line.size());
  return {line.substr(0, space), line.substr(value)};
}

inline void takeCorpusLine(CorpusCase& entry, bool& inExpectation, const std::string& line) {
  if (line == "=>") {
    inExpectation = true;
    return;
  }
  if (inExpectation) {
    entry.expected.push_back(line);
    return;
  }
  auto [key, value] = keyAndValue(line);
  if (key == "case") {
    entry.name = value;
  } else if (key == "why") {
    entry.why = value;
  } else if (key == "do") {
    entry.algorithm = value;
  } else if (key == "scale") {
    std::string_view rest = value;
    entry.scale = takeNumber(rest);
  } else {
    entry.input.emplace_back(std::move(key), std::move(value));
  }
}

}  // namespace detail

/// The cases of one file: blocks of lines with blank lines between them.
/// Fails:  throws std::runtime_error for a block without name, reason, algorithm or "=>", and
///         for a file without a case.
inline std::vector<CorpusCase> readCorpusFile(const std::filesystem::path& file) {
  std::ifstream stream(file);
  std::vector<CorpusCase> cases;
  CorpusCase entry;
  bool inExpectation = false;
  int number = 0;
  const auto finish = [&] {
    if (entry.place.empty()) {
      return;
    }
    if (entry.name.empty() || entry.why.empty() || entry.algorithm.empty() || !inExpectation) {
      throw std::runtime_error(entry.place + ": needs case, why, do and =>");
    }
    cases.push_back(std::exchange(entry, {}));
    inExpectation = false;
  };
  for (std::string line; std::getline(stream, line);) {
    ++number;
    if (line.empty()) {
      finish();
    } else if (line.front() != '#') {
      if (entry.place.empty()) {
        entry.place = file.filename().string() + ":" + std::to_string(number);
      }
      detail::takeCorpusLine(entry, inExpectation, line);
    }
  }
  finish();
  if (cases.empty()) {
    throw std::runtime_error(file.string() + " holds no case");
  }
  return cases;
}

inline std::filesystem::path corpusFolder() {
  return std::filesystem::path(QUOIN_SOURCE_DIR) / "tests" / "corpus";
}

/// All cases of one folder of the corpus, file by file in the order of their names; none for a
/// folder without files.
inline std::vector<CorpusCase> readCorpusFolder(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& item : std::filesystem::directory_iterator(folder)) {
    if (item.path().extension() == ".txt") {
      files.push_back(item.path());
    }
  }
  std::sort(files.begin(), files.end());
  std::vector<CorpusCase> cases;
  for (const auto& file : files) {
    const std::vector<CorpusCase> more = readCorpusFile(file);
    cases.insert(cases.end(), more.begin(), more.end());
  }
  return cases;
}

/// Every case that holds: all folders but the one of known failures.
/// Fails:  throws std::runtime_error when there is none, so that no test passes on nothing.
inline std::vector<CorpusCase> readCorpus(const std::filesystem::path& root = corpusFolder()) {
  std::vector<CorpusCase> cases;
  for (const char* folder : {"general", "degenerate", "issue"}) {
    const std::vector<CorpusCase> more = readCorpusFolder(root / folder);
    cases.insert(cases.end(), more.begin(), more.end());
  }
  if (cases.empty()) {
    throw std::runtime_error("the corpus in " + root.string() + " is empty");
  }
  return cases;
}

}  // namespace quoin::test
