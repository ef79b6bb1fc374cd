// A sign is drawn in a box that is as high as capitals and as wide as it says; x runs along the
// line, y upwards.
#include "embedded/db/geometry/SignStrokes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>
#include <span>
#include <string>

#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/text/FontMetrics.h"
#include "gepnt2d.h"

namespace quoin::db {
namespace {

/// The letters of the font of signs.
struct SignLetter {
  wchar_t letter;
  wchar_t sign;
};
constexpr std::array kLetters{
    SignLetter{L'a', L'\u2220'}, SignLetter{L'b', L'\u27C2'}, SignLetter{L'c', L'\u23E5'},
    SignLetter{L'd', L'\u2313'}, SignLetter{L'e', L'\u25CB'}, SignLetter{L'f', L'\u2225'},
    SignLetter{L'g', L'\u232D'}, SignLetter{L'h', L'\u2197'}, SignLetter{L'i', L'\u232F'},
    SignLetter{L'j', L'\u2316'}, SignLetter{L'k', L'\u2312'}, SignLetter{L'l', L'\u24C1'},
    SignLetter{L'm', L'\u24C2'}, SignLetter{L'n', L'\u2300'}, SignLetter{L'o', L'\u25A1'},
    SignLetter{L'p', L'\u24C5'}, SignLetter{L'r', L'\u25CE'}, SignLetter{L's', L'\u24C8'},
    SignLetter{L't', L'\u2330'}, SignLetter{L'u', L'\u23E4'}};

/// A line from a to b, or an arc around a with the radius b.x, from one angle on, in degrees.
struct SignPiece {
  AcGePoint2d a;
  AcGePoint2d b;
  double start = 0.0;
  double sweep = 0.0;
  bool isArc() const { return sweep != 0.0; }
};
constexpr std::size_t kMostPieces = 8;
struct Sign {
  wchar_t character;
  double width;
  std::array<SignPiece, kMostPieces> pieces;
  std::size_t count;
};

SignPiece line(double x1, double y1, double x2, double y2) {
  return {{x1, y1}, {x2, y2}};
}
SignPiece arc(double x, double y, double radius, double start, double sweep) {
  return {{x, y}, {radius, 0.0}, start, sweep};
}
template <class... Pieces>
Sign sign(wchar_t character, double width, const Pieces&... pieces) {
  return {character, width, {pieces...}, sizeof...(pieces)};
}

std::span<const Sign> signs() {
  static const std::array kSigns{
      // Position: crossed lines through a circle.
      sign(L'\u2316', 1.0, arc(0.5, 0.5, 0.3, 0, 360), line(0, 0.5, 1, 0.5), line(0.5, 0, 0.5, 1)),
      // Symmetry: three lines, the middle one longer.
      sign(L'\u232F', 1.2, line(0, 0.5, 1.2, 0.5), line(0.3, 0.75, 0.9, 0.75),
           line(0.3, 0.25, 0.9, 0.25)),
      // Cylindricity: a circle between two slanted lines.
      sign(L'\u232D', 1.3, arc(0.65, 0.5, 0.28, 0, 360), line(0.05, 0, 0.5, 1),
           line(0.8, 0, 1.25, 1)),
      // Profile of a line, and of a surface.
      sign(L'\u2312', 1.2, arc(0.6, 0.2, 0.6, 0, 180)),
      sign(L'\u2313', 1.2, arc(0.6, 0.2, 0.6, 0, 180), line(0, 0.2, 1.2, 0.2)),
      // Flatness: a parallelogram.
      sign(L'\u23E5', 1.3, line(0, 0.15, 0.9, 0.15), line(0.9, 0.15, 1.3, 0.85),
           line(1.3, 0.85, 0.4, 0.85), line(0.4, 0.85, 0, 0.15)),
      // Straightness.
      sign(L'\u23E4', 1.0, line(0, 0.5, 1, 0.5)),
      // Perpendicularity.
      sign(L'\u27C2', 1.0, line(0, 0.05, 1, 0.05), line(0.5, 0.05, 0.5, 0.95)),
      // Total runout: two arrows from a base.
      sign(L'\u2330', 1.3, line(0, 0, 0.6, 0), line(0, 0, 0.7, 0.9), line(0.6, 0, 1.3, 0.9),
           line(0.7, 0.9, 0.42, 0.76), line(0.7, 0.9, 0.66, 0.58), line(1.3, 0.9, 1.02, 0.76),
           line(1.3, 0.9, 1.26, 0.58))};
  return kSigns;
}

constexpr wchar_t kCircledA = L'\u24B6';
constexpr wchar_t kCircledZ = L'\u24CF';
constexpr double kCircledWidth = 1.2;

const Sign* signOf(wchar_t character) {
  const auto found = std::find_if(signs().begin(), signs().end(),
                                  [&](const Sign& one) { return one.character == character; });
  return found == signs().end() ? nullptr : &*found;
}
bool isCircled(wchar_t character) {
  return character >= kCircledA && character <= kCircledZ;
}
bool isStroked(wchar_t character) {
  // Texts have none of them as a rule.
  constexpr wchar_t kFirst = L'\u2312';
  constexpr wchar_t kLast = L'\u27C2';
  return character >= kFirst && character <= kLast &&
         (isCircled(character) || signOf(character) != nullptr);
}

/// "gdt.shx", with or without its ending, in any case.
bool isSignFont(std::wstring_view font) {
  constexpr std::array<std::wstring_view, 2> kNames{L"gdt", L"amgdt"};
  constexpr std::wstring_view kEnding = L".shx";
  const auto isSame = [](std::wstring_view a, std::wstring_view lower) {
    return std::equal(a.begin(), a.end(), lower.begin(), lower.end(), [](wchar_t x, wchar_t y) {
      return (x >= L'A' && x <= L'Z' ? x - L'A' + L'a' : x) == y;
    });
  };
  return std::any_of(kNames.begin(), kNames.end(), [&](std::wstring_view name) {
    return font.size() >= name.size() && isSame(font.substr(0, name.size()), name) &&
           (font.size() == name.size() || isSame(font.substr(name.size()), kEnding));
  });
}

/// With the room beside a sign.
double widthOf(wchar_t character) {
  const Sign* const found = signOf(character);
  constexpr double kGap = 0.2;  // beside signs
  return found                  ? found->width + kGap
         : isCircled(character) ? kCircledWidth + kGap
                                : text::usualFont().advance(character);
}

/// A sign whose box has its corner at `corner`.
void drawSign(const Sign& sign, const AcGePoint3d& corner, const AcGeVector3d& x,
              const AcGeVector3d& y, const hostx::DrawLook& look, DrawWalk& walk) {
  const auto at = [&](const AcGePoint2d& point) { return corner + x * point.x + y * point.y; };
  for (const SignPiece& piece : std::span(sign.pieces).first(sign.count)) {
    if (!piece.isArc()) {
      walk.stroke(linePath(at(piece.a), at(piece.b)), look);
      continue;
    }
    constexpr double kDegree = std::numbers::pi / 180.0;
    hostx::DrawPiece turn;
    turn.kind = hostx::DrawPiece::Kind::Arc;
    turn.center = at(piece.a);
    turn.u = x * piece.b.x;
    turn.v = y * piece.b.x;
    turn.start = piece.start * kDegree;
    turn.sweep = piece.sweep * kDegree;
    const auto point = [&](double angle) {
      return turn.center + turn.u * std::cos(angle) + turn.v * std::sin(angle);
    };
    turn.end = point(turn.start + turn.sweep);
    DrawPath path;
    path.start = point(turn.start);
    path.pieces.push_back(turn);
    path.isClosed = piece.sweep >= 360.0;
    walk.stroke(path, look);
  }
}

wchar_t signFor(wchar_t letter) {
  const auto known = std::find_if(kLetters.begin(), kLetters.end(),
                                  [&](const SignLetter& one) { return one.letter == letter; });
  return known == kLetters.end() ? letter : known->sign;
}

}  // namespace

double signAdvance(std::wstring_view font, wchar_t letter) {
  return isSignFont(font) ? widthOf(signFor(letter)) : 0.0;
}

bool hasStrokedSigns(const hostx::DrawText& text) {
  return isSignFont(text.font) || std::any_of(text.text.begin(), text.text.end(), isStroked);
}

void drawWithSigns(const hostx::DrawText& text, const hostx::DrawLook& look, DrawWalk& walk) {
  std::wstring letters = text.text;
  hostx::DrawText part = text;
  if (isSignFont(text.font)) {
    part.font.clear();
    for (wchar_t& letter : letters) {
      letter = signFor(letter);
    }
  }
  double advance = 0.0;
  for (const wchar_t letter : letters) {
    advance += widthOf(letter);
  }
  const double height = text.up.length();
  if (!(advance > 0.0) || !(height > 0.0)) {
    return;
  }
  // Signs stay legible where their letters are narrow.
  constexpr double kNarrowest = 0.8;
  const double unit = text.width / advance;
  const AcGeVector3d x = text.along * std::fmax(unit, kNarrowest * height);
  const AcGePoint3d start =
      text.position - text.along * (text.width * text.alongShare) - text.up * text.upShare;
  part.alongShare = 0.0;
  part.upShare = 0.0;
  const auto put = [&](std::wstring_view words, const AcGePoint3d& at, const AcGeVector3d& up,
                       double width) {
    part.text = words;
    part.position = at;
    part.up = up;
    part.width = width;
    walk.text(part, look);
  };
  double before = 0.0;
  for (std::size_t i = 0; i < letters.size();) {
    std::size_t end = i;
    double words = 0.0;
    while (end < letters.size() && !isStroked(letters[end])) {
      words += widthOf(letters[end++]);
    }
    if (end > i) {
      put(std::wstring_view(letters).substr(i, end - i), start + text.along * (before * unit),
          text.up, words * unit);
      before += words;
      i = end;
      continue;
    }
    const double width = widthOf(letters[i]);
    const Sign* const drawn = signOf(letters[i]);
    const double ownWidth = drawn ? drawn->width : kCircledWidth;
    // In the middle of the room that it has.
    const AcGePoint3d corner =
        start + text.along * ((before + 0.5 * width) * unit) - x * (0.5 * ownWidth);
    if (drawn) {
      drawSign(*drawn, corner, x, text.up, look, walk);
    } else {
      static const Sign kCircle = sign(0, kCircledWidth, arc(0.6, 0.5, 0.6, 0, 360));
      constexpr double kShare = 0.6;  // of the letter in its circle
      const wchar_t letter = static_cast<wchar_t>(L'A' + (letters[i] - kCircledA));
      const double letterWidth = kShare * text::usualFont().advance(letter);
      drawSign(kCircle, corner, x, text.up, look, walk);
      put(std::wstring_view(&letter, 1),
          corner + x * (0.5 * (kCircledWidth - letterWidth)) + text.up * (0.5 * (1.0 - kShare)),
          text.up * kShare, letterWidth * x.length());
    }
    before += width;
    ++i;
  }
}

}  // namespace quoin::db
