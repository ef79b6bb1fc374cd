#include "embedded/ed/SystemVariables.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "acedads.h"
#include "embedded/ed/Editor.h"

namespace {

using quoin::ed::UserSystem;
using quoin::ed::VariableRow;
using quoin::ed::View;

resbuf shortValue(short value) {
  resbuf buffer = {};
  buffer.restype = RTSHORT;
  buffer.resval.rint = value;
  return buffer;
}
resbuf realValue(double value) {
  resbuf buffer = {};
  buffer.restype = RTREAL;
  buffer.resval.rreal = value;
  return buffer;
}
resbuf textValue(const wchar_t* value) {
  resbuf buffer = {};
  buffer.restype = RTSTR;
  buffer.resval.rstring = const_cast<wchar_t*>(value);
  return buffer;
}
resbuf pointValue(short type, double x, double y, double z) {
  resbuf buffer = {};
  buffer.restype = type;
  buffer.resval.rpoint[0] = x;
  buffer.resval.rpoint[1] = y;
  buffer.resval.rpoint[2] = z;
  return buffer;
}

class SystemVariablesTest : public testing::Test {
 protected:
  static resbuf get(const wchar_t* name) {
    resbuf result = {};
    EXPECT_EQ(acedGetVar(name, &result), RTNORM) << name;
    return result;
  }
  static short getShort(const wchar_t* name) {
    const resbuf result = get(name);
    EXPECT_EQ(result.restype, RTSHORT);
    return result.resval.rint;
  }
  static double getReal(const wchar_t* name) {
    const resbuf result = get(name);
    EXPECT_EQ(result.restype, RTREAL);
    return result.resval.rreal;
  }
  static std::wstring getText(const wchar_t* name) {
    resbuf result = get(name);
    EXPECT_EQ(result.restype, RTSTR);
    const std::wstring text = result.resval.rstring;
    acutDelString(result.resval.rstring);
    return text;
  }
  static AcGePoint3d getPoint(const wchar_t* name, short type = RT3DPOINT) {
    const resbuf result = get(name);
    EXPECT_EQ(result.restype, type);
    return {result.resval.rpoint[0], result.resval.rpoint[1], result.resval.rpoint[2]};
  }
  static int set(const wchar_t* name, const resbuf& value) { return acedSetVar(name, &value); }

