// AcDbHandle: the number by which a drawing file names an object. It stays the same for the
// object's whole life, across sessions; an AcDbObjectId holds within one session only.
#pragma once

#include <compare>

#include "adesk.h"

class HOST_API AcDbHandle {
 public:
  constexpr AcDbHandle() = default;
  constexpr explicit AcDbHandle(Adesk::UInt64 value) : m_value(value) {}
  /// High and low half.
  constexpr AcDbHandle(Adesk::UInt32 low, Adesk::UInt32 high)
      : m_value((static_cast<Adesk::UInt64>(high) << kHalfBits) | low) {}
  /// Hexadecimal digits as a drawing file spells them; any other text gives the null handle.
  explicit AcDbHandle(const ACHAR* hexText);

  constexpr bool isNull() const { return m_value == 0; }
  constexpr void setNull() { m_value = 0; }
  constexpr Adesk::UInt64 asUInt64() const { return m_value; }
  constexpr operator Adesk::UInt64() const { return m_value; }
  constexpr Adesk::UInt32 low() const { return static_cast<Adesk::UInt32>(m_value); }
  constexpr Adesk::UInt32 high() const { return static_cast<Adesk::UInt32>(m_value >> kHalfBits); }

  /// Room for getIntoAsciiBuffer: 16 digits and the terminating zero.
  static constexpr std::size_t kTextSize = 17;
  /// Upper-case hexadecimal digits without leading zeros ("0" for the null handle).
  /// Fails: returns false, and writes nothing but a terminating zero, when they do not fit.
  bool getIntoAsciiBuffer(ACHAR* buffer, std::size_t bufferSize = kTextSize) const;

  friend constexpr bool operator==(const AcDbHandle& a, const AcDbHandle& b) = default;
  friend constexpr std::strong_ordering operator<=>(const AcDbHandle& a,
                                                    const AcDbHandle& b) = default;

 private:
  static constexpr int kHalfBits = 32;
  Adesk::UInt64 m_value = 0;
};
