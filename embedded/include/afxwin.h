// The part of the host's application framework that modules are written against: its wide
// string class and the few basic types of its signatures. Format follows the host's wide
// rules on every platform: %s and %c take wide text, %S, %C and %hs narrow text (UTF-8).
// Letter case and white space never depend on the locale.
#pragma once

#include <compare>
#include <cstdarg>
#include <cstdint>
#include <string>

#include "hostapi.h"

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#else
using BOOL = int;
using BYTE = unsigned char;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = unsigned int;
using LPVOID = void*;
using TCHAR = wchar_t;
using LPCTSTR = const wchar_t*;
using LPTSTR = wchar_t*;
struct HINSTANCE__;
using HINSTANCE = HINSTANCE__*;
using HMODULE = HINSTANCE;
#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif
#define APIENTRY
#endif

/// A wide text value. Positions and lengths count characters; positions out of range are
/// clamped in Left, Mid and Right, and searches return -1 when they find nothing.
class HOST_API CString {
 public:
  CString() = default;
  CString(const wchar_t* text);  // null: empty
  CString(const char* text);     // UTF-8; null: empty
  CString(const wchar_t* text, int length);
  explicit CString(wchar_t character, int count = 1);
  CString(const CString&) = default;
  CString(CString&&) noexcept = default;
  CString& operator=(const CString&) = default;
  CString& operator=(CString&&) noexcept = default;
  CString& operator=(const wchar_t* text);
  CString& operator=(const char* text);
  ~CString() = default;

  // --- reading ------------------------------------------------------------------------
  operator const wchar_t*() const { return m_text.c_str(); }
  const wchar_t* GetString() const { return m_text.c_str(); }
  int GetLength() const { return static_cast<int>(m_text.size()); }
  bool IsEmpty() const { return m_text.empty(); }
  /// 0 <= index < GetLength().
  wchar_t GetAt(int index) const { return m_text[static_cast<std::size_t>(index)]; }
  wchar_t operator[](int index) const { return GetAt(index); }

  // --- comparing ----------------------------------------------------------------------
  /// Negative, zero or positive, by character codes; a null text counts as empty.
  int Compare(const wchar_t* other) const;
  /// As Compare, with the letters A-Z equal to a-z.
  int CompareNoCase(const wchar_t* other) const;
  friend bool operator==(const CString& a, const CString& b) { return a.m_text == b.m_text; }
  friend bool operator==(const CString& a, const wchar_t* b) { return a.Compare(b) == 0; }
  friend std::strong_ordering operator<=>(const CString& a, const CString& b) {
    return a.m_text.compare(b.m_text) <=> 0;
  }
  friend std::strong_ordering operator<=>(const CString& a, const wchar_t* b) {
    return a.Compare(b) <=> 0;
  }

  // --- searching and cutting ----------------------------------------------------------
  int Find(wchar_t character, int start = 0) const;
  int Find(const wchar_t* part, int start = 0) const;
  /// The last place of a character.
  int ReverseFind(wchar_t character) const;
  CString Left(int count) const;
  CString Mid(int first) const;
  CString Mid(int first, int count) const;
  CString Right(int count) const;

  // --- changing -----------------------------------------------------------------------
  void Empty() { m_text.clear(); }
  void SetAt(int index, wchar_t character) { m_text[static_cast<std::size_t>(index)] = character; }
  CString& operator+=(const CString& other);
  CString& operator+=(const wchar_t* other);
  CString& operator+=(const char* other);
  CString& operator+=(wchar_t character);
  void Append(const wchar_t* other) { *this += other; }
  void AppendChar(wchar_t character) { *this += character; }
  /// White space (Unicode's, the ideographic space included) off both ends or one.
  CString& Trim();
  CString& TrimLeft();
  CString& TrimRight();
  /// The letters a-z, A-Z; others stay.
  CString& MakeUpper();
  CString& MakeLower();
  /// Replaces every occurrence, from left to right; returns how many.
  int Replace(wchar_t from, wchar_t to);
  int Replace(const wchar_t* from, const wchar_t* to);
  void Format(const wchar_t* format, ...);
  void FormatV(const wchar_t* format, std::va_list arguments);
  void AppendFormat(const wchar_t* format, ...);

  /// A writable buffer of at least `length` characters and a terminating zero, valid until
  /// ReleaseBuffer, which takes over the text up to its first zero or to `length`.
  wchar_t* GetBuffer(int length = 0);
  void ReleaseBuffer(int length = -1);

 private:
  std::wstring m_text;
};

HOST_API CString operator+(const CString& a, const CString& b);
HOST_API CString operator+(const CString& a, const wchar_t* b);
HOST_API CString operator+(const wchar_t* a, const CString& b);
HOST_API CString operator+(const CString& a, wchar_t b);
HOST_API CString operator+(wchar_t a, const CString& b);
