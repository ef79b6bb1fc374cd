// Colours and the host's palette. Indices 10 to 249 are 24 hues in steps of 15 degrees, each
// in five brightnesses, pure and half saturated; the rest is listed.
#include "dbcolor.h"

#include <algorithm>
#include <array>

namespace {

constexpr Adesk::UInt16 kFirstHue = 10;
constexpr Adesk::UInt16 kFirstGrey = 250;
constexpr Adesk::UInt16 kPaletteSize = 256;

/// 1 to 9: the named colours and two greys; 0 stands for no colour.
constexpr std::array<Adesk::UInt32, kFirstHue> kNamed{0x000000, 0xFF0000, 0xFFFF00, 0x00FF00,
                                                      0x00FFFF, 0x0000FF, 0xFF00FF, 0xFFFFFF,
                                                      0x808080, 0xC0C0C0};
constexpr std::array<Adesk::UInt32, kPaletteSize - kFirstGrey> kGreys{0x333333, 0x505050, 0x696969,
                                                                      0x828282, 0xBEBEBE, 0xFFFFFF};

/// The brightness of the five shades of a hue, in hundredths.
constexpr std::array<int, 5> kShades{100, 65, 50, 30, 15};
constexpr int kHueSteps = 4;  // from one primary or mixed colour to the next

constexpr Adesk::UInt32 packed(int red, int green, int blue) {
  return static_cast<Adesk::UInt32>(red << 16 | green << 8 | blue);
}

constexpr Adesk::UInt32 hueColor(int index) {
  const int hue = (index - kFirstHue) / 10;
  const int brightness = kShades[static_cast<std::size_t>(index % 10 / 2)];
  const bool isPale = index % 2 != 0;
  const int step = hue % kHueSteps;
  // `quarters` of the way from none to the brightest; a pale colour lies half way between the
  // pure one and a grey of the same brightness. Fractions are cut off.
  const auto shown = [&](int quarters) {
    const int eighths = isPale ? kHueSteps + quarters : 2 * quarters;
    return 255 * brightness * eighths / (100 * 2 * kHueSteps);
  };
  const int full = shown(kHueSteps);
  const int none = shown(0);
  const int up = shown(step);
  const int down = shown(kHueSteps - step);
  switch (hue / kHueSteps) {
    case 0:
      return packed(full, up, none);
    case 1:
      return packed(down, full, none);
    case 2:
      return packed(none, full, up);
    case 3:
      return packed(none, down, full);
    case 4:
      return packed(up, none, full);
    default:
      return packed(full, none, down);
  }
}

constexpr std::array<Adesk::UInt32, kPaletteSize> makePalette() {
  std::array<Adesk::UInt32, kPaletteSize> palette{};
  for (Adesk::UInt16 index = 0; index < kPaletteSize; ++index) {
    palette[index] = index < kFirstHue     ? kNamed[index]
                     : index >= kFirstGrey ? kGreys[index - kFirstGrey]
                                           : hueColor(index);
  }
  return palette;
}

constexpr std::array<Adesk::UInt32, kPaletteSize> kPalette = makePalette();

constexpr int component(Adesk::UInt32 rgb, int shift) {
  return static_cast<int>(rgb >> shift & 0xFF);
}

}  // namespace

// --- AcCmEntityColor ------------------------------------------------------------------------

Acad::ErrorStatus AcCmEntityColor::setColorMethod(ColorMethod method) {
  if (method < kByLayer || method > kNone) {
    return Acad::eInvalidInput;
  }
  m_method = method;
  return Acad::eOk;
}

Acad::ErrorStatus AcCmEntityColor::setRGB(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) {
  *this = AcCmEntityColor(red, green, blue);
  return Acad::eOk;
}

Adesk::UInt8 AcCmEntityColor::red() const {
  return isByACI() ? static_cast<Adesk::UInt8>(lookUpRGB(m_index) >> 16) : m_red;
}

Adesk::UInt8 AcCmEntityColor::green() const {
  return isByACI() ? static_cast<Adesk::UInt8>(lookUpRGB(m_index) >> 8) : m_green;
}

Adesk::UInt8 AcCmEntityColor::blue() const {
  return isByACI() ? static_cast<Adesk::UInt8>(lookUpRGB(m_index)) : m_blue;
}

Adesk::UInt16 AcCmEntityColor::colorIndex() const {
  switch (m_method) {
    case kByBlock:
      return kACIbyBlock;
    case kByColor:
      return lookUpACI(m_red, m_green, m_blue);
    case kByACI:
      return m_index;
    case kForeground:
      return kACIforeground;
    case kNone:
      return kACInone;
    default:
      return kACIbyLayer;
  }
}

Acad::ErrorStatus AcCmEntityColor::setColorIndex(Adesk::UInt16 index) {
  if (index > kACInone) {
    return Acad::eInvalidInput;
  }
  *this = AcCmEntityColor(index == kACIbyBlock   ? kByBlock
                          : index == kACIbyLayer ? kByLayer
                          : index == kACInone    ? kNone
                                                 : kByACI);
  m_index = isByACI() ? index : Adesk::UInt16{0};
  return Acad::eOk;
}

Adesk::UInt8 AcCmEntityColor::lookUpACI(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) {
  const auto distance = [&](Adesk::UInt32 rgb) {
    const int dr = component(rgb, 16) - red;
    const int dg = component(rgb, 8) - green;
    const int db = component(rgb, 0) - blue;
    return dr * dr + dg * dg + db * db;
  };
  const auto* const nearest =
      std::min_element(kPalette.begin() + 1, kPalette.end(),
                       [&](Adesk::UInt32 a, Adesk::UInt32 b) { return distance(a) < distance(b); });
  return static_cast<Adesk::UInt8>(nearest - kPalette.begin());
}

Adesk::UInt32 AcCmEntityColor::lookUpRGB(Adesk::UInt16 index) {
  return index < kPalette.size() ? kPalette[index] : 0;
}

// --- AcCmColor ------------------------------------------------------------------------------

Acad::ErrorStatus AcCmColor::setColorMethod(AcCmEntityColor::ColorMethod method) {
  const Acad::ErrorStatus status = m_color.setColorMethod(method);
  return status == Acad::eOk ? setNames(nullptr) : status;
}

Acad::ErrorStatus AcCmColor::setRGB(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) {
  m_color.setRGB(red, green, blue);
  return setNames(nullptr);
}

Acad::ErrorStatus AcCmColor::setColorIndex(Adesk::UInt16 index) {
  const Acad::ErrorStatus status = m_color.setColorIndex(index);
  return status == Acad::eOk ? setNames(nullptr) : status;
}

Acad::ErrorStatus AcCmColor::setNames(const ACHAR* colorName, const ACHAR* bookName) {
  m_colorName = colorName ? colorName : L"";
  m_bookName = bookName ? bookName : L"";
  return Acad::eOk;
}
