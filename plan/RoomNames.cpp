#include "plan/RoomNames.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <tuple>

namespace quoin::plan {

namespace {

constexpr double kSquareFoot = 0.09290304;  // square metres

struct AreaUnit {
  std::string_view word;  // lower case
  double squareMeters;
};
// Longer ones first where one begins with another.
constexpr std::array<AreaUnit, 20> kAreaUnits{{
    {"m\u00B2", 1.0},
    {"m2", 1.0},
    {"m^2", 1.0},
    {"\u33A1", 1.0},
    {"qm", 1.0},
    {"sqm", 1.0},
    {"sq.m.", 1.0},
    {"sq.m", 1.0},
    {"sq m", 1.0},
    {"sq. m", 1.0},
    {"\u5E73\u7C73", 1.0},
    {"\u5E73\u65B9\u7C73", 1.0},
    {"sq ft", kSquareFoot},
    {"sqft", kSquareFoot},
    {"sq. ft.", kSquareFoot},
    {"sq.ft.", kSquareFoot},
    {"ft\u00B2", kSquareFoot},
    {"ft2", kSquareFoot},
    {"s.f.", kSquareFoot},
    {"sf", kSquareFoot},
}};

bool isDigit(char letter) {
  return letter >= '0' && letter <= '9';
}
bool isBlank(char letter) {
  return letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n';
}
/// A letter of any script: what is no ASCII sign, digit or blank. A byte that goes on with a letter
/// counts with its first.
bool isLetterStart(char letter) {
  const auto byte = static_cast<unsigned char>(letter);
  return (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z') || byte >= 0xC3;
}
bool goesOn(char letter) {
  return (static_cast<unsigned char>(letter) & 0xC0U) == 0x80U;
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && isBlank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') {
      letter = static_cast<char>(letter - 'A' + 'a');
    }
  }
  return lower;
}

/// How many bytes of a number stand at the end of the text; digits with one dot or comma.
std::size_t numberAtEnd(std::string_view text) {
  std::size_t count = 0;
  bool hasPoint = false;
  while (count < text.size()) {
    const char letter = text[text.size() - 1 - count];
    const bool isPoint = letter == '.' || letter == ',';
    if (!isDigit(letter) && !(isPoint && !hasPoint && count > 0)) {
      break;
    }
    hasPoint = hasPoint || isPoint;
    ++count;
  }
  while (count > 0 && !isDigit(text[text.size() - count])) {
    --count;
  }
  return count;
}

/// Takes "A = ", "Area: " and the like away from the end of what stands before an area.
std::string_view withoutAreaWord(std::string_view text) {
  while (!text.empty() && (isBlank(text.back()) || text.back() == ':' || text.back() == '=' ||
                           text.back() == '(' || text.back() == ',' || text.back() == '-')) {
    text.remove_suffix(1);
  }
  const std::string lower = lowerCase(text);
  for (const std::string_view word :
       {"area", "a", "ca.", "s", "fl", "fl\u00E4che", "ngf", "\u9762\u79EF"}) {
    const bool isEnd = lower.size() >= word.size() &&
                       lower.compare(lower.size() - word.size(), word.size(), word) == 0;
    if (isEnd && (lower.size() == word.size() || isBlank(lower[lower.size() - word.size() - 1]))) {
      text.remove_suffix(word.size());
      return withoutAreaWord(text);
    }
  }
  return trimmed(text);
}

/// Splits an area off the end of the text.
std::optional<double> takeArea(std::string_view& text) {
  std::string_view bare = trimmed(text);
  if (!bare.empty() && bare.back() == ')') {
    bare.remove_suffix(1);
  }
  const std::string lower = lowerCase(bare);
  for (const AreaUnit& unit : kAreaUnits) {
    if (lower.size() <= unit.word.size() ||
        lower.compare(lower.size() - unit.word.size(), unit.word.size(), unit.word) != 0) {
      continue;
    }
    const std::string_view before = trimmed(bare.substr(0, bare.size() - unit.word.size()));
    const std::size_t count = numberAtEnd(before);
    if (count == 0) {
      continue;
    }
    std::string digits(before.substr(before.size() - count));
    std::replace(digits.begin(), digits.end(), ',', '.');
    double value = 0.0;
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (read.ec == std::errc() && read.ptr == digits.data() + digits.size()) {
      text = withoutAreaWord(before.substr(0, before.size() - count));
      return value * unit.squareMeters;
    }
  }
  return std::nullopt;
}

/// How many letters the text begins with, and how many bytes they are.
std::pair<std::size_t, std::size_t> lettersAtBegin(std::string_view text) {
  std::size_t letters = 0;
  std::size_t bytes = 0;
  while (bytes < text.size() && isLetterStart(text[bytes])) {
    ++letters;
    do {
      ++bytes;
    } while (bytes < text.size() && goesOn(text[bytes]));
  }
  return {letters, bytes};
}

bool isDoorLabel(std::string_view text) {
  const auto [letters, bytes] = lettersAtBegin(text);
  const std::string_view digits = text.substr(bytes);
  return letters >= 1 && letters <= 4 && digits.size() == 4 &&
         std::all_of(digits.begin(), digits.end(), isDigit);
}

/// Only digits and what stands between and before them in lengths and levels.
bool isLength(std::string_view text) {
  constexpr std::size_t kDigitsOfLength = 5;
  std::size_t digits = 0;
  bool hasSign = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char letter = text[i];
    const bool isTimes = (letter == 'x' || letter == 'X' || letter == '*') && i > 0;
    const bool isPlusMinus = static_cast<unsigned char>(letter) >= 0x80;  // also the times sign
    digits += isDigit(letter) ? 1U : 0U;
    hasSign = hasSign || isTimes || isPlusMinus || letter == '+' || letter == '\'' ||
              letter == '"' || letter == '=' || (letter == '-' && i == 0);
    if (!isDigit(letter) && !isTimes && !isPlusMinus && letter != '+' && letter != '-' &&
        letter != '.' && letter != ',' && letter != '\'' && letter != '"' && letter != ' ' &&
        letter != '=' && letter != '/') {
      return false;
    }
  }
  // Without a sign of one: too many digits for the number of a room.
  return digits > 0 && !lettersAtBegin(text).first && (hasSign || digits >= kDigitsOfLength);
}

