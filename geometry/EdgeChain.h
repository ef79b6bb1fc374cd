// Chains the edges of a boundary, which come in any order and orientation, into a loop of vertices.
#pragma once

#include <vector>

#include "gepnt3d.h"

struct PolygonEdge {
  AcGePoint3d start;
  AcGePoint3d end;
};

/// Appends the end of the last edge, then, edge by edge, the far end of the first remaining
/// edge that touches the point reached last, its start tried before its end. One vertex an
/// edge; points touch when they are equal within AcGeContext::gTol.
/// Shape: at least one edge.
/// Fails: does not return when no remaining edge touches the point reached.
void ChainEdges(const std::vector<PolygonEdge>& edges, std::vector<AcGePoint3d>& vertices);
