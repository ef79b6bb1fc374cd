// The word that somebody may have meant who mistyped it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quoin::commands {

/// The nearest of the words, the first of equals; empty where each is more than two letters away,
/// or more than half of the word.
std::string nearestWord(std::string_view word, const std::vector<std::string>& words);
/// ", did you mean --layer?", or nothing.
std::string suggestion(std::string_view word, const std::vector<std::string>& words);

}  // namespace quoin::commands