bool isNumber(std::string_view text) {
  constexpr std::size_t kMostBytes = 12;
  constexpr std::size_t kMostLetters = 3;
  const auto [letters, bytes] = lettersAtBegin(text);
  std::string_view rest = text.substr(bytes);
  if (letters > kMostLetters || text.size() > kMostBytes) {
    return false;
  }
  bool hasDigit = false;
  std::size_t run = 0;  // letters in a row
  for (std::size_t i = 0; i < rest.size(); ++i) {
    const bool isLetter = isLetterStart(rest[i]) && static_cast<unsigned char>(rest[i]) < 0x80;
    run = isLetter ? run + 1 : 0;
    hasDigit = hasDigit || isDigit(rest[i]);
    const bool isJoint = rest[i] == '.' || rest[i] == '-' || rest[i] == '/' || rest[i] == '_';
    if (!isDigit(rest[i]) && !isJoint && !(isLetter && hasDigit && run == 1)) {
      return false;
    }
  }
  return hasDigit;
}

/// What counts more for a room, greatest first.
struct Rank {
  double height;
  double distance;
  std::size_t line;
  const std::string* text;

  bool isBefore(const Rank& other) const {
    constexpr double kSameHeight = 1.0e-6;
    if (std::fabs(height - other.height) > kSameHeight * std::max(height, other.height)) {
      return height > other.height;
    }
    return std::tie(line, distance, *text) < std::tie(other.line, other.distance, *other.text);
  }
};

/// The best text of each kind in a room.
struct Chosen {
  std::optional<Rank> name;
  std::optional<Rank> number;
  std::optional<Rank> door;
  std::optional<Rank> area;
  double statedArea = 0.0;
};

bool takesPlace(std::optional<Rank>& place, const Rank& rank) {
  const bool isBetter = !place || rank.isBefore(*place);
  if (isBetter) {
    place = rank;
  }
  return isBetter;
}

}  // namespace

TextMeaning meaningOf(std::string_view text) {
  TextMeaning meaning;
  std::string_view rest = trimmed(text);
  meaning.area = takeArea(rest);
  meaning.text = std::string(rest);
  const bool hasLetter = std::any_of(rest.begin(), rest.end(), isLetterStart);
  if (rest.empty() || isLength(rest)) {
    meaning.kind = TextMeaning::Kind::Nothing;
  } else if (isDoorLabel(rest)) {
    meaning.kind = TextMeaning::Kind::DoorLabel;
  } else if (isNumber(rest)) {
    meaning.kind = TextMeaning::Kind::Number;
  } else if (hasLetter) {
    meaning.kind = TextMeaning::Kind::Name;
  }
  return meaning;
}

void nameRooms(std::vector<Room>& rooms, const std::vector<RoomText>& texts) {
  const RoomIndex index(rooms);
  std::vector<TextMeaning> meanings;
  std::vector<std::optional<std::size_t>> places;
  std::vector<Chosen> chosen(rooms.size());
  std::vector<AcGePoint2d> middles;
  middles.reserve(rooms.size());
  for (const Room& room : rooms) {
    middles.push_back(labelPoint(room.polygon));
  }
  for (const RoomText& text : texts) {
    meanings.push_back(meaningOf(text.text));
    places.push_back(index.roomAt(text.at));
  }
  const auto rankOf = [&](std::size_t i) {
    return Rank{texts[i].height, texts[i].at.distanceTo(middles[*places[i]]), texts[i].line,
                &meanings[i].text};
  };
  // Areas first: the name stands beside them.
  std::vector<AcGePoint2d> beside = middles;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (places[i] && meanings[i].area && takesPlace(chosen[*places[i]].area, rankOf(i))) {
      chosen[*places[i]].statedArea = *meanings[i].area;
      beside[*places[i]] = texts[i].at;
    }
  }
  middles = std::move(beside);
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (!places[i]) {
      continue;
    }
    Chosen& best = chosen[*places[i]];
    if (meanings[i].kind == TextMeaning::Kind::Name) {
      takesPlace(best.name, rankOf(i));
    } else if (meanings[i].kind == TextMeaning::Kind::Number) {
      takesPlace(best.number, rankOf(i));
    } else if (meanings[i].kind == TextMeaning::Kind::DoorLabel) {
      takesPlace(best.door, rankOf(i));
    }
  }
  for (std::size_t i = 0; i < rooms.size(); ++i) {
    const Chosen& best = chosen[i];
    rooms[i].name = best.name                   ? *best.name->text
                    : best.door && !best.number ? *best.door->text
                                                : std::string();
    rooms[i].number = best.number ? *best.number->text : std::string();
    if (best.area) {
      rooms[i].statedArea = best.statedArea;
    }
  }
}

}  // namespace quoin::plan
