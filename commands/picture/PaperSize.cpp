#include "commands/picture/PaperSize.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

#include "commands/CommandError.h"

namespace quoin::commands {

namespace {

struct Sheet {
  std::string_view name;
  double width;
  double height;
};

constexpr std::array kSheets{
    Sheet{"a0", 841.0, 1189.0},    Sheet{"a1", 594.0, 841.0},      Sheet{"a2", 420.0, 594.0},
    Sheet{"a3", 297.0, 420.0},     Sheet{"a4", 210.0, 297.0},      Sheet{"a5", 148.0, 210.0},
    Sheet{"letter", 215.9, 279.4}, Sheet{"legal", 215.9, 355.6},   Sheet{"tabloid", 279.4, 431.8},
    Sheet{"arch-a", 228.6, 304.8}, Sheet{"arch-b", 304.8, 457.2},  Sheet{"arch-c", 457.2, 609.6},
    Sheet{"arch-d", 609.6, 914.4}, Sheet{"arch-e", 914.4, 1219.2},
};

/// What a page may measure; larger ones no viewer shows.
constexpr double kLeastSide = 20.0;
constexpr double kMostSide = 5000.0;

std::string lowered(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  });
  return text;
}

/// The number that a whole text is; none where it is something else or not above 0.
std::optional<double> numberOf(std::string_view text) {
  double number = 0.0;
  const auto taken = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool isWhole = taken.ec == std::errc() && taken.ptr == text.data() + text.size();
  return isWhole && std::isfinite(number) && number > 0.0 ? std::optional(number) : std::nullopt;
}

/// "1/4in", "3in", "1ft" in inches.
std::optional<double> inchesOf(std::string_view text) {
  const bool isFeet = text.ends_with("ft") || text.ends_with("'");
  const bool isInches = text.ends_with("in") || text.ends_with("\"");
  if (!isFeet && !isInches) {
    return std::nullopt;
  }
  text.remove_suffix(text.back() == '\'' || text.back() == '"' ? 1 : 2);
  const std::size_t slash = text.find('/');
  std::optional<double> number = numberOf(text.substr(0, slash));
  if (number && slash != std::string_view::npos) {
    const std::optional<double> below = numberOf(text.substr(slash + 1));
    number = below ? std::optional(*number / *below) : std::nullopt;
  }
  return number ? std::optional(*number * (isFeet ? 12.0 : 1.0)) : std::nullopt;
}

}  // namespace

PaperSize parsePaper(const std::string& text) {
  const std::string name = lowered(text);
  constexpr std::string_view kLandscape = "-landscape";
  constexpr std::string_view kPortrait = "-portrait";
  const bool isLandscape = name.ends_with(kLandscape);
  const bool isPortrait = name.ends_with(kPortrait);
  const std::string sheetName = name.substr(0, name.size() - (isLandscape  ? kLandscape.size()
                                                              : isPortrait ? kPortrait.size()
                                                                           : 0));
  for (const Sheet& sheet : kSheets) {
    if (sheet.name == sheetName) {
      PaperSize size{text, sheet.width, sheet.height, !isLandscape && !isPortrait};
      if (isLandscape) {
        std::swap(size.width, size.height);
      }
      return size;
    }
  }
  const std::size_t times = name.find('x');
  const std::optional<double> width =
      numberOf(std::string_view(name).substr(0, std::min(times, name.size())));
  const std::optional<double> height = times == std::string::npos
                                           ? std::nullopt
                                           : numberOf(std::string_view(name).substr(times + 1));
  if (!width || !height) {
    throw CommandError(
        ExitCode::Usage,
        fmt::format("'{}' is no paper that is known; there are A0 to A5, letter, legal, tabloid, "
                    "arch-a to arch-e, with -portrait or -landscape, and WxH in millimetres: "
                    "420x297",
                    text));
  }
  if (std::min(*width, *height) < kLeastSide || std::max(*width, *height) > kMostSide) {
    throw CommandError(ExitCode::Usage,
                       fmt::format("'{}': paper measures {:.0f} to {:.0f} mm a side", text,
                                   kLeastSide, kMostSide));
  }
  return {text, *width, *height, false};
}

double parseScale(const std::string& text) {
  const std::size_t colon = text.find(':');
  const std::size_t equal = text.find('=');
  std::optional<double> paper;
  std::optional<double> plan;
  if (colon != std::string::npos) {
    paper = numberOf(std::string_view(text).substr(0, colon));
    plan = numberOf(std::string_view(text).substr(colon + 1));
  } else if (equal != std::string::npos) {
    paper = inchesOf(std::string_view(text).substr(0, equal));
    plan = inchesOf(std::string_view(text).substr(equal + 1));
  }
  constexpr double kFarthest = 1e9;
  const double scale = paper && plan ? *plan / *paper : 0.0;
  if (!(scale > 1.0 / kFarthest && scale < kFarthest)) {
    throw CommandError(ExitCode::Usage,
                       fmt::format("'{}' is no scale; write 1:100, 2:1 or 1/4in=1ft", text));
  }
  return scale;
}

double usualScaleFrom(double least) {
  const double power = std::pow(10.0, std::floor(std::log10(least)));
  for (const double mantissa : {1.0, 2.0, 5.0}) {
    // A plan made for a scale fits it in spite of rounding.
    if (power * mantissa >= least * (1.0 - 1e-9)) {
      return power * mantissa;
    }
  }
  return 10.0 * power;
}

std::string scaleText(double scale) {
  const auto number = [](double value) {
    std::string text = fmt::format("{:.3f}", value);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
      text.pop_back();
    }
    return text;
  };
  return scale >= 1.0 ? "1:" + number(scale) : number(1.0 / scale) + ":1";
}

}  // namespace quoin::commands