  quoin::ed::Editor editor;
  AcApDocument& document = editor.openDocument(L"/plans/house.dwg");
};

TEST_F(SystemVariablesTest, NamesAreTheSameInAnyLetterCase) {
  EXPECT_EQ(set(L"OsMode", shortValue(35)), RTNORM);
  EXPECT_EQ(getShort(L"OSMODE"), 35);
  EXPECT_EQ(getShort(L"osmode"), 35);
}

TEST_F(SystemVariablesTest, AnUnknownNameIsAnErrorAndTheBufferStays) {
  resbuf buffer = realValue(4.5);
  EXPECT_EQ(acedGetVar(L"NOSUCHVARIABLE", &buffer), RTERROR);
  EXPECT_EQ(acedGetVar(L"", &buffer), RTERROR);
  EXPECT_EQ(acedGetVar(nullptr, &buffer), RTERROR);
  EXPECT_EQ(acedGetVar(L"OSMODE", nullptr), RTERROR);
  EXPECT_EQ(buffer.restype, RTREAL);
  EXPECT_EQ(buffer.resval.rreal, 4.5);
  EXPECT_EQ(set(L"NOSUCHVARIABLE", shortValue(1)), RTERROR);
  EXPECT_EQ(acedSetVar(L"OSMODE", nullptr), RTERROR);
  EXPECT_EQ(acedSetVar(nullptr, &buffer), RTERROR);
}

TEST_F(SystemVariablesTest, AValueOfAnotherTypeIsAnErrorAndChangesNothing) {
  const short before = getShort(L"OSMODE");
  EXPECT_EQ(set(L"OSMODE", realValue(1.0)), RTERROR);
  EXPECT_EQ(set(L"OSMODE", textValue(L"1")), RTERROR);
  EXPECT_EQ(getShort(L"OSMODE"), before);
  EXPECT_EQ(set(L"LTSCALE", shortValue(2)), RTERROR);
  EXPECT_EQ(getReal(L"LTSCALE"), 1.0);
  EXPECT_EQ(set(L"USERS1", shortValue(2)), RTERROR);
  EXPECT_EQ(set(L"USERS1", textValue(nullptr)), RTERROR);
  EXPECT_EQ(set(L"INSBASE", realValue(2.0)), RTERROR);
}

TEST_F(SystemVariablesTest, AValueOutOfRangeIsAnErrorAndBothEndsBelongToTheRange) {
  EXPECT_EQ(set(L"OSMODE", shortValue(-1)), RTERROR);
  EXPECT_EQ(set(L"OSMODE", shortValue(0)), RTNORM);
  EXPECT_EQ(set(L"OSMODE", shortValue(32767)), RTNORM);
  EXPECT_EQ(set(L"INSUNITS", shortValue(20)), RTNORM);
  EXPECT_EQ(set(L"INSUNITS", shortValue(21)), RTERROR);
  EXPECT_EQ(getShort(L"INSUNITS"), 20);
  EXPECT_EQ(set(L"LTSCALE", realValue(0.0)), RTERROR);
  EXPECT_EQ(set(L"LTSCALE", realValue(-1.0)), RTERROR);
  EXPECT_EQ(set(L"LTSCALE", realValue(std::numeric_limits<double>::infinity())), RTERROR);
  EXPECT_EQ(set(L"LTSCALE", realValue(std::nan(""))), RTERROR);
  EXPECT_EQ(set(L"LTSCALE", realValue(1e-9)), RTNORM);
  EXPECT_EQ(set(L"DIMSCALE", realValue(0.0)), RTNORM);
  EXPECT_EQ(set(L"USERS1", textValue(std::wstring(255, L'x').c_str())), RTNORM);
  EXPECT_EQ(set(L"USERS1", textValue(std::wstring(256, L'x').c_str())), RTERROR);
  EXPECT_EQ(set(L"INSBASE", pointValue(RT3DPOINT, std::nan(""), 0.0, 0.0)), RTERROR);
}

TEST_F(SystemVariablesTest, AReadOnlyVariableCannotBeSet) {
  EXPECT_EQ(set(L"ACADVER", textValue(L"99")), RTERROR);
  EXPECT_EQ(set(L"VIEWSIZE", realValue(5.0)), RTERROR);
  EXPECT_EQ(set(L"SCREENSIZE", pointValue(RTPOINT, 1.0, 1.0, 0.0)), RTERROR);
  EXPECT_EQ(set(L"DWGNAME", textValue(L"x")), RTERROR);
  EXPECT_EQ(set(L"WORLDUCS", shortValue(1)), RTERROR);
  EXPECT_EQ(getText(L"ACADVER"), L"18.0");
}

TEST_F(SystemVariablesTest, EveryRowReadsBackWithItsOwnTypeAndItsFirstValueIsInRange) {
  for (const VariableRow& row : quoin::ed::variableTable()) {
    resbuf value = get(row.name);
    const short expected[] = {RTSHORT, RTREAL, RTSTR, RTPOINT, RT3DPOINT};
    EXPECT_EQ(value.restype, expected[static_cast<int>(row.type)]) << row.name;
    EXPECT_EQ(value.rbnext, nullptr);
    EXPECT_EQ(set(row.name, value), row.isReadOnly ? RTERROR : RTNORM) << row.name;
    if (value.restype == RTSTR) {
      acutDelString(value.resval.rstring);
    }
  }
  EXPECT_GE(quoin::ed::variableTable().size(), 100U);
}

TEST_F(SystemVariablesTest, PointsComeWithTwoOrThreeCoordinates) {
  EXPECT_EQ(set(L"SNAPBASE", pointValue(RTPOINT, 1.0, 2.0, 9.0)), RTNORM);
  EXPECT_EQ(getPoint(L"SNAPBASE", RTPOINT), AcGePoint3d(1.0, 2.0, 0.0));
  EXPECT_EQ(set(L"SNAPBASE", pointValue(RT3DPOINT, 3.0, 4.0, 9.0)), RTNORM);
  EXPECT_EQ(getPoint(L"SNAPBASE", RTPOINT), AcGePoint3d(3.0, 4.0, 0.0));
  EXPECT_EQ(set(L"INSBASE", pointValue(RT3DPOINT, 1.0, 2.0, 3.0)), RTNORM);
  EXPECT_EQ(getPoint(L"INSBASE"), AcGePoint3d(1.0, 2.0, 3.0));
  EXPECT_EQ(set(L"INSBASE", pointValue(RTPOINT, 5.0, 6.0, 7.0)), RTNORM);
  EXPECT_EQ(getPoint(L"INSBASE"), AcGePoint3d(5.0, 6.0, 0.0));
}

TEST_F(SystemVariablesTest, ADocumentHasItsOwnValuesAndTheSessionSharesTheOthers) {
  EXPECT_EQ(set(L"LTSCALE", realValue(7.0)), RTNORM);
  EXPECT_EQ(set(L"OSMODE", shortValue(5)), RTNORM);
  AcApDocument& other = editor.openDocument(L"other.dwg");
  EXPECT_EQ(getReal(L"LTSCALE"), 1.0);
  EXPECT_EQ(getShort(L"OSMODE"), 5);
  editor.setCurrentDocument(&document);
  EXPECT_EQ(getReal(L"LTSCALE"), 7.0);
  editor.closeDocument(document);
  editor.closeDocument(other);
  resbuf buffer = {};
  EXPECT_EQ(acedGetVar(L"LTSCALE", &buffer), RTERROR) << "no document, no value";
  EXPECT_EQ(set(L"LTSCALE", realValue(2.0)), RTERROR);
  EXPECT_EQ(getShort(L"OSMODE"), 5);
}

TEST_F(SystemVariablesTest, TheDrawingsNameComesInTwoParts) {
  EXPECT_EQ(getText(L"DWGNAME"), L"house.dwg");
  EXPECT_EQ(getText(L"DWGPREFIX"), L"/plans/");
  EXPECT_EQ(getShort(L"DWGTITLED"), 1);
  editor.openDocument(L"Drawing2.dwg");
  EXPECT_EQ(getText(L"DWGPREFIX"), L"");
  EXPECT_EQ(getShort(L"DWGTITLED"), 0);
}

TEST_F(SystemVariablesTest, APromptUnderWayMakesACommandActive) {
  EXPECT_EQ(getShort(L"CMDACTIVE"), 0);
  editor.prompts(document).begin(quoin::ed::Prompt::Point);
  EXPECT_EQ(getShort(L"CMDACTIVE"), 1);
}

TEST_F(SystemVariablesTest, TheViewIsToldInTheUserCoordinateSystem) {
  View view;
  view.height = 400.0;
  view.widthPixels = 1000.0;
  view.heightPixels = 500.0;
  view.center = {3.0, 4.0};
  view.target.set(10.0, 20.0, 0.0);
  view.twistRad = 0.5;
  ASSERT_TRUE(editor.setView(document, view));
  EXPECT_EQ(getReal(L"VIEWSIZE"), 400.0);
  EXPECT_EQ(getReal(L"VIEWTWIST"), 0.5);
  EXPECT_EQ(getPoint(L"SCREENSIZE", RTPOINT), AcGePoint3d(1000.0, 500.0, 0.0));
  EXPECT_EQ(getPoint(L"VIEWDIR"), AcGePoint3d(0.0, 0.0, 1.0));

  view.twistRad = 0.0;
  view.direction.set(0.0, -5.0, 0.0);
  ASSERT_TRUE(editor.setView(document, view));
  UserSystem system;
  system.origin.set(10.0, 0.0, 0.0);
  system.xAxis.set(0.0, 1.0, 0.0);
  system.yAxis.set(-1.0, 0.0, 0.0);
  ASSERT_TRUE(editor.setUserSystem(document, system));
  EXPECT_EQ(getPoint(L"VIEWDIR"), AcGePoint3d(-5.0, 0.0, 0.0));
  EXPECT_EQ(getPoint(L"TARGET"), AcGePoint3d(20.0, 0.0, 0.0));
  // In the front view the display's X is the world's X, its Y the world's Z.
  EXPECT_EQ(getPoint(L"VIEWCTR"), AcGePoint3d(20.0, -3.0, 4.0));
  EXPECT_EQ(getPoint(L"UCSORG"), AcGePoint3d(10.0, 0.0, 0.0));
  EXPECT_EQ(getPoint(L"UCSXDIR"), AcGePoint3d(0.0, 1.0, 0.0));
  EXPECT_EQ(getPoint(L"UCSYDIR"), AcGePoint3d(-1.0, 0.0, 0.0));
  EXPECT_EQ(getShort(L"WORLDUCS"), 0);
  ASSERT_TRUE(editor.setUserSystem(document, UserSystem()));
  EXPECT_EQ(getShort(L"WORLDUCS"), 1);
}

class CoordinateSystemsTest : public SystemVariablesTest {
 protected:
  static AcGePoint3d carried(const AcGePoint3d& point, const resbuf& from, const resbuf& to,
                             int displacement) {
    const ads_point in = {point.x, point.y, point.z};
    ads_point out = {};
    EXPECT_EQ(acedTrans(in, &from, &to, displacement, out), RTNORM);
    return {out[0], out[1], out[2]};
  }
  static int status(const resbuf& from, const resbuf& to) {
    const ads_point in = {1.0, 2.0, 3.0};
    ads_point out = {7.0, 7.0, 7.0};
    const int answer = acedTrans(in, &from, &to, 0, out);
    if (answer != RTNORM) {
      EXPECT_EQ(out[0], 7.0);
    }
    return answer;
  }

