// The trimming of axis lines in its direct form.
#pragma once

#include <optional>
#include <vector>

#include "AxisLineCutAlg.h"

namespace quoin::oracle {

/// One trimmed line for every line that is there; an absent one stands for a null entry.
std::vector<AxisLikeLineSeg> cutAxisLines(const std::vector<std::optional<AxisLikeLineSeg>>& lines);

}  // namespace quoin::oracle
