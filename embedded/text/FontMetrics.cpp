#include "embedded/text/FontMetrics.h"

#include <ft2build.h>

#include <freetype/freetype.h>
#include <freetype/tttables.h>

#include <array>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>

#include "embedded/os/CaseFold.h"

namespace quoin::text {
namespace {

/// Latin letters average 0.5 em, and capitals are 0.72 em high in the usual sans serif fonts.
constexpr double kLetterAdvance = 0.7;
/// Ideographs are squares of one em; drawing fonts make them as high as capitals.
constexpr double kIdeographAdvance = 1.0;

/// What stands for a font: those of the first column as files of the second, which are of a family.
struct Substitute {
  std::wstring_view name;  // a font's name begins so, in lower case
  std::string_view file;
  std::string_view family;
  bool isBold = false;
};

// Longer names stand before their beginnings. Liberation has the widths of the fonts that it
// stands for.
constexpr std::array kSubstitutes{
    Substitute{L"arialbd", "LiberationSans-Bold.ttf", "Liberation Sans", true},
    Substitute{L"arialn", "LiberationSansNarrow-Regular.ttf", "Liberation Sans Narrow"},
    Substitute{L"arial", "LiberationSans-Regular.ttf", "Liberation Sans"},
    Substitute{L"helvetica", "LiberationSans-Regular.ttf", "Liberation Sans"},
    Substitute{L"timesbd", "LiberationSerif-Bold.ttf", "Liberation Serif", true},
    Substitute{L"times", "LiberationSerif-Regular.ttf", "Liberation Serif"},
    Substitute{L"romant", "LiberationSerif-Regular.ttf", "Liberation Serif"},
    Substitute{L"cour", "LiberationMono-Regular.ttf", "Liberation Mono"},
    Substitute{L"monotxt", "DejaVuSansMono.ttf", "DejaVu Sans Mono"},
    Substitute{L"consola", "DejaVuSansMono.ttf", "DejaVu Sans Mono"},
    Substitute{L"simsun", "wqy-microhei.ttc", "WenQuanYi Micro Hei"},
    Substitute{L"simhei", "wqy-microhei.ttc", "WenQuanYi Micro Hei"},
    Substitute{L"simkai", "wqy-microhei.ttc", "WenQuanYi Micro Hei"},
    Substitute{L"simfang", "wqy-microhei.ttc", "WenQuanYi Micro Hei"},
    Substitute{L"msyh", "wqy-microhei.ttc", "WenQuanYi Micro Hei"},
    Substitute{L"\u5B8B\u4F53", "wqy-microhei.ttc", "WenQuanYi Micro Hei"},
    Substitute{L"\u9ED1\u4F53", "wqy-microhei.ttc", "WenQuanYi Micro Hei"},
};
constexpr Substitute kUsual{L"", "DejaVuSans.ttf", "DejaVu Sans"};
constexpr std::string_view kUsualFile = kUsual.file;

constexpr std::array<std::string_view, 6> kFolders{"/usr/share/fonts/truetype/liberation",
                                                   "/usr/share/fonts/truetype/liberation2",
                                                   "/usr/share/fonts/truetype/dejavu",
                                                   "/usr/share/fonts/truetype/wqy",
                                                   "/usr/local/share/fonts",
                                                   "/usr/share/fonts/TTF"};

FT_Library library() {
  static FT_Library opened = nullptr;
  static const bool isOpen = FT_Init_FreeType(&opened) == 0;
  return isOpen ? opened : nullptr;
}

/// Letters without any font.
class AverageFont : public Font {
 public:
  double advance(wchar_t letter) const override { return averageAdvance(letter); }
};

class FileFont : public Font {
 public:
  /// Takes the face over.
  explicit FileFont(FT_Face face) : m_face(face), m_capital(capitalHeight(face)) {}
  ~FileFont() override { FT_Done_Face(m_face); }
  FileFont(const FileFont&) = delete;
  FileFont& operator=(const FileFont&) = delete;

  double advance(wchar_t letter) const override {
    const auto known = m_advances.find(letter);
    return known != m_advances.end() ? known->second : m_advances[letter] = measured(letter);
  }

