#include "embedded/rx/WideFormat.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <string_view>

#include "embedded/os/Utf8.h"

namespace quoin::rx {
namespace {

enum class Size { Default, Char, Short, Long, LongLong, Pointer, LongDouble };

/// One conversion: "%-*.*ls" taken apart, its star arguments already read.
struct Conversion {
  std::string flags;
  int width = 0;
  int precision = -1;
  Size size = Size::Default;
  wchar_t letter = 0;
};

/// The arguments in a structure, so that a reference to them can be handed on.
struct Arguments {
  std::va_list list;
};

int readNumber(const wchar_t*& at) {
  constexpr int kMost = 1 << 20;  // no width or precision that anybody means is above it
  int number = 0;
  for (; *at >= L'0' && *at <= L'9'; ++at) {
    number = std::min(number * 10 + static_cast<int>(*at - L'0'), kMost);
  }
  return number;
}

Size readSize(const wchar_t*& at) {
  const std::wstring_view rest(at);
  const struct {
    std::wstring_view text;
    Size size;
  } prefixes[] = {{L"I64", Size::LongLong}, {L"I32", Size::Default}, {L"I", Size::Pointer},
                  {L"ll", Size::LongLong},  {L"l", Size::Long},      {L"w", Size::Long},
                  {L"hh", Size::Char},      {L"h", Size::Short},     {L"j", Size::LongLong},
                  {L"z", Size::Pointer},    {L"t", Size::Pointer},   {L"L", Size::LongDouble}};
  for (const auto& prefix : prefixes) {
    if (rest.starts_with(prefix.text)) {
      at += prefix.text.size();
      return prefix.size;
    }
  }
  return Size::Default;
}

/// Reads behind the '%'; the letter stays 0 at the end of the format.
Conversion readConversion(const wchar_t*& at, Arguments& arguments) {
  Conversion conversion;
  while (*at != 0 && std::wstring_view(L"-+ #0").find(*at) != std::wstring_view::npos) {
    conversion.flags.push_back(static_cast<char>(*at++));
  }
  if (*at == L'*') {
    ++at;
    conversion.width = va_arg(arguments.list, int);
    if (conversion.width < 0) {
      conversion.flags.push_back('-');
      conversion.width = -conversion.width;
    }
  } else {
    conversion.width = readNumber(at);
  }
  if (*at == L'.') {
    ++at;
    if (*at == L'*') {
      ++at;
      conversion.precision = std::max(-1, va_arg(arguments.list, int));
    } else {
      conversion.precision = readNumber(at);
    }
  }
  conversion.size = readSize(at);
  conversion.letter = *at;
  if (*at != 0) {
    ++at;
  }
  return conversion;
}

/// A number through the C library, whose output is plain ASCII.
template <class T>
void appendNumber(std::wstring& out, const Conversion& conversion, const char* size, T value) {
  std::string format = "%" + conversion.flags;
  if (conversion.width > 0) {
    format += std::to_string(conversion.width);
  }
  if (conversion.precision >= 0) {
    format += "." + std::to_string(conversion.precision);
  }
  format += size;
  format += static_cast<char>(conversion.letter);
  const int length = std::snprintf(nullptr, 0, format.c_str(), value);
  if (length < 0) {
    return;
  }
  std::string text(static_cast<std::size_t>(length) + 1, '\0');
  std::snprintf(text.data(), text.size(), format.c_str(), value);
  text.pop_back();
  out.append(text.begin(), text.end());
}

void appendSigned(std::wstring& out, const Conversion& conversion, Arguments& arguments) {
  switch (conversion.size) {
    case Size::Long:
      return appendNumber(out, conversion, "l", va_arg(arguments.list, long));
    case Size::LongLong:
      return appendNumber(out, conversion, "ll", va_arg(arguments.list, long long));
    case Size::Pointer:
      return appendNumber(out, conversion, "t", va_arg(arguments.list, std::ptrdiff_t));
    case Size::Char:
      return appendNumber(out, conversion, "hh", va_arg(arguments.list, int));
    case Size::Short:
      return appendNumber(out, conversion, "h", va_arg(arguments.list, int));
    default:
      return appendNumber(out, conversion, "", va_arg(arguments.list, int));
  }
}

void appendUnsigned(std::wstring& out, const Conversion& conversion, Arguments& arguments) {
  switch (conversion.size) {
    case Size::Long:
      return appendNumber(out, conversion, "l", va_arg(arguments.list, unsigned long));
    case Size::LongLong:
      return appendNumber(out, conversion, "ll", va_arg(arguments.list, unsigned long long));
    case Size::Pointer:
      return appendNumber(out, conversion, "z", va_arg(arguments.list, std::size_t));
    case Size::Char:
      return appendNumber(out, conversion, "hh", va_arg(arguments.list, unsigned int));
    case Size::Short:
      return appendNumber(out, conversion, "h", va_arg(arguments.list, unsigned int));
    default:
      return appendNumber(out, conversion, "", va_arg(arguments.list, unsigned int));
  }
}

void appendFloating(std::wstring& out, const Conversion& conversion, Arguments& arguments) {
  if (conversion.size == Size::LongDouble) {
    appendNumber(out, conversion, "L", va_arg(arguments.list, long double));
  } else {
    appendNumber(out, conversion, "", va_arg(arguments.list, double));
  }
}

void appendPadded(std::wstring& out, const Conversion& conversion, std::wstring_view text) {
  const auto width = static_cast<std::size_t>(conversion.width);
  const std::size_t padding = width > text.size() ? width - text.size() : 0;
  const bool left = conversion.flags.find('-') != std::string::npos;
  out.append(left ? 0 : padding, L' ');
  out.append(text);
  out.append(left ? padding : 0, L' ');
}

/// The characters of a text up to its zero or to the precision, whichever comes first: a
/// text that the precision cuts needs no zero.
template <class Character>
std::basic_string_view<Character> boundedText(const Character* text, int precision) {
  std::size_t length = 0;
  const std::size_t most =
      precision < 0 ? static_cast<std::size_t>(-1) : static_cast<std::size_t>(precision);
  while (length < most && text[length] != 0) {
    ++length;
  }
  return {text, length};
}

void appendText(std::wstring& out, const Conversion& conversion, Arguments& arguments) {
  const bool narrow = conversion.size == Size::Short ||
                      (conversion.letter == L'S' && conversion.size == Size::Default);
  if (narrow) {
    const char* text = va_arg(arguments.list, const char*);
    const std::string_view bytes = boundedText(text ? text : "(null)", conversion.precision);
    appendPadded(out, conversion, os::fromUtf8(bytes));
  } else {
    const wchar_t* text = va_arg(arguments.list, const wchar_t*);
    appendPadded(out, conversion, boundedText(text ? text : L"(null)", conversion.precision));
  }
}

void appendCharacter(std::wstring& out, const Conversion& conversion, Arguments& arguments) {
  // A wide character arrives as wint_t where that is wider than int, else promoted to int.
  const wchar_t character = static_cast<wchar_t>(va_arg(arguments.list, int));
  appendPadded(out, conversion, std::wstring_view(&character, 1));
}

}  // namespace

std::wstring formatWide(const wchar_t* format, std::va_list list) {
  std::wstring out;
  Arguments arguments;
  va_copy(arguments.list, list);
  const wchar_t* at = format;
  while (*at != 0) {
    if (*at != L'%') {
      out.push_back(*at++);
      continue;
    }
    const wchar_t* const begin = at++;
    const Conversion conversion = readConversion(at, arguments);
    switch (conversion.letter) {
      case L'%':
        out.push_back(L'%');
        break;
      case L'd':
      case L'i':
        appendSigned(out, conversion, arguments);
        break;
      case L'u':
      case L'o':
      case L'x':
      case L'X':
        appendUnsigned(out, conversion, arguments);
        break;
      case L'e':
      case L'E':
      case L'f':
      case L'F':
      case L'g':
      case L'G':
      case L'a':
      case L'A':
        appendFloating(out, conversion, arguments);
        break;
      case L's':
      case L'S':
        appendText(out, conversion, arguments);
        break;
      case L'c':
      case L'C':
        appendCharacter(out, conversion, arguments);
        break;
      case L'p':
        appendNumber(out, conversion, "", va_arg(arguments.list, void*));
        break;
      default:
        out.append(begin, at);
    }
  }
  va_end(arguments.list);
  return out;
}

}  // namespace quoin::rx
