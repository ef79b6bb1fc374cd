#include "commands/SurveyPage.h"

#include <fmt/format.h>

#include <cstdint>
#include <string_view>

namespace quoin::commands {

namespace {

constexpr std::string_view kStyle = R"(
:root { color-scheme: light; --ink: #212126; --faint: #6b6e76; --rule: #d9dbe0; --blue: #0d66bf; }
* { box-sizing: border-box; }
body { margin: 0 auto; max-width: 64rem; padding: 2.5rem 1.5rem 4rem; color: var(--ink);
       background: #fff; font: 16px/1.5 system-ui, "Noto Sans", Arial, sans-serif; }
h1 { margin: 0; font-size: 1.9rem; line-height: 1.2; overflow-wrap: anywhere; }
h2 { margin: 3rem 0 0.75rem; padding-bottom: 0.3rem; border-bottom: 2px solid var(--ink);
     font-size: 1.25rem; }
.subtitle { margin: 0.3rem 0 0; color: var(--faint); }
.figures { display: flex; flex-wrap: wrap; gap: 0.75rem; margin: 1.75rem 0 0; }
.figures div { flex: 1 1 8rem; padding: 0.75rem 1rem; border: 1px solid var(--rule);
               border-radius: 6px; }
.figures dd { margin: 0; font-size: 1.6rem; font-weight: 600; color: var(--blue);
              font-variant-numeric: tabular-nums; }
.figures dt { color: var(--faint); font-size: 0.9rem; }
figure { margin: 1rem 0; }
img { display: block; width: 100%; height: auto; border: 1px solid var(--rule);
      border-radius: 6px; }
.wide { overflow-x: auto; }
table { width: 100%; margin: 1rem 0; border-collapse: collapse; font-size: 0.95rem;
        font-variant-numeric: tabular-nums; }
th, td { padding: 0.35rem 0.6rem; border-bottom: 1px solid var(--rule); text-align: start;
         vertical-align: top; overflow-wrap: anywhere; }
thead th { border-bottom: 1px solid var(--ink); color: var(--faint); font-weight: 600; }
tfoot td { border-top: 1px solid var(--ink); border-bottom: 0; font-weight: 600; }
.number { text-align: right; white-space: nowrap; }
li { overflow-wrap: anywhere; }
@media print {
  body { max-width: none; padding: 0; font-size: 10pt; }
  h2 { break-after: avoid; }
  figure, tr, .figures { break-inside: avoid; }
  .wide { overflow: visible; }
  .figures dd { color: inherit; }
}
)";

/// The text as HTML shows it, in attributes too. What is no character of HTML becomes a blank.
std::string escaped(std::string_view text) {
  std::string html;
  html.reserve(text.size());
  for (const char letter : text) {
    switch (letter) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      case '\'':
        html += "&#39;";
        break;
      default:
        html += static_cast<unsigned char>(letter) < 0x20 || letter == 0x7f ? ' ' : letter;
    }
  }
  return html;
}

std::string base64(std::string_view bytes) {
  constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t three = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      three = three << 8 | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0U);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      text += i + k <= bytes.size() ? kDigits[three >> (18 - 6 * k) & 63U] : '=';
    }
  }
  return text;
}

void addRow(std::string& html, const std::vector<std::string>& cells, const char* tag,
            std::size_t firstNumber) {
  html += "<tr>";
  for (std::size_t i = 0; i < cells.size(); ++i) {
    // What a drawing says may run from right to left.
    html += fmt::format("<{}{}{}>{}</{}>", tag, *(tag + 1) == 'h' ? " scope=\"col\"" : "",
                        i >= firstNumber ? " class=\"number\"" : " dir=\"auto\"", escaped(cells[i]),
                        tag);
  }
  html += "</tr>\n";
}

void addTable(std::string& html, const SurveyPage::Table& table) {
  html += "<div class=\"wide\">\n<table>\n<thead>";
  addRow(html, table.head, "th", table.firstNumber);
  html += "</thead>\n<tbody>\n";
  for (const std::vector<std::string>& row : table.rows) {
    addRow(html, row, "td", table.firstNumber);
  }
  html += "</tbody>\n";
  if (!table.foot.empty()) {
    html += "<tfoot>";
    addRow(html, table.foot, "td", table.firstNumber);
    html += "</tfoot>\n";
  }
  html += "</table>\n</div>\n";
}

void addSection(std::string& html, const SurveyPage::Section& section) {
  html += fmt::format("<section>\n<h2>{}</h2>\n", escaped(section.title));
  for (const std::string& sentence : section.sentences) {
    html += fmt::format("<p>{}</p>\n", escaped(sentence));
  }
  for (const SurveyPage::Picture& picture : section.pictures) {
    html += fmt::format("<figure><img alt=\"{}\" src=\"data:{};base64,{}\"></figure>\n",
                        escaped(picture.alt), picture.type, base64(picture.bytes));
  }
  for (const SurveyPage::Table& table : section.tables) {
    addTable(html, table);
  }
  if (!section.items.empty()) {
    html += "<ul>\n";
    for (const std::string& item : section.items) {
      html += fmt::format("<li dir=\"auto\">{}</li>\n", escaped(item));
    }
    html += "</ul>\n";
  }
  html += "</section>\n";
}

}  // namespace

std::string surveyHtml(const SurveyPage& page) {
  std::string html = fmt::format(
      "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
      "<title>{}</title>\n<style>{}</style>\n</head>\n<body>\n"
      "<header>\n<h1>{}</h1>\n<p class=\"subtitle\">{}</p>\n</header>\n<main>\n",
      escaped(page.title), kStyle, escaped(page.title), escaped(page.subtitle));
  html += "<dl class=\"figures\">\n";
  for (const SurveyPage::Figure& figure : page.figures) {
    html += fmt::format("<div><dt>{}</dt><dd>{}</dd></div>\n", escaped(figure.what),
                        escaped(figure.value));
  }
  html += "</dl>\n";
  for (const SurveyPage::Section& section : page.sections) {
    addSection(html, section);
  }
  return html + "</main>\n</body>\n</html>\n";
}

}  // namespace quoin::commands
