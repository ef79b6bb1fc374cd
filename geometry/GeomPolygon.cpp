#include "GeomPolygon.h"

#include "EdgeChain.h"
#include "SortAlongDirection.h"
#include "dbents.h"
#include "dbregion.h"
#include "geline3d.h"
#include "gelnsg3d.h"

namespace {

constexpr int kGrowLength = 8;  // of the arrays that travel to the host

AcDbVoidPtrArray MakeArray() {
  return AcDbVoidPtrArray(0, kGrowLength);
}

/// The lines among the pieces of a region, which are deleted whatever they are.
std::vector<PolygonEdge> TakeEdges(AcDbVoidPtrArray& pieces) {
  std::vector<PolygonEdge> edges;
  for (int i = 0; i < pieces.length(); ++i) {
    AcDbEntity* const pEntity = static_cast<AcDbEntity*>(pieces[i]);
    if (const AcDbLine* pLine = AcDbLine::cast(pEntity)) {
      edges.push_back({pLine->startPoint(), pLine->endPoint()});
    }
    delete pEntity;
  }
  return edges;
}

}  // namespace

CGeomPolygon::CGeomPolygon() = default;
CGeomPolygon::CGeomPolygon(const CGeomPolygon& other) = default;
CGeomPolygon& CGeomPolygon::operator=(const CGeomPolygon& other) = default;
CGeomPolygon::~CGeomPolygon() = default;

void CGeomPolygon::AppendVertex(const AcGePoint3d& pt) {
  m_vertexArray.push_back(pt);
}

const std::vector<AcGePoint3d>& CGeomPolygon::GetPolygonVertextArray() {
  return m_vertexArray;
}

CGeomPolygon& CGeomPolygon::IntersectWith(const CGeomPolygon& other, bool& bIntersect) {
  AcDbRegion* pRegion = nullptr;
  CreatePolygonRegion(pRegion);
  AcDbRegion* pOther = nullptr;
  other.CreatePolygonRegion(pOther);
  bIntersect = false;
  if (!pRegion || !pOther) {
    delete pRegion;
    delete pOther;
    return *this;
  }
  pRegion->booleanOper(AcDb::kBoolIntersect, pOther);
  AcDbVoidPtrArray pieces = MakeArray();
  pRegion->explode(pieces);
  m_vertexArray.clear();
  const std::vector<PolygonEdge> edges = TakeEdges(pieces);
  constexpr std::size_t kLeastEdges = 2;
  if (edges.size() >= kLeastEdges) {
    bIntersect = true;
    ChainEdges(edges, m_vertexArray);
  }
  delete pRegion;
  delete pOther;
  return *this;
}

void CGeomPolygon::GetVArrayByDir(std::vector<AcGePoint3d>& vertices, const AcGeVector3d& dir) {
  vertices.insert(vertices.end(), m_vertexArray.begin(), m_vertexArray.end());
  SortAlongDirection(vertices.begin(), vertices.end(), dir);
}

void CGeomPolygon::GetPrjLineSeg(AcGeLineSeg3d& seg, const AcGeLine3d& line) {
  constexpr std::size_t kLeastVertices = 2;
  if (m_vertexArray.size() < kLeastVertices) {
    return;
  }
  std::vector<AcGePoint3d> feet;
  for (const AcGePoint3d& vertex : m_vertexArray) {
    feet.push_back(line.closestPointTo(vertex));
  }
  SortAlongDirection(feet.begin(), feet.end(), line.direction());
  seg.set(feet.front(), feet.back());
}

void CGeomPolygon::CreatePolygonRegion(AcDbRegion*& pRegion) const {
  pRegion = nullptr;
  AcDbVoidPtrArray curves = MakeArray();
  const std::size_t count = m_vertexArray.size();
  for (std::size_t i = 0; i < count; ++i) {
    curves.append(new AcDbLine(m_vertexArray[i], m_vertexArray[(i + 1) % count]));
  }
  AcDbVoidPtrArray regions;
  AcDbRegion::createFromCurves(curves, regions);
  for (int i = 0; i < curves.length(); ++i) {
    delete static_cast<AcDbLine*>(curves[i]);
  }
  if (!regions.isEmpty()) {
    // The first region alone is handed out; others are nobody's.
    pRegion = AcDbRegion::cast(static_cast<AcRxObject*>(regions[0]));
  }
}
