#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "acedads.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "embedded/ed/Editor.h"

namespace {

class DrawingVariablesTest : public testing::Test {
 protected:
  static resbuf get(const wchar_t* name) {
    resbuf result = {};
    EXPECT_EQ(acedGetVar(name, &result), RTNORM) << name;
    return result;
  }
  static std::wstring getText(const wchar_t* name) {
    resbuf result = get(name);
    const std::wstring text = result.resval.rstring;
    acutDelString(result.resval.rstring);
    return text;
  }
  static int setShort(const wchar_t* name, short value) {
    resbuf buffer = {};
    buffer.restype = RTSHORT;
    buffer.resval.rint = value;
    return acedSetVar(name, &buffer);
  }
  static int setReal(const wchar_t* name, double value) {
    resbuf buffer = {};
    buffer.restype = RTREAL;
    buffer.resval.rreal = value;
    return acedSetVar(name, &buffer);
  }
  static int setText(const wchar_t* name, const wchar_t* value) {
    resbuf buffer = {};
    buffer.restype = RTSTR;
    buffer.resval.rstring = const_cast<wchar_t*>(value);
    return acedSetVar(name, &buffer);
  }
  void addLayer(const wchar_t* name, bool frozen) {
    AcDbLayerTable* table = nullptr;
    ASSERT_EQ(drawing->getLayerTable(table, AcDb::kForWrite), Acad::eOk);
    auto* const layer = new AcDbLayerTableRecord;
    layer->setName(name);
    ASSERT_EQ(table->add(layer), Acad::eOk);
    layer->setIsFrozen(frozen);
    layer->close();
    table->close();
  }

  std::shared_ptr<AcDbDatabase> drawing = std::make_shared<AcDbDatabase>(true, false);
  quoin::ed::Editor editor;
  AcApDocument& document = editor.openDocument(L"plan.dxf", drawing);
};

TEST_F(DrawingVariablesTest, TheUnitsAreThoseOfTheDrawing) {
  ASSERT_EQ(drawing->setInsunits(AcDb::kUnitsMeters), Acad::eOk);
  EXPECT_EQ(get(L"INSUNITS").resval.rint, 6);
  EXPECT_EQ(setShort(L"INSUNITS", 5), RTNORM);
  EXPECT_EQ(drawing->insunits(), AcDb::kUnitsCentimeters);
  EXPECT_EQ(setShort(L"INSUNITS", 99), RTERROR);
  EXPECT_EQ(drawing->insunits(), AcDb::kUnitsCentimeters);
}

TEST_F(DrawingVariablesTest, OnlyALayerThatTheDrawingHasAndThatIsNotFrozenBecomesCurrent) {
  addLayer(L"WALLS", false);
  addLayer(L"FROZEN", true);
  EXPECT_EQ(getText(L"CLAYER"), L"0");
  EXPECT_EQ(setText(L"CLAYER", L"walls"), RTNORM);
  EXPECT_EQ(getText(L"CLAYER"), L"WALLS");
  EXPECT_EQ(setText(L"CLAYER", L"FROZEN"), RTERROR);
  EXPECT_EQ(setText(L"CLAYER", L"MISSING"), RTERROR);
  EXPECT_EQ(setText(L"CLAYER", L""), RTERROR);
  EXPECT_EQ(getText(L"CLAYER"), L"WALLS");
}

TEST_F(DrawingVariablesTest, NumbersReachTheDrawing) {
  EXPECT_EQ(setReal(L"LTSCALE", 25.0), RTNORM);
  EXPECT_EQ(drawing->ltscale(), 25.0);
  EXPECT_EQ(setReal(L"CELTSCALE", 2.0), RTNORM);
  EXPECT_EQ(drawing->celtscale(), 2.0);
  EXPECT_EQ(setReal(L"TEXTSIZE", 3.5), RTNORM);
  EXPECT_EQ(drawing->textsize(), 3.5);
  EXPECT_EQ(setReal(L"DIMSCALE", 100.0), RTNORM);
  EXPECT_EQ(drawing->dimscale(), 100.0);
  EXPECT_EQ(setReal(L"PDSIZE", -5.0), RTNORM);
  EXPECT_EQ(drawing->pdsize(), -5.0);
  EXPECT_EQ(setShort(L"PDMODE", 34), RTNORM);
  EXPECT_EQ(drawing->pdmode(), 34);
  EXPECT_EQ(setShort(L"MEASUREMENT", 0), RTNORM);
  EXPECT_EQ(drawing->measurement(), 0);
  EXPECT_EQ(setShort(L"CELWEIGHT", 50), RTNORM);
  EXPECT_EQ(drawing->celweight(), AcDb::kLnWt050);
  EXPECT_EQ(setReal(L"LTSCALE", 0.0), RTERROR);
  EXPECT_EQ(drawing->ltscale(), 25.0);
  resbuf base = {};
  base.restype = RT3DPOINT;
  base.resval.rpoint[1] = 7.0;
  EXPECT_EQ(acedSetVar(L"INSBASE", &base), RTNORM);
  EXPECT_EQ(drawing->insbase().y, 7.0);
}

TEST_F(DrawingVariablesTest, NamesMustBeThoseOfTheDrawing) {
  EXPECT_EQ(setText(L"CELTYPE", L"continuous"), RTNORM);
  EXPECT_EQ(drawing->celtype(), drawing->continuousLinetype());
  EXPECT_EQ(setText(L"CELTYPE", L"Missing"), RTERROR);
  EXPECT_EQ(getText(L"CELTYPE"), L"Continuous");
  EXPECT_EQ(setText(L"TEXTSTYLE", L"STANDARD"), RTNORM);
  EXPECT_EQ(setText(L"TEXTSTYLE", L"Missing"), RTERROR);
  EXPECT_EQ(getText(L"TEXTSTYLE"), L"Standard");
}

TEST_F(DrawingVariablesTest, EveryOneReadsAsTheDrawingSays) {
  EXPECT_EQ(get(L"MEASUREMENT").resval.rint, drawing->measurement());
  EXPECT_EQ(get(L"CELTSCALE").resval.rreal, drawing->celtscale());
  EXPECT_EQ(get(L"CELWEIGHT").resval.rint, drawing->celweight());
  EXPECT_EQ(get(L"TEXTSIZE").resval.rreal, drawing->textsize());
  EXPECT_EQ(get(L"DIMSCALE").resval.rreal, drawing->dimscale());
  EXPECT_EQ(get(L"PDMODE").resval.rint, drawing->pdmode());
  EXPECT_EQ(get(L"PDSIZE").resval.rreal, drawing->pdsize());
  EXPECT_EQ(get(L"INSBASE").resval.rpoint[0], drawing->insbase().x);
  EXPECT_EQ(get(L"EXTMIN").resval.rpoint[0], drawing->extmin().x);
  EXPECT_EQ(get(L"EXTMAX").resval.rpoint[2], drawing->extmax().z);
  EXPECT_FALSE(getText(L"TEXTSTYLE").empty());
  EXPECT_FALSE(getText(L"CELTYPE").empty());
}

TEST_F(DrawingVariablesTest, TheDocumentOwnsItsDrawingUntilItIsClosed) {
  EXPECT_EQ(document.database(), drawing.get());
  EXPECT_EQ(acDocManager->document(drawing.get()), &document);
  EXPECT_EQ(drawing.use_count(), 2);
  editor.closeDocument(document);
  EXPECT_EQ(drawing.use_count(), 1);
  EXPECT_EQ(document.database(), nullptr);
  EXPECT_EQ(acDocManager->document(drawing.get()), nullptr);
}

}  // namespace
