// Lines of text set in the fonts of the system, shaped for every script. Only fonts in the
// system's folders count and no user's settings, so that a picture is the same for everybody who
// has the fonts (docs/pictures.md has the families).
#pragma once

#include <pango/pangocairo.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quoin::commands {

struct Face {
  std::string_view family = "DejaVu Sans";  // of text::familyFor()
  bool isBold = false;
  bool isItalic = false;
  bool operator==(const Face&) const = default;
};

/// A line that was set: in a font of kFontSize, from the start of its base line.
struct SetLine {
  PangoLayoutLine* line = nullptr;  // lives until the next line is asked for
  std::string text;                 // UTF-8 without anything that cannot be drawn
  Face face;
  double width = 0.0;
  double capitals = 0.0;  // how high they are
};

class Lettering {
 public:
  static constexpr double kFontSize = 100.0;

  static Lettering& ofProcess();
  /// Sets one line; bytes that are no UTF-8, and control characters, become U+FFFD and blanks.
  const SetLine& set(const std::string& text, const Face& face);
  /// How wide a text is in a font of this size.
  double width(const std::string& text, const Face& face, double size);
  /// The text as lines no wider than this, broken between words where there are any.
  std::vector<std::string> wrapped(const std::string& text, const Face& face, double size,
                                   double width);

  Lettering(const Lettering&) = delete;
  Lettering& operator=(const Lettering&) = delete;

 private:
  struct Unref {
    void operator()(void* object) const { g_object_unref(object); }
  };
  struct Kept {
    std::unique_ptr<PangoLayout, Unref> layout;
    SetLine set;
  };

  Lettering();
  ~Lettering();
  std::unique_ptr<PangoLayout, Unref> layoutOf(const std::string& text, const Face& face);
  double capitalsOf(const Face& face);

  std::unique_ptr<PangoFontMap, Unref> m_fonts;
  std::unique_ptr<PangoContext, Unref> m_context;
  std::unordered_map<std::string, Kept> m_kept;
  std::unordered_map<std::string, double> m_capitals;
};

/// The text with U+FFFD in place of bytes that are no UTF-8, which file names and damaged drawings
/// may have, and blanks for control characters.
std::string drawable(const std::string& text);

}  // namespace quoin::commands
