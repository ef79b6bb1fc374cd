#include "oracle/EdgeChainOracle.h"

#include "gegbl.h"

namespace quoin::oracle {

std::optional<std::vector<AcGePoint3d>> chainEdges(std::vector<Edge> edges) {
  std::vector<AcGePoint3d> vertices;
  AcGePoint3d current = edges.back().end;
  edges.pop_back();
  vertices.push_back(current);
  while (!edges.empty()) {
    bool isFound = false;
    for (std::size_t i = 0; i < edges.size() && !isFound; ++i) {
      if (edges[i].start.isEqualTo(current, AcGeContext::gTol)) {
        current = edges[i].end;
        isFound = true;
      } else if (edges[i].end.isEqualTo(current, AcGeContext::gTol)) {
        current = edges[i].start;
        isFound = true;
      }
      if (isFound) {
        edges.erase(edges.begin() + static_cast<std::ptrdiff_t>(i));
        vertices.push_back(current);
      }
    }
    if (!isFound) {
      return std::nullopt;
    }
  }
  return vertices;
}

}  // namespace quoin::oracle
