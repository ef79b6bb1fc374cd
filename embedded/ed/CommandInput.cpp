#include "embedded/ed/CommandInput.h"

#include <charconv>
#include <cmath>
#include <optional>
#include <utility>

#include "acedads.h"
#include "embedded/ed/Editor.h"
#include "embedded/os/Utf8.h"
#include "hostcommand.h"

namespace quoin::ed {

namespace {

/// A prompt in quotes, without the blanks and line ends around it.
std::wstring quoted(const std::wstring& prompt) {
  constexpr const wchar_t* kBlanks = L" \t\r\n";
  const std::size_t begin = prompt.find_first_not_of(kBlanks);
  return begin == prompt.npos
             ? L"something"
             : L"\"" + prompt.substr(begin, prompt.find_last_not_of(kBlanks) + 1 - begin) + L"\"";
}

}  // namespace

CommandInput::CommandInput() = default;
CommandInput::~CommandInput() = default;

void CommandInput::begin(std::vector<std::wstring> words) {
  m_words = std::move(words);
  m_used = 0;
  m_failure.clear();
}

const std::wstring* CommandInput::next(const std::wstring& prompt) {
  if (m_used < m_words.size()) {
    return &m_words[m_used++];
  }
  fail(L"it asks " + quoted(prompt) + L", and no argument is left to answer that");
  return nullptr;
}

void CommandInput::refuse(const std::wstring& prompt, const std::wstring& word,
                          const wchar_t* wanted) {
  fail(L"it asks " + quoted(prompt) + L", and '" + word + L"' is not " + wanted);
}

const std::vector<std::wstring>& CommandInput::all() {
  m_used = m_words.size();
  return m_words;
}

std::vector<std::wstring> CommandInput::unused() const {
  return {m_words.begin() + static_cast<std::ptrdiff_t>(m_used), m_words.end()};
}

void CommandInput::fail(std::wstring cause) {
  if (m_failure.empty()) {
    m_failure = std::move(cause);
  }
}

}  // namespace quoin::ed

std::vector<std::wstring> hostx::commandArguments() {
  quoin::ed::Editor* const editor = quoin::ed::Editor::current();
  return editor ? editor->commandInput().all() : std::vector<std::wstring>();
}

namespace {

using quoin::ed::Editor;
using quoin::ed::Prompt;
using quoin::ed::PromptReply;
using quoin::ed::PromptRequest;

/// One prompt from its begin to its end, told to the document's reactors. `take` puts a word into
/// the reply; false where it is not what is wanted.
template <class Take>
PromptReply ask(Prompt kind, const ACHAR* prompt, const ads_real* base, const wchar_t* wanted,
                const Take& take) {
  PromptReply reply;
  reply.status = Acad::eError;
  Editor* const editor = Editor::current();
  AcApDocument* const document = editor ? editor->currentDocument() : nullptr;
  if (!document) {
    return reply;
  }
  const AcGePoint3d from =
      base ? AcGePoint3d(base[0], base[1], base[2]) : AcGePoint3d(0.0, 0.0, 0.0);
  PromptRequest request;
  request.text = prompt ? prompt : L"";
  request.basePoint = base ? &from : nullptr;
  editor->prompts(*document).begin(kind, request);
  quoin::ed::CommandInput& input = editor->commandInput();
  if (const std::wstring* const word = input.next(request.text); !word) {
    reply.status = Acad::eCancel;
  } else if (word->empty() && kind != Prompt::String) {
    reply.status = Acad::eNone;
  } else if (take(*word, reply)) {
    reply.status = Acad::eNormal;
  } else {
    input.refuse(request.text, *word, wanted);
  }
  editor->prompts(*document).end(reply);
  return reply;
}

/// The whole word as a number.
template <class Number>
std::optional<Number> numberOf(std::wstring_view word) {
  const std::string text = quoin::os::toUtf8(word);
  const char* const end = text.data() + text.size();
  Number number{};
  const auto taken = std::from_chars(text.data(), end, number);
  if (taken.ec != std::errc() || taken.ptr != end || !std::isfinite(static_cast<double>(number))) {
    return std::nullopt;
  }
  return number;
}

/// "X,Y" or "X,Y,Z".
std::optional<AcGePoint3d> pointOf(std::wstring_view word) {
  double values[3] = {0.0, 0.0, 0.0};
  std::size_t count = 0;
  for (bool isLast = false; !isLast; ++count) {
    const std::size_t comma = word.find(L',');
    isLast = comma == word.npos;
    const std::optional<double> value = numberOf<double>(word.substr(0, comma));
    if (!value || count == std::size(values)) {
      return std::nullopt;
    }
    values[count] = *value;
    word.remove_prefix(isLast ? word.size() : comma + 1);
  }
  return count < 2 ? std::nullopt : std::optional<AcGePoint3d>({values[0], values[1], values[2]});
}

int askNumber(Prompt kind, const ads_real* base, const ACHAR* prompt, ads_real* result) {
  if (!result) {
    return RTERROR;
  }
  const PromptReply reply =
      ask(kind, prompt, base, L"a number", [](const std::wstring& word, PromptReply& answer) {
        const std::optional<double> number = numberOf<double>(word);
        answer.number = number.value_or(0.0);
        return number.has_value();
      });
  if (reply.status == Acad::eNormal) {
    *result = reply.number;
  }
  return reply.status;
}

}  // namespace

int acedGetString(int /*takesBlanks*/, const ACHAR* prompt, ACHAR* result) {
  if (!result) {
    return RTERROR;
  }
  const PromptReply reply = ask(Prompt::String, prompt, nullptr, L"at most 132 letters long",
                                [](const std::wstring& word, PromptReply& answer) {
                                  answer.text = word;
                                  return word.size() <= kMaxStringInput;
                                });
  if (reply.status == Acad::eNormal) {
    // A reactor may have written into the text, not made it longer.
    result[reply.text.copy(result, kMaxStringInput)] = 0;
  }
  return reply.status;
}

int acedGetInt(const ACHAR* prompt, int* result) {
  if (!result) {
    return RTERROR;
  }
  const PromptReply reply = ask(Prompt::Integer, prompt, nullptr, L"a whole number",
                                [](const std::wstring& word, PromptReply& answer) {
                                  const std::optional<int> number = numberOf<int>(word);
                                  answer.integer = number.value_or(0);
                                  return number.has_value();
                                });
  if (reply.status == Acad::eNormal) {
    *result = reply.integer;
  }
  return reply.status;
}

int acedGetReal(const ACHAR* prompt, ads_real* result) {
  return askNumber(Prompt::Real, nullptr, prompt, result);
}

int acedGetDist(const ads_point base, const ACHAR* prompt, ads_real* result) {
  return askNumber(Prompt::Distance, base, prompt, result);
}

int acedGetPoint(const ads_point base, const ACHAR* prompt, ads_point result) {
  if (!result) {
    return RTERROR;
  }
  const PromptReply reply = ask(Prompt::Point, prompt, base, L"a point, X,Y or X,Y,Z",
                                [](const std::wstring& word, PromptReply& answer) {
                                  const std::optional<AcGePoint3d> point = pointOf(word);
                                  answer.point = point.value_or(AcGePoint3d(0.0, 0.0, 0.0));
                                  return point.has_value();
                                });
  if (reply.status == Acad::eNormal) {
    result[0] = reply.point.x;
    result[1] = reply.point.y;
    result[2] = reply.point.z;
  }
  return reply.status;
}