 private:
  static double capitalHeight(FT_Face face) {
    const auto* const table = static_cast<const TT_OS2*>(FT_Get_Sfnt_Table(face, FT_SFNT_OS2));
    if (table && table->version >= 2 && table->sCapHeight > 0) {
      return table->sCapHeight;
    }
    if (FT_Load_Char(face, 'H', FT_LOAD_NO_SCALE) == 0 && face->glyph->metrics.height > 0) {
      return static_cast<double>(face->glyph->metrics.height);
    }
    constexpr double kUsualShare = 0.72;  // of the em
    return kUsualShare * face->units_per_EM;
  }

  double measured(wchar_t letter) const {
    const FT_UInt glyph = FT_Get_Char_Index(m_face, static_cast<FT_ULong>(letter));
    if (glyph == 0 || FT_Load_Glyph(m_face, glyph, FT_LOAD_NO_SCALE) != 0) {
      return averageAdvance(letter);
    }
    return static_cast<double>(m_face->glyph->metrics.horiAdvance) / m_capital;
  }

  FT_Face m_face;
  double m_capital;
  mutable std::unordered_map<wchar_t, double> m_advances;
};

std::unique_ptr<Font> openFile(std::string_view name) {
  for (const std::string_view folder : kFolders) {
    const std::filesystem::path path = std::filesystem::path(folder) / name;
    std::error_code ignored;
    FT_Face face = nullptr;
    if (library() && std::filesystem::exists(path, ignored) &&
        FT_New_Face(library(), path.c_str(), 0, &face) == 0) {
      if (FT_IS_SCALABLE(face) && face->units_per_EM > 0) {
        return std::make_unique<FileFont>(face);
      }
      FT_Done_Face(face);
    }
  }
  return nullptr;
}

/// The font of a file, opened once; the usual one, or none at all, in its place.
const Font& fontOfFile(std::string_view file) {
  static std::map<std::string, std::unique_ptr<Font>, std::less<>> opened;
  const auto known = opened.find(file);
  if (known != opened.end()) {
    return *known->second;
  }
  std::unique_ptr<Font> font = openFile(file);
  if (!font && file != kUsualFile) {
    return fontOfFile(kUsualFile);
  }
  if (!font) {
    font = std::make_unique<AverageFont>();
  }
  return *opened.emplace(std::string(file), std::move(font)).first->second;
}

const Substitute& substituteFor(std::wstring_view fontFile) {
  const std::size_t folder = fontFile.find_last_of(L"/\\");
  const std::wstring name =
      os::foldCase(folder == std::wstring_view::npos ? fontFile : fontFile.substr(folder + 1));
  for (const Substitute& substitute : kSubstitutes) {
    if (name.starts_with(os::foldCase(substitute.name))) {
      return substitute;
    }
  }
  return kUsual;
}

}  // namespace

const Font& fontFor(std::wstring_view fontFile) {
  static std::map<std::wstring, const Font*, std::less<>> known;
  const auto found = known.find(fontFile);
  if (found != known.end()) {
    return *found->second;
  }
  const Font& font = fontOfFile(substituteFor(fontFile).file);
  known.emplace(fontFile, &font);
  return font;
}

Family familyFor(std::wstring_view fontFile) {
  const Substitute& substitute = substituteFor(fontFile);
  return {substitute.family, substitute.isBold};
}

const Font& usualFont() {
  static const Font& font = fontOfFile(kUsualFile);
  return font;
}

double averageAdvance(wchar_t letter) {
  return isIdeograph(letter) ? kIdeographAdvance : kLetterAdvance;
}

bool isIdeograph(wchar_t letter) {
  const auto code = static_cast<unsigned long>(letter);
  return (code >= 0x1100 && code <= 0x11FF) || (code >= 0x2E80 && code <= 0xD7AF) ||
         (code >= 0xF900 && code <= 0xFAFF) || (code >= 0xFF01 && code <= 0xFF60) ||
         (code >= 0x20000 && code <= 0x3FFFF);
}

}  // namespace quoin::text