  const resbuf world = shortValue(0);
  const resbuf user = shortValue(1);
  const resbuf display = shortValue(2);
};

TEST_F(CoordinateSystemsTest, APointMovesAndTurnsADisplacementTurnsOnly) {
  UserSystem system;
  system.origin.set(10.0, 20.0, 30.0);
  system.xAxis.set(0.0, 1.0, 0.0);
  system.yAxis.set(0.0, 0.0, 1.0);
  ASSERT_TRUE(editor.setUserSystem(document, system));
  EXPECT_EQ(carried({1.0, 2.0, 3.0}, user, world, 0), AcGePoint3d(13.0, 21.0, 32.0));
  EXPECT_EQ(carried({1.0, 2.0, 3.0}, user, world, 1), AcGePoint3d(3.0, 1.0, 2.0));
  EXPECT_EQ(carried({13.0, 21.0, 32.0}, world, user, 0), AcGePoint3d(1.0, 2.0, 3.0));
  EXPECT_EQ(carried({3.0, 1.0, 2.0}, world, user, 1), AcGePoint3d(1.0, 2.0, 3.0));
}

TEST_F(CoordinateSystemsTest, ThereAndBackIsTheSamePointFromEverySystemToEveryOther) {
  UserSystem system;
  system.origin.set(1.0, -2.0, 3.0);
  system.xAxis.set(0.6, 0.8, 0.0);
  system.yAxis.set(-0.8, 0.6, 0.0);
  ASSERT_TRUE(editor.setUserSystem(document, system));
  View view;
  view.direction.set(1.0, -1.0, 1.0);
  view.target.set(5.0, 5.0, 5.0);
  view.twistRad = 0.3;
  ASSERT_TRUE(editor.setView(document, view));
  const resbuf normal = pointValue(RT3DPOINT, 0.0, 1.0, 2.0);
  const AcGePoint3d point(4.0, 5.0, 6.0);
  for (const resbuf& from : {world, user, display, normal}) {
    for (const resbuf& to : {world, user, display, normal}) {
      for (const int displacement : {0, 1}) {
        const AcGePoint3d there = carried(point, from, to, displacement);
        EXPECT_LT(carried(there, to, from, displacement).distanceTo(point), 1e-12);
      }
    }
  }
}

TEST_F(CoordinateSystemsTest, TheDisplaySystemLooksFromItsTargetTowardsTheViewer) {
  View view;
  view.direction.set(0.0, 0.0, 2.0);
  view.target.set(5.0, 6.0, 0.0);
  view.twistRad = std::numbers::pi / 2.0;
  ASSERT_TRUE(editor.setView(document, view));
  // The picture is turned counter-clockwise by the twist: what is right in the world is up.
  EXPECT_EQ(carried({6.0, 6.0, 1.0}, world, display, 0), AcGePoint3d(0.0, 1.0, 1.0));
  EXPECT_EQ(carried({0.0, 0.0, 1.0}, display, world, 1), AcGePoint3d(0.0, 0.0, 1.0));
}

TEST_F(CoordinateSystemsTest, ANormalStandsForAnObjectsOwnSystem) {
  const resbuf down = pointValue(RT3DPOINT, 0.0, 0.0, -1.0);
  EXPECT_EQ(carried({1.0, 2.0, 3.0}, down, world, 0), AcGePoint3d(-1.0, 2.0, -3.0));
}

TEST_F(CoordinateSystemsTest, WhatNamesNoSystemIsAnError) {
  EXPECT_EQ(status(world, shortValue(4)), RTERROR);
  EXPECT_EQ(status(shortValue(3), display), RTERROR);
  EXPECT_EQ(status(shortValue(-1), world), RTERROR);
  EXPECT_EQ(status(realValue(0.0), world), RTERROR);
  EXPECT_EQ(status(pointValue(RT3DPOINT, 0.0, 0.0, 0.0), world), RTERROR);
  EXPECT_EQ(acedTrans(nullptr, &world, &world, 0, nullptr), RTERROR);
  ads_point point = {1.0, 2.0, 3.0};
  EXPECT_EQ(acedTrans(point, nullptr, &world, 0, point), RTERROR);
  EXPECT_EQ(acedTrans(point, &world, &world, 0, point), RTNORM) << "in place";
  editor.setCurrentDocument(nullptr);
  EXPECT_EQ(status(user, world), RTERROR) << "no document, no user coordinate system";
}

TEST(SystemVariablesWithoutHost, EveryCallIsAnError) {
  resbuf buffer = shortValue(0);
  ads_point point = {};
  EXPECT_EQ(acedGetVar(L"OSMODE", &buffer), RTERROR);
  EXPECT_EQ(acedSetVar(L"OSMODE", &buffer), RTERROR);
  EXPECT_EQ(acedTrans(point, &buffer, &buffer, 0, point), RTERROR);
}

}  // namespace
