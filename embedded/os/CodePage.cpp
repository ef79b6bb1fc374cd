#include "embedded/os/CodePage.h"

#include <iconv.h>

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>

#include "embedded/os/Utf8.h"

namespace quoin::os {
namespace {

constexpr char32_t kEscapeFirst = 0xDC80;
constexpr char32_t kEscapeLast = 0xDCFF;
constexpr unsigned kFirstHighByte = 0x80;
constexpr const char* kDefaultConverter = "CP1252";
constexpr char32_t kCharactersInPlane = 0x10000;

/// One direction of the system's converter; closed at the end.
class Converter {
 public:
  Converter(const char* to, const char* from) : m_handle(iconv_open(to, from)) {}
  ~Converter() {
    if (isOpen()) {
      iconv_close(m_handle);
    }
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  bool isOpen() const { return m_handle != reinterpret_cast<iconv_t>(-1); }
  /// Converts a whole sequence; empty when it is none.
  std::string convert(std::string from) {
    char out[16];
    char* inAt = from.data();
    std::size_t inLeft = from.size();
    char* outAt = out;
    std::size_t outLeft = sizeof out;
    iconv(m_handle, nullptr, nullptr, nullptr, nullptr);
    const std::size_t result = iconv(m_handle, &inAt, &inLeft, &outAt, &outLeft);
    // A positive result counts characters that were only approximated.
    if (result != 0 || inLeft != 0) {
      return {};
    }
    // Some double-byte converters hold a character back for a combining one to follow.
    if (iconv(m_handle, nullptr, nullptr, &outAt, &outLeft) == static_cast<std::size_t>(-1)) {
      return {};
    }
    return std::string(out, sizeof out - outLeft);
  }

 private:
  iconv_t m_handle;
};

unsigned byteOf(char character) {
  return static_cast<unsigned char>(character);
}

/// What stands in text for a byte that means nothing.
wchar_t escapeOf(unsigned byte) {
  return static_cast<wchar_t>(kEscapeFirst + (byte - kFirstHighByte));
}

/// A name without the signs that spellings differ in, in capitals: "ISO8859-1" -> "ISO88591".
std::string plainName(std::string_view name) {
  std::string plain;
  for (const char c : name) {
    if (c >= 'a' && c <= 'z') {
      plain.push_back(static_cast<char>(c - 'a' + 'A'));
    } else if ((c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) {
      plain.push_back(c);
    }
  }
  return plain;
}

/// Plain names whose converter is called otherwise than the prefixes below tell.
const std::map<std::string, const char*, std::less<>>& namedConverters() {
  static const std::map<std::string, const char*, std::less<>> names = {{"UTF8", "UTF-8"},
                                                                        {"ANSI1361", "JOHAB"},
                                                                        {"JOHAB", "JOHAB"},
                                                                        {"KSC5601", "CP949"},
                                                                        {"BIG5", "CP950"},
                                                                        {"GB2312", "GBK"},
                                                                        {"GBK", "GBK"},
                                                                        {"ANSI936", "GBK"},
                                                                        {"DOS936", "GBK"},
                                                                        {"DOS932", "CP932"},
                                                                        {"SHIFTJIS", "CP932"},
                                                                        {"SJIS", "CP932"},
                                                                        {"MACINTOSH", "MACINTOSH"},
                                                                        {"MACROMAN", "MACINTOSH"},
                                                                        {"MAC", "MACINTOSH"},
                                                                        {"ASCII", "CP1252"},
                                                                        {"USASCII", "CP1252"},
                                                                        {"ANSI", "CP1252"},
                                                                        {"GB18030", "GBK"},
                                                                        {"EUCCN", "GBK"},
                                                                        {"EUCKR", "CP949"},
                                                                        {"UHC", "CP949"},
                                                                        {"KOI8R", "KOI8-R"},
                                                                        {"LATIN1", "ISO-8859-1"},
                                                                        {"LATIN2", "ISO-8859-2"},
                                                                        {"CP65001", "UTF-8"},
                                                                        {"ANSI65001", "UTF-8"}};
  return names;
}

/// What the system's converter calls the code page; empty for a name nobody knows.
std::string converterNameOf(std::string_view name) {
  const std::string plain = plainName(name);
  if (const auto found = namedConverters().find(plain); found != namedConverters().end()) {
    return found->second;
  }
  if (!plain.empty() && plain.find_first_not_of("0123456789") == std::string::npos) {
    return converterNameOf("CP" + plain);  // "936"
  }
  struct Prefix {
    std::string_view text;
    const char* converter;
  };
  for (const Prefix& prefix : {Prefix{"ANSI", "CP"}, Prefix{"DOS", "CP"}, Prefix{"CP", "CP"},
                               Prefix{"WINDOWS", "CP"}, Prefix{"ISO8859", "ISO-8859-"}}) {
    if (plain.starts_with(prefix.text)) {
      const std::string number = plain.substr(prefix.text.size());
      const bool isNumber =
          !number.empty() && number.find_first_not_of("0123456789") == std::string::npos;
      return isNumber ? prefix.converter + number : std::string{};
    }
  }
  return {};
}

}  // namespace

CodePage::CodePage(const char* converterName) : m_bytes(kCharactersInPlane, 0) {
  if (std::string_view(converterName) == "UTF-8") {
    m_isUtf8 = true;
    return;
  }
  Converter toCharacters("UTF-32LE", converterName);
  Converter toBytes(converterName, "UTF-32LE");
  if (!toCharacters.isOpen() || !toBytes.isOpen()) {
    return;  // every high byte is unknown then, and survives as an escape
  }
  const auto characterIn = [](const std::string& utf32) -> char32_t {
    if (utf32.size() != 4) {
      return 0;  // none, or a base with a combining mark
    }
    const char32_t character = byteOf(utf32[0]) | byteOf(utf32[1]) << 8 | byteOf(utf32[2]) << 16;
    return character < kCharactersInPlane ? character : 0;
  };
  for (unsigned lead = kFirstHighByte; lead < 256; ++lead) {
    const std::string one(1, static_cast<char>(lead));
    if (const char32_t character = characterIn(toCharacters.convert(one)); character >= 0x80) {
      m_single[lead - kFirstHighByte] = static_cast<std::uint16_t>(character);
      if (m_bytes[character] == 0) {
        m_bytes[character] = static_cast<std::uint16_t>(lead);
      }
      continue;
    }
    for (unsigned trail = 0x30; trail < 256; ++trail) {
      const std::string two = one + static_cast<char>(trail);
      const std::string utf32 = toCharacters.convert(two);
      const char32_t character = characterIn(utf32);
      if (character < 0x80) {
        continue;
      }
      const std::string back = toBytes.convert(utf32);
      const unsigned preferred =
          back.size() == 2 ? byteOf(back[0]) << 8 | byteOf(back[1]) : lead << 8 | trail;
      addDouble(lead, trail, character, static_cast<std::uint16_t>(preferred));
    }
  }
}

void CodePage::addDouble(unsigned lead, unsigned trail, char32_t character,
                         std::uint16_t preferred) {
  if (m_double.empty()) {
    m_double.assign(std::size_t{128} * 256, 0);
  }
  m_double[std::size_t{lead - kFirstHighByte} * 256 + trail] =
      static_cast<std::uint16_t>(character);
  m_isLead[lead - kFirstHighByte] = true;
  m_bytes[character] = preferred;
}

const CodePage& CodePage::named(std::string_view name) {
  // Calls alternate between the drawing's and that of new records, and opening a converter only to
  // see whether there is one takes its time.
  thread_local std::map<std::string, const CodePage*, std::less<>> pages;
  auto found = pages.find(name);
  if (found == pages.end()) {
    const std::string converter = isKnown(name) ? converterNameOf(name) : kDefaultConverter;
    found = pages.emplace(name, &shared(converter)).first;
  }
  return *found->second;
}

const CodePage& CodePage::shared(const std::string& converterName) {
  static std::mutex guard;
  static std::map<std::string, std::unique_ptr<const CodePage>> pages;
  const std::lock_guard lock(guard);
  std::unique_ptr<const CodePage>& page = pages[converterName];
  if (!page) {
    page.reset(new CodePage(converterName.c_str()));
  }
  return *page;
}

bool CodePage::isKnown(std::string_view name) {
  const std::string converter = converterNameOf(name);
  return converter == "UTF-8" ||
         (!converter.empty() && Converter("UTF-32LE", converter.c_str()).isOpen());
}

std::wstring CodePage::decode(std::string_view bytes) const {
  if (m_isUtf8) {
    return fromUtf8(bytes);
  }
  std::wstring text;
  text.reserve(bytes.size());
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    const unsigned byte = byteOf(bytes[at]);
    if (byte < kFirstHighByte) {
      text.push_back(static_cast<wchar_t>(byte));
      continue;
    }
    if (const std::uint16_t single = m_single[byte - kFirstHighByte]; single != 0) {
      text.push_back(static_cast<wchar_t>(single));
      continue;
    }
    if (at + 1 < bytes.size()) {
      const auto code = static_cast<std::uint16_t>(byte << 8 | byteOf(bytes[at + 1]));
      if (const char32_t character = characterOf(code); character != 0) {
        text.push_back(static_cast<wchar_t>(character));
        ++at;
        continue;
      }
    }
    text.push_back(escapeOf(byte));
    // A pair that forms no character is two bytes that mean nothing, so that its second half does
    // not pair with a letter behind it. An ASCII byte is never half of such a pair (WHATWG
    // Encoding Standard, "legacy multi-byte encodings").
    const bool isLead = !m_double.empty() && m_isLead[byte - kFirstHighByte];
    if (isLead && at + 1 < bytes.size() && byteOf(bytes[at + 1]) >= kFirstHighByte) {
      text.push_back(escapeOf(byteOf(bytes[++at])));
    }
  }
  return text;
}

bool CodePage::encode(char32_t character, std::string& bytes) const {
  if (character >= kEscapeFirst && character <= kEscapeLast) {
    bytes.push_back(static_cast<char>(character - kEscapeFirst + kFirstHighByte));
    return true;
  }
  if (character < 0x80) {
    bytes.push_back(static_cast<char>(character));
    return true;
  }
  if (m_isUtf8) {
    std::wstring wide;
    if (sizeof(wchar_t) == 2 && character >= kCharactersInPlane) {
      const char32_t rest = character - kCharactersInPlane;
      wide.push_back(static_cast<wchar_t>(0xD800 + (rest >> 10)));
      wide.push_back(static_cast<wchar_t>(0xDC00 + (rest & 0x3FF)));
    } else {
      wide.push_back(static_cast<wchar_t>(character));
    }
    bytes += toUtf8(wide);
    return true;
  }
  const std::uint16_t code = character < kCharactersInPlane ? m_bytes[character] : 0;
  if (code == 0) {
    return false;
  }
  if (code > 0xFF) {
    bytes.push_back(static_cast<char>(code >> 8));
  }
  bytes.push_back(static_cast<char>(code & 0xFF));
  return true;
}

char32_t CodePage::characterOf(std::uint16_t doubleByte) const {
  const unsigned lead = doubleByte >> 8;
  if (m_double.empty() || lead < kFirstHighByte) {
    return 0;
  }
  return m_double[std::size_t{lead - kFirstHighByte} * 256 + (doubleByte & 0xFF)];
}

}  // namespace quoin::os
