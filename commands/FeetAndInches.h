// Lengths as people write them on drawings: 16'-0", 3' 6 1/2", 2400 mm.
#pragma once

#include <optional>
#include <string_view>

namespace quoin::commands {

/// The millimetres of the first length in a text that names its unit: feet (') and inches ("), with
/// fractions, or a number before mm, cm or m. Formatting codes of paragraphs are passed over.
/// Nothing for a text that names none ("2400", "R12").
std::optional<double> writtenMillimeters(std::wstring_view text);

}  // namespace quoin::commands
