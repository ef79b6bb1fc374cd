// What answers the prompts of a command where nobody sits before the editor: the words that it
// was started with, one for each prompt, in their order.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "hostapi.h"

namespace quoin::ed {

class HOST_API CommandInput {
 public:
  CommandInput();
  ~CommandInput();
  CommandInput(const CommandInput&) = delete;
  CommandInput& operator=(const CommandInput&) = delete;

  /// Takes the words for a command that is about to begin, and forgets the last one's.
  void begin(std::vector<std::wstring> words);

  /// The word that answers a prompt; null, and a failure, where none is left.
  const std::wstring* next(const std::wstring& prompt);
  /// Notes as a failure that a word is not what the prompt wants: "a whole number".
  void refuse(const std::wstring& prompt, const std::wstring& word, const wchar_t* wanted);
  /// All words; none of them is unused then.
  const std::vector<std::wstring>& all();

  /// Why the first prompt that went without an answer did so; empty for none.
  const std::wstring& failure() const { return m_failure; }
  /// The words that nobody asked for.
  std::vector<std::wstring> unused() const;

 private:
  void fail(std::wstring cause);

  std::vector<std::wstring> m_words;
  std::size_t m_used = 0;
  std::wstring m_failure;
};

}  // namespace quoin::ed
