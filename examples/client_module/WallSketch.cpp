// A client module in one file. It registers two commands: WALLSKETCH draws a wall line through a
// room of its own and prints what happens to the room's walls; WALLFACE changes the current
// drawing by what it is answered.
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <vector>

#include "DrawWallAlgorithm/DrawWallLikeAlgorithm.h"
#include "acdocman.h"
#include "aced.h"
#include "afxext.h"
#include "arxEntryPoint.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "rxframe.h"

namespace {

void print(const char* what, const std::vector<WallLineLikeSeg*>& lines) {
  for (const WallLineLikeSeg* line : lines) {
    std::printf("%s %g,%g to %g,%g\n", what, line->ptStart.x, line->ptStart.y, line->ptEnd.x,
                line->ptEnd.y);
  }
}

void sketchWall() {
  CDrawWallLikeAlgorithm algorithm;
  const AcGePoint3d corners[] = {{0, 0, 0}, {4000, 0, 0}, {4000, 3000, 0}, {0, 3000, 0}};
  // The algorithm takes over the lines near the new one; the others stay ours.
  std::vector<std::unique_ptr<WallLineLikeSeg>> ours;
  for (int i = 0; i < 4; ++i) {
    ours.push_back(std::make_unique<WallLineLikeSeg>(corners[i], corners[(i + 1) % 4]));
    algorithm.GetSrcWallLines().push_back(ours.back().get());
  }
  algorithm.CalcNewWallLine(AcGePoint3d(-500, 1500, 0), AcGePoint3d(4500, 1500, 0));
  for (const WallLineLikeSeg* taken : algorithm.GetSrcModifyiedWallLines()) {
    for (std::unique_ptr<WallLineLikeSeg>& line : ours) {
      if (line.get() == taken) {
        line.release();
      }
    }
  }
  print("shortened", algorithm.GetSrcModifyiedWallLines());
  print("cut off", algorithm.GetSrcNewWallLines());
  print("new", algorithm.GetNewWallLines());
}

/// The lines of a layer in model space.
std::vector<AcDbObjectId> linesOn(const AcDbObjectId& layer, const AcDbObjectId& space) {
  std::vector<AcDbObjectId> lines;
  const AcDbObjectPointer<AcDbBlockTableRecord> block(space, AcDb::kForRead);
  AcDbBlockTableRecordIterator* made = nullptr;
  if (block.openStatus() != Acad::eOk || block->newIterator(made) != Acad::eOk) {
    return lines;
  }
  const std::unique_ptr<AcDbBlockTableRecordIterator> iterator(made);
  for (; !iterator->done(); iterator->step()) {
    AcDbObjectId id;
    iterator->getEntityId(id);
    const AcDbObjectPointer<AcDbLine> line(id, AcDb::kForRead);
    if (line.openStatus() == Acad::eOk && line->layerId() == layer) {
      lines.push_back(id);
    }
  }
  return lines;
}

/// Gives a line a parallel at its left, with all its properties.
void addFace(const AcDbObjectId& id, double distance, const AcDbObjectId& space) {
  const AcDbObjectPointer<AcDbLine> line(id, AcDb::kForRead);
  const AcGeVector3d along = line->endPoint() - line->startPoint();
  if (along.isZeroLength()) {
    return;
  }
  const AcGeVector3d aside = AcGeVector3d::kZAxis.crossProduct(along).normal() * distance;
  std::unique_ptr<AcDbEntity> face(static_cast<AcDbEntity*>(line->clone()));
  face->transformBy(AcGeMatrix3d().setToTranslation(aside));
  const AcDbObjectPointer<AcDbBlockTableRecord> block(space, AcDb::kForWrite);
  if (block->appendAcDbEntity(face.get()) == Acad::eOk) {
    face.release()->close();  // the drawing has it now
  }
}

void addFaces() {
  ACHAR layer[kMaxStringInput + 1];
  double distance = 0.0;
  if (acedGetString(0, L"Layer: ", layer) != RTNORM ||
      acedGetDist(nullptr, L"Distance: ", &distance) != RTNORM) {
    return;
  }
  AcDbDatabase* const drawing = curDoc()->database();
  if (!drawing) {
    throw std::runtime_error("it wants a drawing");
  }
  AcDbLayerTable* layers = nullptr;
  AcDbObjectId layerId;
  if (drawing->getLayerTable(layers, AcDb::kForRead) == Acad::eOk) {
    layers->getAt(layer, layerId);
    layers->close();
  }
  if (layerId.isNull()) {
    throw std::runtime_error("the drawing has no such layer");
  }
  AcDbBlockTable* blocks = nullptr;
  AcDbObjectId space;
  if (drawing->getBlockTable(blocks, AcDb::kForRead) == Acad::eOk) {
    blocks->getAt(ACDB_MODEL_SPACE, space);
    blocks->close();
  }
  const std::vector<AcDbObjectId> lines = linesOn(layerId, space);
  for (const AcDbObjectId& line : lines) {
    addFace(line, distance, space);
  }
  std::printf("%zu lines have a face at %g\n", lines.size(), distance);
}

constexpr AcRxCommandEntry kCommands[] = {
    {L"EXAMPLES", L"WALLSKETCH", L"WALLSKETCH", ACRX_CMD_MODAL, &sketchWall},
    {L"EXAMPLES", L"WALLFACE", L"WALLFACE", ACRX_CMD_MODAL, &addFaces}};

class WallSketchApp : public AcRxArxApp {
 public:
  WallSketchApp() {
    m_bUnlocked = true;
    m_bMDIAware = true;
    m_commandMap = kCommands;
  }
  void RegisterServerComponents() override {}
};

WallSketchApp s_app;

}  // namespace

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void* pkt) {
  return s_app.dispatch(msg, pkt);
}

extern "C" int APIENTRY DllMain(HINSTANCE, DWORD, LPVOID) {
  return 1;
}
