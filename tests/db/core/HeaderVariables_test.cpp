// Header variables.
#include <gtest/gtest.h>

#include <limits>

#include "support/Drawings.h"

namespace quoin::test {
namespace {

TEST(HeaderVariables, AreReadAndWritten) {
  const Drawing drawing(smallDrawing());
  EXPECT_EQ(drawing.db().insunits(), AcDb::kUnitsMillimeters);
  EXPECT_EQ(drawing.db().setInsunits(AcDb::kUnitsMeters), Acad::eOk);
  EXPECT_EQ(drawing.db().setInsunits(static_cast<AcDb::UnitsValue>(AcDb::kUnitsMax + 1)),
            Acad::eInvalidInput);
  EXPECT_EQ(drawing.db().handseed(), AcDbHandle(0x100));
  EXPECT_EQ(drawing.db().ltscale(), 1.0);  // not in the file
  EXPECT_EQ(drawing.db().extmin().x, 1.0e20);
  std::string expected = smallR2000();
  expected.replace(expected.find("70 4"), 4, "70 6");
  EXPECT_EQ(drawing.saved(), asciiDxf(expected));
  EXPECT_EQ(Drawing(drawing.saved()).db().insunits(), AcDb::kUnitsMeters);
}

TEST(HeaderVariables, WhatTheFileSaysAlreadyIsNotWritten) {
  std::string text = smallR2000();
  text.insert(text.find("0 ENDSEC"), "9 $LTSCALE\n40 2\n9 $CELTYPE\n6 BYLAYER\n");
  const Drawing drawing(asciiDxf(text));
  EXPECT_EQ(drawing.db().setLtscale(2.0), Acad::eOk);
  EXPECT_EQ(drawing.db().setCeltype(drawing.db().byLayerLinetype()), Acad::eOk);
  EXPECT_EQ(drawing.db().setCelweight(AcDb::kLnWtByLayer), Acad::eOk);  // the default
  EXPECT_EQ(drawing.db().setInsbase(AcGePoint3d()), Acad::eOk);
  EXPECT_EQ(drawing.saved(), asciiDxf(text));
  EXPECT_EQ(drawing.db().setLtscale(3.0), Acad::eOk);
  text.replace(text.find("40 2\n"), 5, "40 3.0\n");
  EXPECT_EQ(drawing.saved(), asciiDxf(text));
}

TEST(HeaderVariables, AMissingOneIsAddedInItsForm) {
  const Drawing drawing(smallDrawing());
  AcCmColor red;
  red.setRGB(255, 0, 0);
  EXPECT_EQ(drawing.db().setCecolor(red), Acad::eOk);
  EXPECT_EQ(drawing.db().setCeltype(drawing.db().continuousLinetype()), Acad::eOk);
  EXPECT_EQ(drawing.db().setCelweight(AcDb::kLnWt050), Acad::eOk);
  EXPECT_EQ(drawing.db().setTextsize(3.5), Acad::eOk);
  EXPECT_EQ(drawing.db().setPdmode(3), Acad::eOk);
  EXPECT_EQ(drawing.db().setInsbase(AcGePoint3d(1, 2, 3)), Acad::eOk);
  std::string expected = smallR2000();
  expected.insert(expected.find("0 ENDSEC"),
                  "9 $CECOLOR\n62 1\n9 $CELTYPE\n6 Continuous\n9 $CELWEIGHT\n370 50\n"
                  "9 $TEXTSIZE\n40 3.5\n9 $PDMODE\n70 3\n9 $INSBASE\n10 1.0\n20 2.0\n30 3.0\n");
  EXPECT_EQ(drawing.saved(), asciiDxf(expected));
}

TEST(HeaderVariables, WrongValuesAreRefused) {
  const Drawing drawing(smallDrawing());
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(drawing.db().setLtscale(0.0), Acad::eInvalidInput);
  EXPECT_EQ(drawing.db().setTextsize(nan), Acad::eInvalidInput);
  EXPECT_EQ(drawing.db().setDimscale(-1.0), Acad::eInvalidInput);
  EXPECT_EQ(drawing.db().setPdsize(nan), Acad::eInvalidInput);
  EXPECT_EQ(drawing.db().setInsbase(AcGePoint3d(nan, 0, 0)), Acad::eInvalidInput);
  EXPECT_EQ(drawing.db().setMeasurement(2), Acad::eInvalidInput);
  EXPECT_EQ(drawing.db().setCeltype(AcDbObjectId::kNull), Acad::eNullObjectId);
  EXPECT_EQ(drawing.db().setCeltype(drawing.db().layerZero()), Acad::eNotThatKindOfClass);
  const Drawing other(smallDrawing());
  EXPECT_EQ(drawing.db().setCeltype(other.db().byLayerLinetype()), Acad::eWrongDatabase);
  EXPECT_EQ(drawing.saved(), smallDrawing());
  const Drawing old(asciiDxf(entitiesOnly("0 LINE\n8 0\n10 1\n20 2\n11 3\n21 4\n")));
  EXPECT_EQ(old.db().setCelweight(AcDb::kLnWt050), Acad::eNotApplicable);
  EXPECT_EQ(old.db().setCeltscale(2.0), Acad::eNotApplicable);
  EXPECT_EQ(old.db().setMeasurement(1), Acad::eNotApplicable);
}

TEST(HeaderVariables, HandleSeedGrowsWithNewObjectsOnly) {
  const Drawing drawing(smallDrawing());
  const AcDbHandle before = drawing.db().handseed();
  EXPECT_FALSE(hostx::isModified(&drawing.db()));
  append(drawing.db(), new AcDbLine);
  EXPECT_EQ(drawing.db().handseed().asUInt64(), before.asUInt64() + 1);
}

}  // namespace
}  // namespace quoin::test
