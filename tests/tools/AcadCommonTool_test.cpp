#include "AcadCommonTool.h"

#include <gtest/gtest.h>

#include <cmath>

#include "acedads.h"
#include "adscodes.h"
#include "support/GeometryText.h"
#include "support/RunningHost.h"
#include "support/Styles.h"

namespace {

const double kPi = std::acos(-1.0);

AcGePoint3d lockAt(double degrees, double distance = 100.0) {
  const AcGePoint3d base(10, 20, 3);
  const AcGePoint3d picked(10 + distance * std::cos(degrees * kPi / 180.0),
                           20 + distance * std::sin(degrees * kPi / 180.0), 3);
  const AcGeVector3d locked = CAcadCommonTool::GetAngleLockPnt(base, picked) - base;
  return AcGePoint3d::kOrigin + locked;
}

void expectNear(const AcGePoint3d& actual, const AcGePoint3d& expected) {
  EXPECT_LT(actual.distanceTo(expected), 1e-9)
      << quoin::test::text(actual) << " is not " << quoin::test::text(expected);
}

AcGePoint3d polar(double degrees) {
  return {100 * std::cos(degrees * kPi / 180.0), 100 * std::sin(degrees * kPi / 180.0), 0};
}

TEST(AngleLock, TurnsToTheNearestFifteenDegrees) {
  expectNear(lockAt(7.4), polar(0));
  expectNear(lockAt(7.6), polar(15));
  expectNear(lockAt(100), polar(105));
  expectNear(lockAt(-50), polar(-45));
}

TEST(AngleLock, HalfWayAnglesGoUp) {
  // Around each half-way angle in the smallest steps that doubles allow; a few of them are one
  // angle with it once the half step is added.
  for (const int half : {1, 3, 5}) {
    const double limit = half * (kPi / 24);
    const double x = 100 * std::cos(limit);
    double y = 100 * std::sin(limit) * (1.0 - 4e-15);
    bool sawLimit = false;
    for (int step = 0; step < 60; ++step, y = std::nextafter(y, 200.0)) {
      const AcGePoint3d picked(x, y, 0);
      const double angle = AcGeVector3d::kXAxis.angleTo(picked.asVector(), AcGeVector3d::kZAxis);
      const AcGePoint3d locked = CAcadCommonTool::GetAngleLockPnt({}, picked);
      if (angle >= limit) {
        expectNear(locked, polar(15.0 * (half + 1) / 2));
      } else if (angle < limit * (1.0 - 1e-15)) {
        expectNear(locked, polar(15.0 * (half - 1) / 2));
      }
      sawLimit = sawLimit || angle == limit;
    }
    EXPECT_TRUE(sawLimit) << half;
  }
  expectNear(lockAt(7.5000001), polar(15));
  expectNear(lockAt(7.4999999), polar(0));
}

TEST(AngleLock, NearlyAFullTurnIsThePositiveXAxis) {
  expectNear(lockAt(352.5000001), polar(0));
  expectNear(lockAt(359.99), polar(0));
  expectNear(lockAt(352.4999999), polar(345));
}

TEST(AngleLock, APointOnItselfStaysThere) {
  const AcGePoint3d base(1, 2, 3);
  EXPECT_EQ(quoin::test::text(CAcadCommonTool::GetAngleLockPnt(base, base)), "1,2,3");
}

TEST(AngleLock, APointThatIsNoNumberIsLockedToNone) {
  const double noNumber = std::nan("");
  EXPECT_TRUE(std::isnan(CAcadCommonTool::GetAngleLockPnt({}, {noNumber, 1.0, 0.0}).x));
  EXPECT_TRUE(
      std::isnan(CAcadCommonTool::GetAngleLockPnt({0.0, noNumber, 0.0}, {1.0, 1.0, 0.0}).y));
}

TEST(AngleLock, HeightCountsInTheDistanceAndIsDropped) {
  const AcGePoint3d base(0, 0, 7);
  EXPECT_EQ(quoin::test::text(CAcadCommonTool::GetAngleLockPnt(base, AcGePoint3d(3, 0, 11))),
            "5,0,7");
}

TEST(AngleLock, MultiplesOfARightAngleAreExact) {
  EXPECT_EQ(quoin::test::text(CAcadCommonTool::GetAngleLockPnt({}, AcGePoint3d(1e-3, 50, 0)))
                .substr(0, 2),
            "0,");
}

TEST(View, TheScaleIsTheViewsHeightOverTheScreens) {
  quoin::test::RunningHost host;
  resbuf size = {};
  ASSERT_EQ(acedGetVar(L"SCREENSIZE", &size), RTNORM);
  resbuf height = {};
  ASSERT_EQ(acedGetVar(L"VIEWSIZE", &height), RTNORM);
  EXPECT_EQ(CAcadCommonTool::GetCurScale(), height.resval.rreal / size.resval.rpoint[Y]);
}

TEST(View, APlainTopViewIsOneOnlyInStandardDisplay) {
  quoin::test::RunningHost host;
  EXPECT_TRUE(CAcadCommonTool::GetWcsViewDir().isCodirectionalTo(AcGeVector3d::kZAxis));
  EXPECT_TRUE(CAcadCommonTool::IsZAxisViewPort(kAcGiStandardDisplay));
  EXPECT_FALSE(CAcadCommonTool::IsZAxisViewPort(kAcGiHideOrShadeCommand));
  EXPECT_FALSE(CAcadCommonTool::IsZAxisViewPort(kAcGiShadedDisplay));
}

TEST(View, FromBelowIsNoTopView) {
  quoin::test::RunningHost host;
  quoin::ed::View view;
  view.direction = AcGeVector3d(0, 0, -1);
  ASSERT_TRUE(host.host().editor().setView(*curDoc(), view));
  EXPECT_EQ(quoin::test::text(AcGePoint3d::kOrigin + CAcadCommonTool::GetWcsViewDir()), "0,0,-1");
  EXPECT_FALSE(CAcadCommonTool::IsZAxisViewPort(kAcGiStandardDisplay));
}

TEST(View, TheDirectionIsTheWorldsInEveryUserCoordinateSystem) {
  quoin::test::RunningHost host;
  quoin::ed::Editor& editor = host.host().editor();
  // Vertical and far away: Z of this system is the world's X.
  quoin::ed::UserSystem system;
  system.origin = AcGePoint3d(1000, 2000, 3000);
  system.xAxis = AcGeVector3d(0, 1, 0);
  system.yAxis = AcGeVector3d(0, 0, 1);
  for (const AcGeVector3d& direction : {AcGeVector3d(0, 0, 1), AcGeVector3d(1, 0, 0),
                                        AcGeVector3d(0, -2, 0), AcGeVector3d(1, 2, 3)}) {
    quoin::ed::View view;
    view.direction = direction;
    ASSERT_TRUE(editor.setView(*curDoc(), view));
    ASSERT_TRUE(editor.setUserSystem(*curDoc(), system));
    const AcGeVector3d seen = CAcadCommonTool::GetWcsViewDir();
    EXPECT_TRUE(seen.isCodirectionalTo(direction)) << seen.x << " " << seen.y << " " << seen.z;
    EXPECT_EQ(CAcadCommonTool::IsZAxisViewPort(kAcGiStandardDisplay),
              direction.x == 0.0 && direction.z > 0.0);
  }
}

TEST(TextStyle, IsSharedAndNotLoadedAtTheBeginning) {
  EXPECT_FALSE(CAcadCommonTool::s_bLoadStyle);
  EXPECT_STREQ(CAcadCommonTool::s_txtStyle.fileName(), L"");
  EXPECT_EQ(CAcadCommonTool::s_txtStyle.xScale(), 1.0);
  EXPECT_FALSE(CAcadCommonTool::s_txtStyle.isVertical());
}

TEST(TextStyle, ComesFromADrawing) {
  const quoin::test::Drawing drawing;
  AcDbObjectId id;
  acdbSymUtil()->getTextStyleId(id, L"Standard", &drawing.db());
  AcGiTextStyle style;
  EXPECT_EQ(fromAcDbTextStyle(style, id), Acad::eOk);
  EXPECT_STREQ(style.styleName(), L"Standard");
  EXPECT_STREQ(style.fileName(), L"txt");
  EXPECT_EQ(fromAcDbTextStyle(style, drawing.db().layerZero()), Acad::eNotThatKindOfClass);
  EXPECT_STREQ(style.fileName(), L"txt");
}

TEST(MlineStyle, IsMadeOneUnitWideAroundTheLine) {
  const quoin::test::NoMisuse guard;
  const quoin::test::Drawing drawing;
  const AcDbObjectId id = CAcadCommonTool::GetMlineStyleId(&drawing.db(), L"Wall", true, false);
  ASSERT_FALSE(id.isNull());
  const AcDbObjectPointer<AcDbMlineStyle> style(id);
  ASSERT_EQ(style.openStatus(), Acad::eOk);
  EXPECT_STREQ(style->name(), L"Wall");
  EXPECT_TRUE(style->startSquareCap());
  EXPECT_FALSE(style->endSquareCap());
  ASSERT_EQ(style->numElements(), 2);
  for (int i = 0; i < 2; ++i) {
    double offset = 0.0;
    AcCmColor color;
    AcDbObjectId linetype;
    EXPECT_EQ(style->getElementAt(i, offset, color, linetype), Acad::eOk);
    EXPECT_EQ(offset, i == 0 ? 0.5 : -0.5);
    EXPECT_TRUE(color.isByLayer());
  }
  EXPECT_TRUE(hostx::openObjects(&drawing.db()).size() == 1);  // the style that is open here
}

TEST(MlineStyle, AnExistingOneStaysAsItIs) {
  const quoin::test::NoMisuse guard;
  const quoin::test::Drawing drawing;
  const AcDbObjectId first = CAcadCommonTool::GetMlineStyleId(&drawing.db(), L"Wall", true, false);
  const std::string before = drawing.saved();
  EXPECT_EQ(CAcadCommonTool::GetMlineStyleId(&drawing.db(), L"Wall", false, true), first);
  EXPECT_EQ(CAcadCommonTool::GetMlineStyleId(&drawing.db(), L"WALL", false, true), first);
  EXPECT_EQ(drawing.saved(), before);
}

TEST(MlineStyle, IsNullWhereItCannotBeMade) {
  const quoin::test::NoMisuse guard;
  EXPECT_TRUE(CAcadCommonTool::GetMlineStyleId(nullptr, L"Wall", true, true).isNull());
  const std::string r12 = quoin::test::asciiDxf(
      quoin::test::entitiesOnly("0 LINE\n8 0\n10 1.0\n20 2.0\n11 3.0\n21 4.0\n"));
  const quoin::test::Drawing old(r12);
  EXPECT_TRUE(CAcadCommonTool::GetMlineStyleId(&old.db(), L"Wall", true, true).isNull());
  EXPECT_EQ(old.saved(), r12);
  const quoin::test::Drawing drawing;
  EXPECT_TRUE(CAcadCommonTool::GetMlineStyleId(&drawing.db(), L"", true, true).isNull());
  EXPECT_TRUE(CAcadCommonTool::GetMlineStyleId(&drawing.db(), L"a|b", true, true).isNull());
  const AcDbObjectPointer<AcDbDictionary> held(drawing.db().mLStyleDictionaryId());
  EXPECT_TRUE(CAcadCommonTool::GetMlineStyleId(&drawing.db(), L"Wall", true, true).isNull());
  EXPECT_EQ(quoin::test::namesIn(drawing.db().mLStyleDictionaryId()),
            (std::vector<std::wstring>{L"Standard"}));
}

}  // namespace
