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

TEST_F(DrawingVariablesTest, AValueThatTheDrawingCannotBeToldStaysWithTheDocument) {
  EXPECT_EQ(get(L"LTSCALE").resval.rreal, drawing->ltscale());
  const double before = drawing->ltscale();
  EXPECT_EQ(setReal(L"LTSCALE", before + 4.0), RTNORM);
  EXPECT_EQ(get(L"LTSCALE").resval.rreal, before + 4.0);
  EXPECT_EQ(drawing->ltscale(), before);
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
