// Dictionaries: look-up, new objects, erasing and its way back, and what files leave out.
#include "dbdict.h"

#include <gtest/gtest.h>

#include "dbmaterial.h"
#include "support/Styles.h"

namespace quoin::test {
namespace {

AcDbMlineStyle* styleNamed(const wchar_t* name) {
  auto* const style = new AcDbMlineStyle;
  style->initMlineStyle();
  EXPECT_EQ(style->setName(name), Acad::eOk);
  return style;
}

/// Adds a style to a drawing and closes it.
AcDbObjectId addStyle(const Drawing& drawing, const wchar_t* name) {
  AcDbDictionary* styles = nullptr;
  EXPECT_EQ(drawing.db().getMLStyleDictionary(styles, AcDb::kForWrite), Acad::eOk);
  AcDbMlineStyle* const style = styleNamed(name);
  AcDbObjectId id;
  EXPECT_EQ(styles->setAt(name, style, id), Acad::eOk);
  style->close();
  styles->close();
  return id;
}

TEST(Dictionaries, NamesCompareInAnyCase) {
  const NoMisuse guard;
  const Drawing drawing;
  AcDbDictionary* root = nullptr;
  ASSERT_EQ(drawing.db().getNamedObjectsDictionary(root), Acad::eOk);
  AcDbObjectId id;
  EXPECT_EQ(root->getAt(L"acad_mlinestyle", id), Acad::eOk);
  EXPECT_EQ(id, drawing.db().mLStyleDictionaryId());
  EXPECT_TRUE(root->has(L"ACAD_GROUP"));
  EXPECT_TRUE(root->has(id));
  EXPECT_FALSE(root->has(drawing.db().layerZero()));
  EXPECT_EQ(root->getAt(L"NOTHING", id), Acad::eKeyNotFound);
  EXPECT_TRUE(id.isNull());
  EXPECT_EQ(root->getAt(L"", id), Acad::eInvalidInput);
  EXPECT_EQ(root->numEntries(), 5U);
  ACHAR* name = nullptr;
  EXPECT_EQ(root->nameAt(drawing.db().groupDictionaryId(), name), Acad::eOk);
  EXPECT_EQ(taken(name), L"ACAD_GROUP");
  EXPECT_EQ(root->nameAt(drawing.db().layerZero(), name), Acad::eKeyNotFound);
  AcDbDictionary* groups = nullptr;
  EXPECT_EQ(root->getAt(L"ACAD_GROUP", groups, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(groups->ownerId(), root->objectId());
  EXPECT_FALSE(groups->isTreatElementsAsHard());
  groups->close();
  AcDbMlineStyle* wrong = nullptr;
  EXPECT_EQ(root->getAt(L"ACAD_GROUP", wrong, AcDb::kForRead), Acad::eNotThatKindOfClass);
  root->close();
}

TEST(Dictionaries, IteratorsStandWhereTheyAreTold) {
  const Drawing drawing;
  const AcDbObjectPointer<AcDbDictionary> layouts(drawing.db().layoutDictionaryId());
  const std::unique_ptr<AcDbDictionaryIterator> walk(layouts->newIterator());
  EXPECT_STREQ(walk->name(), L"Model");
  const AcDbObjectId model = walk->objectId();
  EXPECT_TRUE(walk->next());
  EXPECT_STREQ(walk->name(), L"Layout1");
  EXPECT_TRUE(walk->setPosition(model));
  EXPECT_STREQ(walk->name(), L"Model");
  EXPECT_FALSE(walk->setPosition(drawing.db().layerZero()));
  AcDbObject* layout = nullptr;
  EXPECT_EQ(walk->getObject(layout), Acad::eOk);
  EXPECT_EQ(hostx::kindName(layout), L"LAYOUT");
  layout->close();
  walk->next();
  EXPECT_FALSE(walk->next());
  EXPECT_TRUE(walk->done());
  EXPECT_EQ(walk->name(), nullptr);
  EXPECT_TRUE(walk->objectId().isNull());
}

TEST(Dictionaries, ANewObjectGetsHandleOwnerAndEntry) {
  const NoMisuse guard;
  const Drawing drawing(smallDrawing());
  const AcDbObjectId id = addStyle(drawing, L"Brick");
  // The drawing had no dictionary of styles: it is made, under the root.
  std::string expected = smallR2000();
  const std::string dictionary =
      "0 DICTIONARY\n5 100\n102 {ACAD_REACTORS\n330 C\n102 }\n330 C\n100 AcDbDictionary\n281 1\n"
      "3 Brick\n350 101\n";
  const std::string style =
      "0 MLINESTYLE\n5 101\n102 {ACAD_REACTORS\n330 100\n102 }\n330 100\n100 AcDbMlineStyle\n"
      "2 Brick\n70 0\n3\n62 256\n51 90.0\n52 90.0\n71 0\n";
  const std::size_t objects = expected.find("2 OBJECTS");
  expected.insert(expected.find("0 ENDSEC", objects), dictionary + style);
  const std::string entry = "350 D\n";
  expected.insert(expected.find(entry) + entry.size(), "3 ACAD_MLINESTYLE\n350 100\n");
  expected.replace(expected.find("5 100\n"), 6, "5 102\n");  // the seed comes first
  EXPECT_EQ(drawing.saved(), asciiDxf(expected));
  EXPECT_EQ(id.handle(), AcDbHandle(0x101));
  const Drawing again(drawing.saved());
  EXPECT_EQ(namesIn(again.db().mLStyleDictionaryId()), (std::vector<std::wstring>{L"Brick"}));
  const AcDbObjectPointer<AcDbMlineStyle> read(again.id(0x101));
  ASSERT_EQ(read.openStatus(), Acad::eOk);
  EXPECT_EQ(read->ownerId(), again.db().mLStyleDictionaryId());
}

TEST(Dictionaries, OpeningToReadMakesNothing) {
  const std::string bytes = smallDrawing();
  const Drawing drawing(bytes);
  AcDbDictionary* styles = nullptr;
  EXPECT_EQ(drawing.db().getMLStyleDictionary(styles), Acad::eKeyNotFound);
  EXPECT_EQ(styles, nullptr);
  EXPECT_TRUE(drawing.db().mLStyleDictionaryId().isNull());
  EXPECT_EQ(drawing.saved(), bytes);
}

TEST(Dictionaries, R12HasNone) {
  const std::string bytes = asciiDxf(entitiesOnly("0 LINE\n8 0\n10 1\n20 2\n11 3\n21 4\n"));
  const Drawing drawing(bytes);
  AcDbDictionary* styles = nullptr;
  EXPECT_EQ(drawing.db().getMLStyleDictionary(styles, AcDb::kForWrite), Acad::eNotApplicable);
  EXPECT_EQ(styles, nullptr);
  EXPECT_EQ(drawing.db().getNamedObjectsDictionary(styles), Acad::eNotApplicable);
  const AcDbObjectPointer<AcDbEntity> line(entitiesOf(drawing.db())[0], AcDb::kForWrite);
  EXPECT_EQ(line->createExtensionDictionary(), Acad::eNotApplicable);
  EXPECT_EQ(drawing.saved(), bytes);
}

TEST(Dictionaries, ADrawingWithoutObjectsGetsTheSection) {
  const Drawing drawing(
      asciiDxf("0 SECTION\n2 HEADER\n9 $ACADVER\n1 AC1015\n9 $HANDSEED\n5 20\n"
               "0 ENDSEC\n0 SECTION\n2 ENTITIES\n0 ENDSEC\n0 EOF\n"));
  addStyle(drawing, L"Brick");
  const Drawing again(drawing.saved());
  EXPECT_EQ(namesIn(again.db().namedObjectsDictionaryId()),
            (std::vector<std::wstring>{L"ACAD_MLINESTYLE"}));
  EXPECT_EQ(namesIn(again.db().mLStyleDictionaryId()), (std::vector<std::wstring>{L"Brick"}));
}

TEST(Dictionaries, WrongObjectsAreRefused) {
  const NoMisuse guard;
  const Drawing drawing;
  AcDbDictionary* styles = nullptr;
  ASSERT_EQ(drawing.db().getMLStyleDictionary(styles, AcDb::kForWrite), Acad::eOk);
  const std::unique_ptr<AcDbMlineStyle> style(styleNamed(L"Brick"));
  AcDbMlineStyle nameless;
  AcDbLine line;
  AcDbLayerTableRecord layer;
  AcDbMaterial material;  // a new drawing's classes do not list it
  AcDbObjectId id;
  EXPECT_EQ(styles->setAt(L"", style.get(), id), Acad::eInvalidInput);
  EXPECT_EQ(styles->setAt(L"a\nb", style.get(), id), Acad::eInvalidInput);
  EXPECT_EQ(styles->setAt(L"Brick", nullptr, id), Acad::eNullObjectPointer);
  EXPECT_EQ(styles->setAt(L"Brick", &nameless, id), Acad::eInvalidInput);
  EXPECT_EQ(styles->setAt(L"Brick", &line, id), Acad::eNotThatKindOfClass);
  EXPECT_EQ(styles->setAt(L"Brick", &layer, id), Acad::eNotThatKindOfClass);
  EXPECT_EQ(styles->setAt(L"Brick", &material, id), Acad::eNotApplicable);
  EXPECT_TRUE(id.isNull());
  AcDbDictionary unplaced;
  EXPECT_EQ(unplaced.setAt(L"Brick", style.get(), id), Acad::eNotInDatabase);
  EXPECT_EQ(unplaced.numEntries(), 0U);
  AcDbMlineStyle* standard = nullptr;
  ASSERT_EQ(styles->getAt(L"Standard", standard, AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(styles->setAt(L"Brick", standard, id), Acad::eAlreadyInDb);
  EXPECT_EQ(standard->erase(), Acad::eNotApplicable);
  standard->close();
  EXPECT_EQ(styles->erase(), Acad::eNotApplicable);
  styles->close();
  hostx::resetMisuse();
  const AcDbObjectPointer<AcDbDictionary> reader(drawing.db().mLStyleDictionaryId());
  EXPECT_EQ(reader->setAt(L"Brick", style.get(), id), Acad::eNotOpenForWrite);
  EXPECT_EQ(reader->remove(L"Standard"), Acad::eNotOpenForWrite);
  hostx::resetMisuse();
}

TEST(Dictionaries, ErasedObjectsLeaveAndComeBack) {
  const NoMisuse guard;
  const Drawing drawing;
  const std::string before = drawing.saved("before.dxf");
  const AcDbObjectId id = addStyle(drawing, L"Brick");
  {
    const AcDbObjectPointer<AcDbMlineStyle> style(id, AcDb::kForWrite);
    EXPECT_EQ(style->erase(), Acad::eOk);
    EXPECT_EQ(style->erase(), Acad::eWasErased);
  }
  const AcDbObjectId dictionary = drawing.db().mLStyleDictionaryId();
  EXPECT_EQ(namesIn(dictionary), (std::vector<std::wstring>{L"Standard"}));
  EXPECT_EQ(drawing.saved().find("Brick"), std::string::npos);
  const AcDbObjectId other = addStyle(drawing, L"BRICK");
  {
    const AcDbObjectPointer<AcDbMlineStyle> style(id, AcDb::kForWrite, true);
    EXPECT_EQ(style->erase(false), Acad::eDuplicateKey);
  }
  {
    const AcDbObjectPointer<AcDbMlineStyle> style(other, AcDb::kForWrite);
    EXPECT_EQ(style->erase(), Acad::eOk);
  }
  const AcDbObjectPointer<AcDbMlineStyle> style(id, AcDb::kForWrite, true);
  EXPECT_EQ(style->erase(false), Acad::eOk);
  EXPECT_EQ(namesIn(dictionary), (std::vector<std::wstring>{L"Standard", L"Brick"}));
}

TEST(Dictionaries, WhatOthersPointToIsNotErased) {
  const Drawing drawing(smallDrawing(
      "0 MLINE\n5 40\n330 1F\n100 AcDbEntity\n8 0\n100 AcDbMline\n2 Brick\n340 101\n40 1.0\n"));
  const AcDbObjectId id = addStyle(drawing, L"Brick");
  ASSERT_EQ(id.handle(), AcDbHandle(0x101));
  const AcDbObjectPointer<AcDbMlineStyle> style(id, AcDb::kForWrite);
  EXPECT_EQ(style->erase(), Acad::eNotApplicable);
  {
    const AcDbObjectPointer<AcDbEntity> line(drawing.id(0x40), AcDb::kForWrite);
    EXPECT_EQ(line->erase(), Acad::eOk);
  }
  EXPECT_EQ(style->erase(), Acad::eOk);
}

TEST(Dictionaries, SettingANameAgainReplacesTheObject) {
  const Drawing drawing;
  const AcDbObjectId first = addStyle(drawing, L"Brick");
  const AcDbObjectId second = addStyle(drawing, L"BRICK");
  EXPECT_NE(first, second);
  EXPECT_TRUE(first.isErased());
  EXPECT_EQ(namesIn(drawing.db().mLStyleDictionaryId()),
            (std::vector<std::wstring>{L"Standard", L"BRICK"}));
}

TEST(Dictionaries, EntriesAreRemovedAndRenamed) {
  const Drawing drawing;
  const AcDbObjectId id = addStyle(drawing, L"Brick");
  const AcDbObjectPointer<AcDbDictionary> styles(drawing.db().mLStyleDictionaryId(),
                                                 AcDb::kForWrite);
  EXPECT_TRUE(styles->setName(L"brick", L"Stone"));
  EXPECT_FALSE(styles->setName(L"Stone", L"STANDARD"));
  EXPECT_FALSE(styles->setName(L"Brick", L"Other"));
  AcDbObjectId removed;
  EXPECT_EQ(styles->remove(L"Brick"), Acad::eKeyNotFound);
  EXPECT_EQ(styles->remove(L"STONE", removed), Acad::eOk);
  EXPECT_EQ(removed, id);
  EXPECT_EQ(styles->remove(id), Acad::eKeyNotFound);
  EXPECT_EQ(styles->numEntries(), 1U);
}

TEST(Dictionaries, EntitiesGetDictionariesOfTheirOwn) {
  const NoMisuse guard;
  const Drawing drawing(smallDrawing(lineTags("40")));
  const AcDbObjectPointer<AcDbEntity> line(drawing.id(0x40), AcDb::kForWrite);
  EXPECT_EQ(line->createExtensionDictionary(), Acad::eOk);
  EXPECT_EQ(line->createExtensionDictionary(), Acad::eAlreadyInDb);
  {
    const AcDbObjectPointer<AcDbDictionary> own(line->extensionDictionary(), AcDb::kForWrite);
    ASSERT_EQ(own.openStatus(), Acad::eOk);
    EXPECT_TRUE(own->isTreatElementsAsHard());
    EXPECT_EQ(own->ownerId(), line->objectId());
    auto* const inner = new AcDbDictionary;
    AcDbObjectId id;
    EXPECT_EQ(own->setAt(L"QUOIN", inner, id), Acad::eOk);
    inner->close();
  }
  const std::string bytes = drawing.saved();
  EXPECT_NE(bytes.find(asciiDxf("5 40\n102 {ACAD_XDICTIONARY\n360 100\n102 }\n330 1F\n")),
            std::string::npos);
  EXPECT_NE(bytes.find(asciiDxf("280 1\n281 1\n3 QUOIN\n360 101\n")), std::string::npos);
  EXPECT_EQ(line->erase(), Acad::eOk);
  EXPECT_EQ(drawing.saved().find("QUOIN"), std::string::npos);
  AcDbLine unplaced;
  EXPECT_EQ(unplaced.createExtensionDictionary(), Acad::eNotInDatabase);
}

TEST(Dictionaries, TheDefaultOfPlotStylesIsTold) {
  const Drawing drawing;
  const AcDbObjectPointer<AcDbDictionaryWithDefault> names(
      drawing.db().plotStyleNameDictionaryId());
  ASSERT_EQ(names.openStatus(), Acad::eOk);
  AcDbObjectId normal;
  EXPECT_EQ(names->getAt(L"Normal", normal), Acad::eOk);
  EXPECT_EQ(names->defaultId(), normal);
}

}  // namespace
}  // namespace quoin::test
