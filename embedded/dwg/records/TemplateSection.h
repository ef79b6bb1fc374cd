// The section that says what a drawing was made from: a description, then $MEASUREMENT.
//
// Source: Open Design Specification for .dwg files, "AcDb:Template".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "hostapi.h"

namespace quoin::dwg {

/// $MEASUREMENT. Fails: none for a section of another form, or of no bytes.
HOST_API std::optional<std::int64_t> measurementOf(std::string_view section);
/// The section with another $MEASUREMENT. Fails: none for a section of another form.
HOST_API std::optional<std::string> withMeasurement(std::string_view section,
                                                    std::int64_t measurement);

}  // namespace quoin::dwg
