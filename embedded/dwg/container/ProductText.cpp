#include "embedded/dwg/container/ProductText.h"

namespace quoin::dwg::container {
namespace {

using namespace std::string_view_literals;

/// The value of an attribute, whose quotation marks may be escaped; "" for none.
std::string_view valueOf(std::string_view element, std::string_view attribute) {
  const std::size_t name = element.find(attribute);
  const std::size_t open = name == std::string_view::npos ? name : element.find('"', name);
  const std::size_t close = open == std::string_view::npos ? open : element.find('"', open + 1);
  if (close == std::string_view::npos) {
    return {};
  }
  std::string_view value = element.substr(open + 1, close - open - 1);
  if (value.ends_with('\\')) {
    value.remove_suffix(1);
  }
  return value;
}

/// The section's text as one byte a character: the element has no other characters.
std::string narrowed(std::string_view section) {
  std::string text;
  for (std::size_t i = 0; i < section.size(); ++i) {
    if (section[i] != '\0') {
      text.push_back(section[i]);
    }
  }
  return text;
}

}  // namespace

std::string productIn(std::string_view appInfo) {
  const std::string text = narrowed(appInfo);
  const std::size_t begin = text.find("<ProductInformation"sv);
  if (begin == std::string::npos) {
    return {};
  }
  const std::string_view element =
      std::string_view(text).substr(begin, text.find('>', begin) - begin);
  std::string product(valueOf(element, "name"));
  const std::string_view build = valueOf(element, "build_version");
  if (!build.empty()) {
    product += (product.empty() ? "" : " ") + std::string(build);
  }
  // Whoever shows it is safe from control characters and broken text.
  for (char& c : product) {
    c = c >= ' ' && c <= '~' ? c : '?';
  }
  return product;
}

}  // namespace quoin::dwg::container
