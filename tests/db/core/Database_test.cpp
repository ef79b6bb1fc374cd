// Reading and saving: formats, errors with their words, and drawings that stay whole.
#include <gtest/gtest.h>

#include "dbapserv.h"
#include "support/Drawings.h"

namespace quoin::test {
namespace {

std::string errorOf(const Drawing& drawing) {
  return os::toUtf8(hostx::lastFileError(&drawing.db()));
}

TEST(ReadFile, AFileThatIsNotThereIsNamed) {
  const TemporaryFolder folder;
  AcDbDatabase database(false, true);
  const std::string path = folder.file("none.dxf");
  EXPECT_EQ(database.readDwgFile(os::fromUtf8(path).c_str()), Acad::eFileNotFound);
  EXPECT_NE(os::toUtf8(hostx::lastFileError(&database)).find("none.dxf"), std::string::npos);
  EXPECT_EQ(database.readDwgFile(nullptr), Acad::eInvalidInput);
  const ACHAR* name = nullptr;
  EXPECT_EQ(database.getFilename(name), Acad::eNotApplicable);
}

TEST(ReadFile, ABadFileNamesItsLineAndTheDatabaseStaysEmpty) {
  const Drawing drawing(asciiDxf("0 SECTION\n2 ENTITIES\n0 LINE\n8 A\n") + "x1\r\nbad\r\n");
  EXPECT_NE(drawing.status, Acad::eOk);
  EXPECT_NE(errorOf(drawing).find("plan.dxf:9"), std::string::npos) << errorOf(drawing);
  EXPECT_TRUE(entitiesOf(drawing.db()).empty());
  EXPECT_FALSE(acdbSymUtil()->blockModelSpaceId(&drawing.db()).isNull());
}

TEST(ReadFile, ADamagedDwgFileSaysThatItIsOne) {
  const Drawing drawing("AC1032" + std::string(200, '\0'), "plan.dwg");
  EXPECT_NE(drawing.status, Acad::eOk);
  EXPECT_NE(errorOf(drawing).find("plan.dwg"), std::string::npos) << errorOf(drawing);
}

TEST(ReadFile, NeverSavesOverTheFileThatCouldNotBeRead) {
  const std::string bytes = "this is no drawing";
  const Drawing drawing(bytes);
  ASSERT_NE(drawing.status, Acad::eOk);
  EXPECT_EQ(drawing.db().saveAs(os::fromUtf8(drawing.path).c_str()), Acad::eNotApplicable);
  EXPECT_NE(errorOf(drawing).find("could not be read"), std::string::npos);
  // Nor by another way to the same file.
  const std::string roundabout = (drawing.folder.path() / "." / "plan.dxf").string();
  EXPECT_EQ(drawing.db().saveAs(os::fromUtf8(roundabout).c_str()), Acad::eNotApplicable);
  std::filesystem::create_symlink(drawing.path, drawing.folder.path() / "link.dxf");
  EXPECT_EQ(drawing.db().saveAs(os::fromUtf8(drawing.folder.file("link.dxf")).c_str()),
            Acad::eNotApplicable);
  EXPECT_EQ(drawing.folder.get("plan.dxf"), bytes);
}

TEST(ReadFile, AFileThatIsNotThereIsNotMade) {
  const TemporaryFolder folder;
  AcDbDatabase database(false, true);
  const std::wstring path = os::fromUtf8(folder.file("none.dxf"));
  EXPECT_EQ(database.readDwgFile(path.c_str()), Acad::eFileNotFound);
  EXPECT_EQ(database.saveAs(path.c_str()), Acad::eNotApplicable);
  EXPECT_TRUE(folder.names().empty());
}

TEST(ReadFile, AnotherFileCanBeReadAfterAFailure) {
  const Drawing drawing("this is no drawing");
  const std::string good = drawing.folder.put("good.dxf", smallDrawing(lineTags("40")));
  EXPECT_EQ(drawing.db().readDwgFile(os::fromUtf8(good).c_str()), Acad::eOk);
  EXPECT_TRUE(errorOf(drawing).empty());
  EXPECT_EQ(entitiesOf(drawing.db()).size(), 1U);
  EXPECT_EQ(drawing.db().readDwgFile(os::fromUtf8(good).c_str()), Acad::eNotApplicable);
}

TEST(ReadFile, CanBeStopped) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", smallDrawing(lineTags("40")));
  AcDbDatabase database(false, true);
  hostx::setProgress(&database, [](double) { return false; });
  EXPECT_EQ(database.readDwgFile(os::fromUtf8(path).c_str()), Acad::eUserBreak);
  hostx::setProgress(&database, {});
  EXPECT_EQ(database.readDwgFile(os::fromUtf8(path).c_str()), Acad::eOk);
}

TEST(SaveFile, TellsItsProgressAndCanBeStopped) {
  const Drawing drawing(smallDrawing(lineTags("40")));
  double last = -1.0;
  hostx::setProgress(drawing.database.get(), [&](double fraction) {
    last = fraction;
    return true;
  });
  drawing.saved();
  EXPECT_EQ(last, 1.0);
  hostx::setProgress(drawing.database.get(), [](double) { return false; });
  const std::string before = drawing.folder.get("plan.dxf");
  EXPECT_EQ(drawing.db().saveAs(os::fromUtf8(drawing.path).c_str()), Acad::eUserBreak);
  EXPECT_EQ(drawing.folder.get("plan.dxf"), before);
}

TEST(SaveFile, KeepsABackupWhereAsked) {
  const Drawing drawing(smallDrawing(lineTags("40")));
  const std::string before = drawing.folder.get("plan.dxf");
  append(drawing.db(), new AcDbLine);
  EXPECT_EQ(drawing.db().saveAs(os::fromUtf8(drawing.path).c_str(), true), Acad::eOk);
  EXPECT_EQ(drawing.folder.get("plan.dxf.bak"), before);
  EXPECT_NE(drawing.folder.get("plan.dxf"), before);
  EXPECT_FALSE(hostx::isModified(&drawing.db()));
  EXPECT_EQ(hostx::lastSave(&drawing.db()).backup,
            os::fromUtf8(drawing.folder.file("plan.dxf.bak")));
  // Once more: there is nothing to write, and so nothing to keep.
  EXPECT_EQ(drawing.db().saveAs(os::fromUtf8(drawing.path).c_str(), true), Acad::eOk);
  EXPECT_TRUE(hostx::lastSave(&drawing.db()).isUnchanged);
  EXPECT_EQ(drawing.folder.names(), (std::set<std::string>{"plan.dxf", "plan.dxf.bak"}));
}

TEST(SaveFile, ADrawingThatSomebodyHasChangedSinceIsNotReplaced) {
  const Drawing drawing(smallDrawing(lineTags("40")));
  append(drawing.db(), new AcDbLine);
  drawing.folder.put("plan.dxf", "theirs");
  EXPECT_EQ(drawing.db().saveAs(os::fromUtf8(drawing.path).c_str(), true),
            Acad::eFileSharingViolation);
  EXPECT_NE(errorOf(drawing).find("changed it since it was read"), std::string::npos);
  EXPECT_EQ(drawing.folder.get("plan.dxf"), "theirs");
  // Elsewhere it may go; and what it has saved itself is no change by somebody.
  const std::wstring other = os::fromUtf8(drawing.folder.file("other.dxf"));
  EXPECT_EQ(drawing.db().saveAs(other.c_str()), Acad::eOk);
  append(drawing.db(), new AcDbLine);
  EXPECT_EQ(drawing.db().saveAs(other.c_str()), Acad::eOk);
}

TEST(SaveFile, BackupsGoWhereTheHostIsTold) {
  const Drawing drawing(smallDrawing(lineTags("40")));
  const std::string before = drawing.folder.get("plan.dxf");
  std::filesystem::create_directory(drawing.folder.path() / "old");
  append(drawing.db(), new AcDbLine);
  hostx::setBackupFolder(os::fromUtf8(drawing.folder.file("old")));
  EXPECT_EQ(drawing.db().saveAs(os::fromUtf8(drawing.path).c_str(), true), Acad::eOk);
  hostx::setBackupFolder(L"");
  EXPECT_EQ(drawing.folder.get("old/plan.dxf.bak"), before);
}

TEST(SaveFile, RefusesNamesThatPromiseAnotherFormat) {
  const Drawing drawing(smallDrawing());
  EXPECT_EQ(drawing.db().saveAs(os::fromUtf8(drawing.folder.file("plan.dwg")).c_str()),
            Acad::eUnsupportedFileFormat);
  EXPECT_EQ(drawing.db().saveAs(L""), Acad::eInvalidInput);
  EXPECT_EQ(drawing.db().saveAs(os::fromUtf8(drawing.folder.file("no/such/plan.dxf")).c_str()),
            Acad::eFileNotFound);
  EXPECT_EQ(drawing.folder.names(), (std::set<std::string>{"plan.dxf"}));
}

TEST(SaveFile, AFreshDrawingIsReadAgain) {
  const Drawing drawing;
  EXPECT_EQ(drawing.db().insunits(), AcDb::kUnitsMillimeters);
  append(drawing.db(), new AcDbLine({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}));
  const Drawing again(drawing.saved());
  ASSERT_EQ(again.status, Acad::eOk);
  EXPECT_EQ(entitiesOf(again.db()).size(), 1U);
  EXPECT_TRUE(hostx::warnings(&again.db()).empty());
}

TEST(CodePages, NamesAreWrittenAsTheFileSpellsThem) {
  std::string text = smallR2000();
  text.replace(text.find("ANSI_1252"), 9, "ANSI_936");
  const Drawing drawing(asciiDxf(text));
  auto* const line = new AcDbLine;
  line->setLayer(L"墙体");
  append(drawing.db(), line);
  const std::string saved = drawing.saved();
  EXPECT_NE(saved.find("  8\r\n\xC7\xBD\xCC\xE5\r\n"), std::string::npos);
  const Drawing again(saved);
  EXPECT_EQ(hostx::layerName(entitiesOf(again.db()).at(0)), L"墙体");
}

TEST(CodePages, TheCodePageThatSomebodyNamesHoldsForAllTextAndTheFileKeepsItsOwn) {
  for (const char* version : {"AC1015", "AC1027"}) {
    std::string text = smallR2000(lineTags("40"));
    text.replace(text.find("AC1015"), 6, version);
    text.replace(text.find("8 Walls", text.find("5 40")), 7, "8 \xC7\xBD\xCC\xE5");
    const std::string bytes = asciiDxf(text);
    for (const wchar_t* name : {L"gbk", L"ANSI_936", L"cp936", L"936", L"GB2312"}) {
      AcDbDatabase database(false, true);
      ASSERT_EQ(hostx::setCodePage(&database, name), Acad::eOk);
      const TemporaryFolder folder;
      const std::string path = folder.put("plan.dxf", bytes);
      ASSERT_EQ(database.readDwgFile(os::fromUtf8(path).c_str()), Acad::eOk);
      EXPECT_EQ(hostx::layerName(entitiesOf(database).at(0)), L"墙体") << version;
      EXPECT_EQ(hostx::fileInfo(&database).codePage, name);
      EXPECT_FALSE(hostx::fileInfo(&database).isTextUtf8);
      auto* const line = new AcDbLine;
      line->setLayer(L"墙体");
      append(database, line);
      const std::string saved = folder.file("saved.dxf");
      ASSERT_EQ(database.saveAs(os::fromUtf8(saved).c_str()), Acad::eOk);
      const std::string written = folder.get("saved.dxf");
      const std::string layer = "  8\r\n\xC7\xBD\xCC\xE5\r\n";
      const std::size_t first = written.find(layer);
      ASSERT_NE(first, std::string::npos);
      EXPECT_NE(written.find(layer, first + 1), std::string::npos);
      EXPECT_NE(written.find("ANSI_1252"), std::string::npos);
    }
  }
}

TEST(CodePages, ANameThatNobodyKnowsIsRefused) {
  AcDbDatabase database(false, true);
  for (const wchar_t* name : {L"nobody", L"cp99999", L"-", L"墙"}) {
    EXPECT_EQ(hostx::setCodePage(&database, name), Acad::eInvalidInput);
    EXPECT_FALSE(hostx::isKnownCodePage(name));
  }
  for (const wchar_t* name : {L"cp1252", L"windows-1251", L"shift_jis", L"Big5", L"utf-8",
                              L"euc-kr", L"latin1", L"iso-8859-15", L"koi8-r", L"gb18030"}) {
    EXPECT_EQ(hostx::setCodePage(&database, name), Acad::eOk) << name;
    EXPECT_TRUE(hostx::isKnownCodePage(name)) << name;
  }
  EXPECT_EQ(hostx::setCodePage(&database, L""), Acad::eOk);
  EXPECT_EQ(hostx::setCodePage(nullptr, L"gbk"), Acad::eInvalidInput);
  EXPECT_EQ(hostx::setCodePage(&database, nullptr), Acad::eInvalidInput);
  const Drawing drawing(smallDrawing(lineTags("40")));
  EXPECT_EQ(hostx::setCodePage(&drawing.db(), L"gbk"), Acad::eNotApplicable);
}

TEST(CodePages, AnUnknownOneThatTheFileNamesIsWarnedOf) {
  std::string text = smallR2000(lineTags("40"));
  text.replace(text.find("ANSI_1252"), 9, "ANSI_9999");
  const Drawing drawing(asciiDxf(text));
  const std::vector<std::wstring> warnings = hostx::warnings(&drawing.db());
  ASSERT_EQ(warnings.size(), 1U);
  EXPECT_EQ(warnings[0], L"code page 'ANSI_9999' is unknown; read as ANSI_1252");
}

TEST(BinaryFiles, NewRecordsAreBinaryToo) {
  const Drawing drawing(binaryDxf(smallR2000(lineTags("40")), false));
  ASSERT_EQ(drawing.status, Acad::eOk) << errorOf(drawing);
  EXPECT_TRUE(hostx::fileInfo(&drawing.db()).isBinary);
  auto* const line = new AcDbLine({0.1, 0.2, 0.3}, {1.0 / 3.0, 2.0, 3.0});
  line->setColorIndex(5);
  const AcDbObjectId id = append(drawing.db(), line);
  const Drawing again(drawing.saved());
  ASSERT_EQ(again.status, Acad::eOk) << errorOf(again);
  const AcDbObjectPointer<AcDbLine> read(again.id(id.handle().asUInt64()));
  EXPECT_EQ(read->startPoint().z, 0.3);
  EXPECT_EQ(read->endPoint().x, 1.0 / 3.0);
  EXPECT_EQ(read->colorIndex(), 5);
}

TEST(WorkingDatabase, IsForgottenWhenItGoes) {
  AcDbHostApplicationServices* const services = acdbHostApplicationServices();
  EXPECT_EQ(services->workingDatabase(), nullptr);
  {
    AcDbDatabase database;
    services->setWorkingDatabase(&database);
    EXPECT_EQ(services->workingDatabase(), &database);
  }
  EXPECT_EQ(services->workingDatabase(), nullptr);
}

}  // namespace
}  // namespace quoin::test
