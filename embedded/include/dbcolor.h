// Colours: AcCmEntityColor is the value that an entity carries (by layer, by block, an index
// of the host's palette, or red-green-blue), AcCmColor the same with the names of a colour
// book. Both are plain values.
#pragma once

#include <string>

#include "acadstrc.h"
#include "adesk.h"

class HOST_API AcCmEntityColor {
 public:
  enum ColorMethod {
    kByLayer = 0xC0,
    kByBlock = 0xC1,
    kByColor = 0xC2,
    kByACI = 0xC3,
    kByPen = 0xC4,
    kForeground = 0xC5,
    kLayerOff = 0xC6,
    kLayerFrozen = 0xC7,
    kNone = 0xC8
  };
  /// Palette indices with a meaning of their own.
  enum ACIcolorMethod {
    kACIbyBlock = 0,
    kACIforeground = 7,
    kACIbyLayer = 256,
    kACIclear = 0,
    kACIstandard = 7,
    kACImaximum = 255,
    kACInone = 257
  };

  /// By layer.
  constexpr AcCmEntityColor() = default;
  constexpr AcCmEntityColor(ColorMethod method) : m_method(method) {}
  constexpr AcCmEntityColor(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue)
      : m_method(kByColor), m_red(red), m_green(green), m_blue(blue) {}

  constexpr ColorMethod colorMethod() const { return m_method; }
  /// Fails: eInvalidInput for a value outside the enumeration.
  Acad::ErrorStatus setColorMethod(ColorMethod method);
  constexpr bool isByColor() const { return m_method == kByColor; }
  constexpr bool isByLayer() const { return m_method == kByLayer; }
  constexpr bool isByBlock() const { return m_method == kByBlock; }
  constexpr bool isByACI() const { return m_method == kByACI; }
  constexpr bool isNone() const { return m_method == kNone; }

  /// 0x00RRGGBB where isByColor().
  constexpr Adesk::UInt32 rgb() const {
    return (Adesk::UInt32{m_red} << 16) | (Adesk::UInt32{m_green} << 8) | m_blue;
  }
  Acad::ErrorStatus setRGB(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue);
  /// The components; those of the palette's colour where isByACI().
  Adesk::UInt8 red() const;
  Adesk::UInt8 green() const;
  Adesk::UInt8 blue() const;

  /// 0 by block, 1-255 palette, 256 by layer, 257 none; for red-green-blue the index of the
  /// palette's nearest colour.
  Adesk::UInt16 colorIndex() const;
  /// Fails: eInvalidInput above 257.
  Acad::ErrorStatus setColorIndex(Adesk::UInt16 index);

  /// The palette index whose colour is nearest (smallest sum of squared differences, the
  /// lower index on ties); 1 to 255.
  static Adesk::UInt8 lookUpACI(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue);
  /// The palette's colour as 0x00RRGGBB; 0 for an index above 255.
  static Adesk::UInt32 lookUpRGB(Adesk::UInt16 index);

  friend constexpr bool operator==(const AcCmEntityColor&, const AcCmEntityColor&) = default;

 private:
  ColorMethod m_method = kByLayer;
  Adesk::UInt8 m_red = 0;
  Adesk::UInt8 m_green = 0;
  Adesk::UInt8 m_blue = 0;
  Adesk::UInt16 m_index = 0;  // where isByACI()
};

class HOST_API AcCmColor {
 public:
  /// By layer.
  AcCmColor() = default;
  AcCmColor(const AcCmEntityColor& color) : m_color(color) {}

  AcCmEntityColor::ColorMethod colorMethod() const { return m_color.colorMethod(); }
  Acad::ErrorStatus setColorMethod(AcCmEntityColor::ColorMethod method);
  bool isByColor() const { return m_color.isByColor(); }
  bool isByLayer() const { return m_color.isByLayer(); }
  bool isByBlock() const { return m_color.isByBlock(); }
  bool isByACI() const { return m_color.isByACI(); }
  bool isNone() const { return m_color.isNone(); }

  /// Any setter takes the book's names off.
  Acad::ErrorStatus setRGB(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue);
  Adesk::UInt8 red() const { return m_color.red(); }
  Adesk::UInt8 green() const { return m_color.green(); }
  Adesk::UInt8 blue() const { return m_color.blue(); }
  Adesk::UInt16 colorIndex() const { return m_color.colorIndex(); }
  Acad::ErrorStatus setColorIndex(Adesk::UInt16 index);

  /// Names of a colour book and of the colour in it; a null text leaves that name empty.
  Acad::ErrorStatus setNames(const ACHAR* colorName, const ACHAR* bookName = nullptr);
  bool hasColorName() const { return !m_colorName.empty(); }
  bool hasBookName() const { return !m_bookName.empty(); }
  const ACHAR* colorName() const { return m_colorName.c_str(); }
  const ACHAR* bookName() const { return m_bookName.c_str(); }

  const AcCmEntityColor& entityColor() const { return m_color; }

  friend bool operator==(const AcCmColor&, const AcCmColor&) = default;

 private:
  AcCmEntityColor m_color;
  std::wstring m_colorName;
  std::wstring m_bookName;
};
