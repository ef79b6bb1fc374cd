// The chaining of boundary edges in its direct form: a scan from the front for every vertex.
#pragma once

#include <optional>
#include <vector>

#include "gepnt3d.h"

namespace quoin::oracle {

struct Edge {
  AcGePoint3d start;
  AcGePoint3d end;
};

/// The vertices in the order in which they are reached; nothing where the module would never
/// return.
std::optional<std::vector<AcGePoint3d>> chainEdges(std::vector<Edge> edges);

}  // namespace quoin::oracle
