#include "EdgeChain.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>
#include <thread>

#include "gegbl.h"

namespace {

/// Cells are this many tolerances wide: a point touches few points of other cells.
constexpr double kCellTolerances = 100.0;

/// Where edges begin and end, in cells of space, for finding those that touch a point.
///
/// Every point that is equal to `pt` within the tolerance t lies in a cell that Visit() looks
/// at. Along each axis equal points differ by at most t = cell / 100, and the two roundings of
/// x / cell are below a hundredth of a cell wherever neighbouring doubles are closer than t; so
/// the cells of (x - 2t) / cell and (x + 2t) / cell are the only ones that the other may be in.
/// Where doubles lie further apart than t, equal within t means equal, and equal numbers have
/// equal cells. NaN and infinity equal nothing, whatever cell they are in.
class CEdgeEnds {
 public:
  explicit CEdgeEnds(const std::vector<PolygonEdge>& edges)
      : m_edges(edges), m_cell(kCellTolerances * AcGeContext::gTol.equalPoint()) {
    m_next.resize(2 * edges.size(), kNone);
    m_cells.resize(std::bit_ceil(kCellsPerEnd * m_next.size()));
    // From the back to the front, so that each cell lists its ends in edge order.
    for (std::size_t i = 2 * edges.size(); i-- > 0;) {
      const AcGePoint3d& point = PointOf(i);
      Cell& cell = FindCell(KeyOf(CellOf(point.x), CellOf(point.y), CellOf(point.z)));
      if (cell.first != kUnused) {
        m_next[i] = cell.first;
      }
      cell.first = i;
    }
  }

  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  /// The first end in the order of the edges, starts before ends, that touches the point and
  /// whose edge is still there; kNone if there is none.
  std::size_t FindFirst(const AcGePoint3d& pt, const std::vector<bool>& isGone) {
    std::size_t best = kNone;
    const Span x = CellsOf(pt.x);
    const Span y = CellsOf(pt.y);
    const Span z = CellsOf(pt.z);
    for (int i = 0; i < 8; ++i) {
      if ((i & 1 && x.isOne) || (i & 2 && y.isOne) || (i & 4 && z.isOne)) {
        continue;
      }
      Cell& cell =
          FindCell(KeyOf(i & 1 ? x.high : x.low, i & 2 ? y.high : y.low, i & 4 ? z.high : z.low));
      if (cell.first != kUnused) {
        best = std::min(best, FirstInCell(cell.first, pt, isGone));
      }
    }
    return best;
  }

 private:
  static constexpr std::size_t kUnused = static_cast<std::size_t>(-2);
  static constexpr std::size_t kCellsPerEnd = 2;

  struct Span {
    double low;
    double high;
    bool isOne;
  };

  const AcGePoint3d& PointOf(std::size_t end) const {
    return end % 2 == 0 ? m_edges[end / 2].start : m_edges[end / 2].end;
  }
  double CellOf(double x) const { return std::floor(x / m_cell); }
  Span CellsOf(double x) const {
    const double margin = 2.0 / kCellTolerances * m_cell;
    const double low = CellOf(x - margin);
    const double high = CellOf(x + margin);
    return {low, high, low == high};
  }

  /// A place in the table: free, or the cell with this key.
  struct Cell {
    std::uint64_t key = 0;
    std::size_t first = kUnused;
  };
  /// The cell's place, or a free one, which then bears the key.
  Cell& FindCell(std::uint64_t key) {
    for (std::size_t i = key >> 20U;; ++i) {
      Cell& cell = m_cells[i & (m_cells.size() - 1)];
      if (cell.first == kUnused || cell.key == key) {
        cell.key = key;
        return cell;
      }
    }
  }

  static std::uint64_t KeyOf(double x, double y, double z) {
    std::uint64_t key = 0;
    for (const double cell : {x, y, z}) {
      const double value = cell + 0.0;  // -0 and 0 are one cell
      std::uint64_t bits = 0;
      std::memcpy(&bits, &value, sizeof bits);
      key = (key ^ bits) * 0x9E3779B97F4A7C15U;  // 2^64 over the golden ratio spreads the bits
      key ^= key >> 32U;
    }
    return key;
  }

  /// Ends whose edge is gone leave the list on the way, so that no list is walked twice.
  std::size_t FirstInCell(std::size_t& first, const AcGePoint3d& pt,
                          const std::vector<bool>& isGone) {
    std::size_t* link = &first;
    while (*link != kNone) {
      const std::size_t end = *link;
      if (isGone[end / 2]) {
        *link = m_next[end];
      } else if (PointOf(end).isEqualTo(pt)) {
        return end;
      } else {
        link = &m_next[end];
      }
    }
    return kNone;
  }

  const std::vector<PolygonEdge>& m_edges;
  double m_cell;
  std::vector<std::size_t> m_next;  // by end: the next one of its cell
  std::vector<Cell> m_cells;        // a hash table with open addressing, never full
};

}  // namespace

void ChainEdges(const std::vector<PolygonEdge>& edges, std::vector<AcGePoint3d>& vertices) {
  // Only if there is something to look for: edges mostly come one behind the other.
  std::optional<CEdgeEnds> ends;
  std::vector<bool> isGone(edges.size(), false);
  isGone.back() = true;
  std::size_t firstLeft = 0;
  AcGePoint3d current = edges.back().end;
  vertices.push_back(current);
  for (std::size_t remaining = edges.size() - 1; remaining > 0; --remaining) {
    while (isGone[firstLeft]) {
      ++firstLeft;
    }
    // The first edge that is left comes before all others, if it touches.
    std::size_t found = CEdgeEnds::kNone;
    if (edges[firstLeft].start.isEqualTo(current)) {
      found = 2 * firstLeft;
    } else if (edges[firstLeft].end.isEqualTo(current)) {
      found = 2 * firstLeft + 1;
    }
    while (found == CEdgeEnds::kNone) {
      if (!ends) {
        ends.emplace(edges);
      }
      found = ends->FindFirst(current, isGone);
      if (found == CEdgeEnds::kNone) {
        std::this_thread::yield();  // there is no other way out of a loop that does not close
      }
    }
    const PolygonEdge& edge = edges[found / 2];
    current = found % 2 == 0 ? edge.end : edge.start;
    isGone[found / 2] = true;
    vertices.push_back(current);
  }
}
