#include <algorithm>
#include <cwchar>
#include <string_view>

#include "afxwin.h"
#include "embedded/os/Utf8.h"
#include "embedded/rx/WideFormat.h"

namespace {

std::wstring_view viewOf(const wchar_t* text) {
  return text ? text : L"";
}
std::string_view viewOf(const char* text) {
  return text ? text : "";
}

wchar_t lowerLetter(wchar_t c) {
  return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}
wchar_t upperLetter(wchar_t c) {
  return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
}

// The characters with Unicode's White_Space property, whatever the locale.
constexpr std::wstring_view kWhiteSpace =
    L"\t\n\v\f\r \x0085\x00A0\x1680\x2000\x2001\x2002\x2003\x2004\x2005\x2006\x2007\x2008\x2009"
    L"\x200A\x2028\x2029\x202F\x205F\x3000";

int positionOrNone(std::size_t position) {
  return position == std::wstring::npos ? -1 : static_cast<int>(position);
}

std::size_t clampCount(int count) {
  return static_cast<std::size_t>(std::max(count, 0));
}

}  // namespace

CString::CString(const wchar_t* text) : m_text(viewOf(text)) {}
CString::CString(const char* text) : m_text(quoin::os::fromUtf8(viewOf(text))) {}
CString::CString(const wchar_t* text, int length) {
  if (text) {
    m_text.assign(text, clampCount(length));
  }
}
CString::CString(wchar_t character, int count) : m_text(clampCount(count), character) {}

CString& CString::operator=(const wchar_t* text) {
  m_text = viewOf(text);
  return *this;
}
CString& CString::operator=(const char* text) {
  m_text = quoin::os::fromUtf8(viewOf(text));
  return *this;
}

int CString::Compare(const wchar_t* other) const {
  return std::wstring_view(m_text).compare(viewOf(other));
}

int CString::CompareNoCase(const wchar_t* other) const {
  const std::wstring_view right = viewOf(other);
  const std::size_t common = std::min(m_text.size(), right.size());
  for (std::size_t i = 0; i < common; ++i) {
    const wchar_t a = lowerLetter(m_text[i]);
    const wchar_t b = lowerLetter(right[i]);
    if (a != b) {
      return a < b ? -1 : 1;
    }
  }
  return m_text.size() == right.size() ? 0 : (m_text.size() < right.size() ? -1 : 1);
}

int CString::Find(wchar_t character, int start) const {
  return positionOrNone(m_text.find(character, clampCount(start)));
}
int CString::Find(const wchar_t* part, int start) const {
  return positionOrNone(m_text.find(viewOf(part), clampCount(start)));
}
int CString::ReverseFind(wchar_t character) const {
  return positionOrNone(m_text.rfind(character));
}

CString CString::Left(int count) const {
  return Mid(0, count);
}
CString CString::Mid(int first) const {
  return Mid(first, GetLength());
}
CString CString::Mid(int first, int count) const {
  CString part;
  const std::size_t begin = std::min(clampCount(first), m_text.size());
  part.m_text = m_text.substr(begin, clampCount(count));
  return part;
}
CString CString::Right(int count) const {
  return Mid(GetLength() - std::min(std::max(count, 0), GetLength()));
}

CString& CString::operator+=(const CString& other) {
  m_text += other.m_text;
  return *this;
}
CString& CString::operator+=(const wchar_t* other) {
  m_text += viewOf(other);
  return *this;
}
CString& CString::operator+=(const char* other) {
  m_text += quoin::os::fromUtf8(viewOf(other));
  return *this;
}
CString& CString::operator+=(wchar_t character) {
  m_text += character;
  return *this;
}

CString& CString::Trim() {
  return TrimRight().TrimLeft();
}
CString& CString::TrimLeft() {
  m_text.erase(0, std::min(m_text.find_first_not_of(kWhiteSpace), m_text.size()));
  return *this;
}
CString& CString::TrimRight() {
  m_text.erase(m_text.find_last_not_of(kWhiteSpace) + 1);  // npos + 1 is 0
  return *this;
}

CString& CString::MakeUpper() {
  std::transform(m_text.begin(), m_text.end(), m_text.begin(), upperLetter);
  return *this;
}
CString& CString::MakeLower() {
  std::transform(m_text.begin(), m_text.end(), m_text.begin(), lowerLetter);
  return *this;
}

int CString::Replace(wchar_t from, wchar_t to) {
  const auto count = std::count(m_text.begin(), m_text.end(), from);
  std::replace(m_text.begin(), m_text.end(), from, to);
  return static_cast<int>(count);
}
int CString::Replace(const wchar_t* from, const wchar_t* to) {
  const std::wstring_view old = viewOf(from);
  if (old.empty()) {
    return 0;
  }
  int count = 0;
  std::wstring result;
  std::size_t begin = 0;
  for (std::size_t at = m_text.find(old); at != std::wstring::npos; at = m_text.find(old, begin)) {
    result.append(m_text, begin, at - begin);
    result += viewOf(to);
    begin = at + old.size();
    ++count;
  }
  if (count > 0) {
    result.append(m_text, begin);
    m_text = std::move(result);
  }
  return count;
}

void CString::FormatV(const wchar_t* format, std::va_list arguments) {
  m_text = quoin::rx::formatWide(format, arguments);
}
void CString::Format(const wchar_t* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  FormatV(format, arguments);
  va_end(arguments);
}
void CString::AppendFormat(const wchar_t* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  m_text += quoin::rx::formatWide(format, arguments);
  va_end(arguments);
}

wchar_t* CString::GetBuffer(int length) {
  m_text.resize(std::max(m_text.size(), clampCount(length)));
  return m_text.data();
}
void CString::ReleaseBuffer(int length) {
  m_text.resize(length < 0 ? std::wcslen(m_text.c_str()) : static_cast<std::size_t>(length));
}

CString operator+(const CString& a, const CString& b) {
  CString sum(a);
  sum += b;
  return sum;
}
CString operator+(const CString& a, const wchar_t* b) {
  CString sum(a);
  sum += b;
  return sum;
}
CString operator+(const wchar_t* a, const CString& b) {
  return CString(a) += b;
}
CString operator+(const CString& a, wchar_t b) {
  CString sum(a);
  sum += b;
  return sum;
}
CString operator+(wchar_t a, const CString& b) {
  return CString(a) += b;
}
