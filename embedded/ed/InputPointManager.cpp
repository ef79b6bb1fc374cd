#include "acedinpt.h"

#include <algorithm>

AcEdInputContextReactor::AcEdInputContextReactor() = default;
AcEdInputContextReactor::~AcEdInputContextReactor() = default;

void AcEdInputContextReactor::beginGetPoint(const AcGePoint3d*, const ACHAR*, int, const ACHAR*) {}
void AcEdInputContextReactor::endGetPoint(Acad::PromptStatus, const AcGePoint3d&, const ACHAR*&) {}
void AcEdInputContextReactor::beginGetAngle(const AcGePoint3d*, const ACHAR*, int, const ACHAR*) {}
void AcEdInputContextReactor::endGetAngle(Acad::PromptStatus, double&, const ACHAR*&) {}
void AcEdInputContextReactor::beginGetDistance(const AcGePoint3d*, const ACHAR*, int,
                                               const ACHAR*) {}
void AcEdInputContextReactor::endGetDistance(Acad::PromptStatus, double&, const ACHAR*&) {}
void AcEdInputContextReactor::beginGetOrientation(const AcGePoint3d*, const ACHAR*, int,
                                                  const ACHAR*) {}
void AcEdInputContextReactor::endGetOrientation(Acad::PromptStatus, double&, const ACHAR*&) {}
void AcEdInputContextReactor::beginGetCorner(const AcGePoint3d*, const ACHAR*, int, const ACHAR*) {}
void AcEdInputContextReactor::endGetCorner(Acad::PromptStatus, AcGePoint3d&, const ACHAR*&) {}
void AcEdInputContextReactor::beginGetScaleFactor(const ACHAR*, int, const ACHAR*) {}
void AcEdInputContextReactor::endGetScaleFactor(Acad::PromptStatus, double&, const ACHAR*&) {}
void AcEdInputContextReactor::beginGetString(const ACHAR*, int) {}
void AcEdInputContextReactor::endGetString(Acad::PromptStatus, ACHAR*&) {}
void AcEdInputContextReactor::beginGetKeyword(const ACHAR*, int, const ACHAR*) {}
void AcEdInputContextReactor::endGetKeyword(Acad::PromptStatus, const ACHAR*&) {}
void AcEdInputContextReactor::beginGetInteger(const ACHAR*, int, const ACHAR*) {}
void AcEdInputContextReactor::endGetInteger(Acad::PromptStatus, int&, const ACHAR*&) {}
void AcEdInputContextReactor::beginGetColor(const int*, const ACHAR*, int, const ACHAR*) {}
void AcEdInputContextReactor::endGetColor(Acad::PromptStatus, int&, const ACHAR*&) {}
void AcEdInputContextReactor::beginGetReal(const ACHAR*, int, const ACHAR*) {}
void AcEdInputContextReactor::endGetReal(Acad::PromptStatus, double&, const ACHAR*&) {}
void AcEdInputContextReactor::beginEntsel(const ACHAR*, int, const ACHAR*) {}
void AcEdInputContextReactor::endEntsel(Acad::PromptStatus, AcDbObjectId&, AcGePoint3d&,
                                        const ACHAR*) {}
void AcEdInputContextReactor::beginNentsel(const ACHAR*, Adesk::Boolean, int, const ACHAR*) {}
void AcEdInputContextReactor::endNentsel(Acad::PromptStatus, const AcDbObjectId&,
                                         const AcGePoint3d&, const AcGeMatrix3d&, const resbuf*,
                                         const ACHAR*) {}
void AcEdInputContextReactor::beginSSGet(const ACHAR*, int, const ACHAR*, const ACHAR*,
                                         const AcArray<AcGePoint3d>&, const resbuf*) {}
void AcEdInputContextReactor::endSSGet(Acad::PromptStatus, const AcDbObjectIdArray&) {}
void AcEdInputContextReactor::beginDragSequence(const ACHAR*) {}
void AcEdInputContextReactor::endDragSequence(Acad::PromptStatus, AcGePoint3d&, AcGeVector3d&) {}
void AcEdInputContextReactor::beginQuiescentState() {}
void AcEdInputContextReactor::endQuiescentState() {}

AcEdInputPointManager::AcEdInputPointManager() = default;
AcEdInputPointManager::~AcEdInputPointManager() = default;

Acad::ErrorStatus AcEdInputPointManager::addInputContextReactor(AcEdInputContextReactor* reactor) {
  if (!reactor) {
    return Acad::eInvalidInput;
  }
  if (m_isClosed) {
    return Acad::eInvalidContext;
  }
  if (has(reactor)) {
    return Acad::eDuplicateKey;
  }
  m_reactors.push_back(reactor);
  return Acad::eOk;
}

Acad::ErrorStatus AcEdInputPointManager::removeInputContextReactor(
    AcEdInputContextReactor* reactor) {
  if (!reactor) {
    return Acad::eInvalidInput;
  }
  return std::erase(m_reactors, reactor) > 0 ? Acad::eOk : Acad::eKeyNotFound;
}

bool AcEdInputPointManager::has(const AcEdInputContextReactor* reactor) const {
  return std::find(m_reactors.begin(), m_reactors.end(), reactor) != m_reactors.end();
}
