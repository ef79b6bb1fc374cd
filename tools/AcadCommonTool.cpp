#include "AcadCommonTool.h"

#include <cmath>
#include <cstdint>

#include "acedads.h"
#include "adscodes.h"
#include "dbdict.h"
#include "dbmstyle.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kLockStep = kPi / 12.0;      // 15 degrees
constexpr double kHalfLockStep = kPi / 24.0;  // added before truncating: rounds half up
constexpr double kHalfStyleWidth = 0.5;       // a style is one unit wide, scaled when drawn

resbuf MakeCoordinateSystem(short code) {
  resbuf rb = {};
  rb.restype = RTSHORT;
  rb.resval.rint = code;
  return rb;
}

}  // namespace

bool CAcadCommonTool::s_bLoadStyle = false;
AcGiTextStyle CAcadCommonTool::s_txtStyle(nullptr);

CAcadCommonTool& CAcadCommonTool::operator=(const CAcadCommonTool&) = default;

double CAcadCommonTool::GetCurScale() {
  resbuf rbViewSize = {};
  acedGetVar(L"VIEWSIZE", &rbViewSize);
  resbuf rbScreenSize = {};
  acedGetVar(L"SCREENSIZE", &rbScreenSize);
  return rbViewSize.resval.rreal / rbScreenSize.resval.rpoint[Y];
}

AcGeVector3d CAcadCommonTool::GetWcsViewDir() {
  resbuf rbViewDir = {};
  acedGetVar(L"VIEWDIR", &rbViewDir);
  constexpr short kWorld = 0;
  constexpr short kUser = 1;
  const resbuf rbFrom = MakeCoordinateSystem(kUser);
  const resbuf rbTo = MakeCoordinateSystem(kWorld);
  ads_point ptDir = {0.0, 0.0, 0.0};
  // A displacement: only the rotation between the systems applies.
  acedTrans(rbViewDir.resval.rpoint, &rbFrom, &rbTo, 1, ptDir);
  return AcGeVector3d(ptDir[X], ptDir[Y], ptDir[Z]);
}

bool CAcadCommonTool::IsZAxisViewPort(AcGiRegenType regenType) {
  const AcGeVector3d vecViewDir = GetWcsViewDir();
  return regenType == kAcGiStandardDisplay && vecViewDir.isCodirectionalTo(AcGeVector3d::kZAxis);
}

AcGePoint3d CAcadCommonTool::GetAngleLockPnt(const AcGePoint3d& basePnt,
                                             const AcGePoint3d& curPnt) {
  const AcGeVector3d vec = curPnt - basePnt;
  const double angle = AcGeVector3d::kXAxis.angleTo(vec, AcGeVector3d::kZAxis);
  // NaN has no direction; the length that follows makes the point NaN all the same.
  const std::int32_t steps =
      std::isnan(angle) ? 0 : static_cast<std::int32_t>((angle + kHalfLockStep) / kLockStep);
  AcGeVector3d vecLocked = AcGeVector3d::kXAxis;
  vecLocked.rotateBy(steps * kLockStep, AcGeVector3d::kZAxis);
  vecLocked.normalize();
  return basePnt + vecLocked * vec.length();
}

AcDbObjectId CAcadCommonTool::GetMlineStyleId(AcDbDatabase* pDb, const CString& styleName,
                                              bool bStartSquareCap, bool bEndSquareCap) {
  AcDbObjectId styleId;
  AcDbDictionary* pDictionary = nullptr;
  if (!pDb || pDb->getMLStyleDictionary(pDictionary, AcDb::kForWrite) != Acad::eOk ||
      !pDictionary) {
    return styleId;
  }
  if (pDictionary->getAt(styleName, styleId) == Acad::eOk) {
    pDictionary->close();
    return styleId;
  }
  AcDbMlineStyle* const pStyle = new AcDbMlineStyle;
  pStyle->initMlineStyle();
  pStyle->setName(styleName);
  pStyle->setStartSquareCap(bStartSquareCap);
  pStyle->setEndSquareCap(bEndSquareCap);
  AcCmColor color;
  color.setColorMethod(AcCmEntityColor::kByLayer);
  int nIndex = 0;
  pStyle->addElement(nIndex, kHalfStyleWidth, color, AcDbObjectId::kNull);
  pStyle->addElement(nIndex, -kHalfStyleWidth, color, AcDbObjectId::kNull);
  pDictionary->setAt(styleName, pStyle, styleId);
  pDictionary->close();
  if (styleId.isNull()) {
    delete pStyle;  // the dictionary did not take it
  } else {
    pStyle->close();
  }
  return styleId;
}
