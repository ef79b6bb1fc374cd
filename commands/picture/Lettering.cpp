#include "commands/picture/Lettering.h"

#include <fontconfig/fontconfig.h>
#include <pango/pangofc-fontmap.h>

#include <algorithm>

#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

/// Where fonts of the system are; a user's own would make pictures differ.
constexpr const char* kFontSettings =
    "<fontconfig><dir>/usr/share/fonts</dir><dir>/usr/local/share/fonts</dir>"
    "<cachedir>/var/cache/fontconfig</cachedir></fontconfig>";
/// Scripts that a family does not have are looked for here, in this order, and then among all.
constexpr std::string_view kFallback = ",DejaVu Sans,WenQuanYi Micro Hei";
/// Lines that are kept: plans repeat their texts.
constexpr std::size_t kMostKept = 4096;

std::string keyOf(const Face& face) {
  return std::string(face.family) + (face.isBold ? "|b" : "|") + (face.isItalic ? "i|" : "|");
}

}  // namespace

std::string drawable(const std::string& text) {
  std::wstring wide = os::fromUtf8(text);
  for (wchar_t& letter : wide) {
    if (letter >= 0xD800 && letter <= 0xDFFF) {
      letter = L'\uFFFD';
    } else if (letter < L' ' || letter == 0x7F || letter == 0x2028 || letter == 0x2029) {
      letter = L' ';
    }
  }
  return os::toUtf8(wide);
}

Lettering& Lettering::ofProcess() {
  // Never taken down: the libraries beneath may be gone before it.
  static Lettering* const made = new Lettering();
  return *made;
}

Lettering::Lettering() {
  FcConfig* const settings = FcConfigCreate();
  FcConfigParseAndLoadFromMemory(settings, reinterpret_cast<const FcChar8*>(kFontSettings), FcTrue);
  FcConfigBuildFonts(settings);
  m_fonts.reset(pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT));
  pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(m_fonts.get()), settings);
  FcConfigDestroy(settings);  // the map has it
  m_context.reset(pango_font_map_create_context(m_fonts.get()));
  pango_context_set_language(m_context.get(), pango_language_from_string("en"));
  // Letters are laid out alike at every size and angle.
  cairo_font_options_t* const options = cairo_font_options_create();
  cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
  cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
  pango_cairo_context_set_font_options(m_context.get(), options);
  cairo_font_options_destroy(options);
  pango_context_set_round_glyph_positions(m_context.get(), FALSE);
}

Lettering::~Lettering() = default;

std::unique_ptr<PangoLayout, Lettering::Unref> Lettering::layoutOf(const std::string& text,
                                                                   const Face& face) {
  std::unique_ptr<PangoLayout, Unref> layout(pango_layout_new(m_context.get()));
  PangoFontDescription* const font = pango_font_description_new();
  pango_font_description_set_family(font, (std::string(face.family) + kFallback.data()).c_str());
  pango_font_description_set_weight(font, face.isBold ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
  pango_font_description_set_style(font, face.isItalic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
  pango_font_description_set_absolute_size(font, kFontSize * PANGO_SCALE);
  pango_layout_set_font_description(layout.get(), font);
  pango_font_description_free(font);
  // Advances alone place letters, as drawings are measured.
  PangoAttrList* const attributes = pango_attr_list_new();
  pango_attr_list_insert(attributes, pango_attr_font_features_new("kern=0, liga=0"));
  pango_layout_set_attributes(layout.get(), attributes);
  pango_attr_list_unref(attributes);
  pango_layout_set_single_paragraph_mode(layout.get(), TRUE);
  pango_layout_set_text(layout.get(), text.data(), static_cast<int>(text.size()));
  return layout;
}

double Lettering::capitalsOf(const Face& face) {
  const std::string key = keyOf(face);
  const auto known = m_capitals.find(key);
  if (known != m_capitals.end()) {
    return known->second;
  }
  PangoRectangle ink;
  pango_layout_line_get_extents(pango_layout_get_line_readonly(layoutOf("H", face).get(), 0), &ink,
                                nullptr);
  // Capitals of the common fonts are 0.72 of their size high.
  const double measured = -static_cast<double>(ink.y) / PANGO_SCALE;
  return m_capitals[key] = measured > 0.0 ? measured : 0.72 * kFontSize;
}

const SetLine& Lettering::set(const std::string& text, const Face& face) {
  const std::string key = keyOf(face) + text;
  const auto known = m_kept.find(key);
  if (known != m_kept.end()) {
    return known->second.set;
  }
  if (m_kept.size() >= kMostKept) {
    m_kept.clear();
  }
  Kept kept;
  kept.set.text = drawable(text);
  kept.set.face = face;
  kept.layout = layoutOf(kept.set.text, face);
  kept.set.line = pango_layout_get_line_readonly(kept.layout.get(), 0);
  PangoRectangle logical;
  pango_layout_line_get_extents(kept.set.line, nullptr, &logical);
  kept.set.width = static_cast<double>(logical.width) / PANGO_SCALE;
  kept.set.capitals = capitalsOf(face);
  return m_kept.emplace(key, std::move(kept)).first->second.set;
}

double Lettering::width(const std::string& text, const Face& face, double size) {
  return set(text, face).width * size / kFontSize;
}

std::vector<std::string> Lettering::wrapped(const std::string& text, const Face& face, double size,
                                            double width) {
  const std::string whole = drawable(text);
  if (whole.empty()) {
    return {};
  }
  const std::unique_ptr<PangoLayout, Unref> layout = layoutOf(whole, face);
  pango_layout_set_width(layout.get(), static_cast<int>(width * kFontSize / size * PANGO_SCALE));
  pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
  std::vector<std::string> lines;
  for (int i = 0; i < pango_layout_get_line_count(layout.get()); ++i) {
    const PangoLayoutLine* const line = pango_layout_get_line_readonly(layout.get(), i);
    std::string part = whole.substr(static_cast<std::size_t>(line->start_index),
                                    static_cast<std::size_t>(line->length));
    while (!part.empty() && part.back() == ' ') {
      part.pop_back();
    }
    lines.push_back(std::move(part));
  }
  return lines;
}

}  // namespace quoin::commands
