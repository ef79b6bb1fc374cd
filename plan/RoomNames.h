// What the texts in rooms say of them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "gepnt2d.h"
#include "plan/Rooms.h"

namespace quoin::plan {

/// A line of text in a plan, without formatting codes.
struct RoomText {
  /// Its middle.
  AcGePoint2d at;
  double height = 0.0;
  std::string text;  // UTF-8
  /// Among the lines of one text: those further up go before others of the same height.
  std::size_t line = 0;
};

/// What a line of text may be for a room.
struct TextMeaning {
  enum class Kind : std::uint8_t {
    Nothing,    // no letter; a length, a level, two lengths ("900x2100")
    DoorLabel,  // up to four letters and four digits, width and height ("M0921"): a name at worst
    Number,     // digits, with up to three letters before or one behind, dots and dashes ("1.04a")
    Name,
  };
  Kind kind = Kind::Nothing;
  /// The name or number; what stands before the area, where one follows.
  std::string text;
  /// Square metres, of an area alone or behind the name: "13.5 m²", "145 sq ft", "A = 12,5 qm".
  std::optional<double> area = {};
};
TextMeaning meaningOf(std::string_view text);

/// Gives rooms their name, number and stated area. Of several texts in a room that may be one, the
/// higher counts, of those of the same height the one nearest to the stated area, and where there
/// is none to the room's middle. A door label names a room that has neither name nor number. Texts
/// beyond all rooms count for nothing.
void nameRooms(std::vector<Room>& rooms, const std::vector<RoomText>& texts);

}  // namespace quoin::plan
