#include "embedded/dwg/records/TextCoding.h"

#include <cstdint>
#include <cstdio>

#include "embedded/os/CodePage.h"

namespace quoin::dwg {
namespace {

constexpr std::uint32_t kBeyond = 0x10000;  // the first character that takes a pair
constexpr std::uint32_t kFirstHalf = 0xD800;
constexpr std::uint32_t kSecondHalf = 0xDC00;
constexpr std::uint32_t kBehindHalves = 0xE000;

bool isHalf(char32_t unit, std::uint32_t begin, std::uint32_t end) {
  return unit >= begin && unit < end;
}

}  // namespace

std::wstring textOfUnits(std::u16string_view units) {
  std::wstring text;
  for (std::size_t i = 0; i < units.size(); ++i) {
    std::uint32_t character = units[i];
    const bool isPair = isHalf(units[i], kFirstHalf, kSecondHalf) && i + 1 < units.size() &&
                        isHalf(units[i + 1], kSecondHalf, kBehindHalves);
    if (isPair) {
      character = kBeyond + ((character - kFirstHalf) << 10) + (units[++i] - kSecondHalf);
    }
    text += static_cast<wchar_t>(character);
  }
  return text;
}

std::u16string unitsOf(std::wstring_view text) {
  std::u16string units;
  for (const wchar_t character : text) {
    const auto code = static_cast<std::uint32_t>(character);
    if (code < kBeyond) {
      units += static_cast<char16_t>(code);
    } else {
      units += static_cast<char16_t>(kFirstHalf + ((code - kBeyond) >> 10));
      units += static_cast<char16_t>(kSecondHalf + ((code - kBeyond) & 0x3FF));
    }
  }
  return units;
}

std::string bytesOfText(std::wstring_view text, const os::CodePage& codePage) {
  std::string bytes;
  for (const wchar_t character : text) {
    const auto code = static_cast<std::uint32_t>(character);
    if (codePage.encode(code, bytes)) {
      continue;
    }
    // The escape has four digits: beyond them it takes one for each half.
    for (const char16_t unit : unitsOf(std::wstring_view(&character, 1))) {
      char escape[16];
      std::snprintf(escape, sizeof escape, "\\U+%04X", static_cast<unsigned>(unit));
      bytes += escape;
    }
  }
  return bytes;
}

}  // namespace quoin::dwg
