#include "commands/NearestWord.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace quoin::commands {

namespace {

/// How many letters must be put in, taken out or changed to make one word of the other.
std::size_t editDistance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= from.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i);
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const std::size_t changed = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, changed});
    }
  }
  return row.back();
}

}  // namespace

std::string nearestWord(std::string_view word, const std::vector<std::string>& words) {
  constexpr std::size_t kMostChanges = 2;  // more letters apart is another word
  std::string nearest;
  std::size_t least = std::min(kMostChanges, word.size() / 2) + 1;
  for (const std::string& candidate : words) {
    if (const std::size_t distance = editDistance(word, candidate); distance < least) {
      least = distance;
      nearest = candidate;
    }
  }
  return nearest;
}

std::string suggestion(std::string_view word, const std::vector<std::string>& words) {
  const std::string nearest = nearestWord(word, words);
  return nearest.empty() ? "" : ", did you mean " + nearest + "?";
}

}  // namespace quoin::commands
