#include "embedded/dxf/DrawingFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "embedded/dxf/FileError.h"
#include "support/DxfText.h"
#include "support/FaultyFiles.h"
#include "support/TemporaryFolder.h"

namespace quoin::dxf {
namespace {

using test::asciiDxf;
using test::FaultyFiles;
using test::lineTags;
using test::smallR2000;
using test::TemporaryFolder;
using Names = std::set<std::string>;

template <typename Work>
FileError errorOf(Work work) {
  try {
    work();
  } catch (const FileError& error) {
    return error;
  }
  return FileError(Acad::eOk, "no error");
}

std::string plan() {
  return asciiDxf(smallR2000(lineTags("50")));
}

SaveOptions withBackup() {
  SaveOptions options;
  options.keepBackup = true;
  return options;
}

TEST(DrawingFile, ComesBackByteForByte) {
  const TemporaryFolder folder;
  RecordStore store;
  readDrawing(folder.put("plan.dxf", plan()), store);
  EXPECT_EQ(store.fileName(), folder.file("plan.dxf"));
  writeDrawing(store, folder.file("out.dxf"));
  EXPECT_EQ(folder.get("out.dxf"), plan());
  EXPECT_EQ(folder.names(), (Names{"plan.dxf", "out.dxf"}));
}

TEST(DrawingFile, SavedInPlaceKeepsTheOldVersionWhereAsked) {
  const TemporaryFolder folder;
  RecordStore store;
  const std::string path = folder.put("plan.dxf", plan());
  readDrawing(path, store);
  store.setErased(*store.find(0x50), true);
  writeDrawing(store, path, withBackup());
  EXPECT_EQ(folder.get("plan.dxf"), asciiDxf(smallR2000()));
  EXPECT_EQ(folder.get("plan.dxf.bak"), plan());
}

TEST(DrawingFile, SavedInPlaceWithoutAChangeIsNotWritten) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", plan());
  RecordStore store;
  const os::FileFacts version = readDrawing(path, store);
  const SaveResult result = writeDrawing(store, path, withBackup());
  EXPECT_TRUE(result.isUnchanged);
  EXPECT_TRUE(result.version.isSameVersion(version));
  EXPECT_EQ(folder.names(), std::set<std::string>{"plan.dxf"});
}

TEST(DrawingFile, SavedInPlaceWithoutAChangeNeedsNoRightToWrite) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", plan());
  RecordStore store;
  SaveOptions options = withBackup();
  options.expected = readDrawing(path, store);
  FaultyFiles files;
  const SaveResult result = writeDrawing(store, path, options, {}, files);
  EXPECT_TRUE(result.isUnchanged);
  EXPECT_TRUE(result.version.isSameVersion(*options.expected));
  EXPECT_EQ(files.calls, std::vector<std::string>{"facts of path"});
  // The same bytes in another file are somebody else's.
  std::filesystem::remove(path);
  folder.put("other.dxf", plan());
  folder.put("plan.dxf", plan());
  EXPECT_EQ(errorOf([&] { writeDrawing(store, path, options); }).status,
            Acad::eFileSharingViolation);
}

TEST(DrawingFile, ADrawingThatSomebodyHasChangedIsNotReplaced) {
  const TemporaryFolder folder;
  const std::string path = folder.put("plan.dxf", plan());
  RecordStore store;
  SaveOptions options = withBackup();
  options.expected = readDrawing(path, store);
  folder.put("plan.dxf", "theirs");
  const FileError error = errorOf([&] { writeDrawing(store, path, options); });
  EXPECT_EQ(error.status, Acad::eFileSharingViolation);
  EXPECT_FALSE(error.isInPlace);
  EXPECT_EQ(folder.get("plan.dxf"), "theirs");
  EXPECT_EQ(folder.names(), std::set<std::string>{"plan.dxf"});
}

TEST(DrawingFile, ADeviceWithoutEndIsNoDrawing) {
  RecordStore store;
  const FileError error = errorOf([&] { readDrawing("/dev/zero", store); });
  EXPECT_EQ(error.status, Acad::eUnsupportedFileFormat);
}

TEST(DrawingFile, WhatCannotBeReadSaysWhy) {
  const TemporaryFolder folder;
  RecordStore store;
  const auto readingOf = [&](const std::string& path) {
    const FileError error = errorOf([&] { readDrawing(path, store); });
    EXPECT_TRUE(store.isEmpty());
    EXPECT_EQ(error.fileName, path);
    return error;
  };
  FileError error = readingOf(folder.file("none.dxf"));
  EXPECT_EQ(error.status, Acad::eFileNotFound);
  EXPECT_EQ(error.message(), folder.file("none.dxf") + ": there is no such file");
  error = readingOf(folder.path().string());
  EXPECT_EQ(error.status, Acad::eFileAccessErr);
  EXPECT_STREQ(error.what(), "it is a folder, not a file");
  error = readingOf(folder.put("empty.dxf", ""));
  EXPECT_EQ(error.status, Acad::eBadDxfFile);
  EXPECT_STREQ(error.what(), "the file is empty");
  error = readingOf(folder.put("text.dxf", "hello\nworld\n"));
  EXPECT_EQ(error.status, Acad::eUnsupportedFileFormat);
  EXPECT_STREQ(error.what(),
               "this is no drawing: it begins neither as an ASCII nor as a binary DXF file");
  error = readingOf(folder.put("wide.dxf", std::string("\xFF\xFE"
                                                       "0\0\n\0",
                                                       6)));
  EXPECT_NE(error.message().find("UTF-16"), std::string::npos);
  error = readingOf(folder.put("plan.dwg", std::string("AC1032\0\0\0", 9)));
  EXPECT_NE(error.status, Acad::eOk);
  error = readingOf(folder.put("cut.dxf", plan().substr(0, 500)));
  EXPECT_EQ(error.status, Acad::eBadDxfFile);
}

TEST(DrawingFile, AFailedReadLeavesNoOldDrawingInTheStore) {
  const TemporaryFolder folder;
  RecordStore store;
  readDrawing(folder.put("plan.dxf", plan()), store);
  errorOf([&] { readDrawing(folder.file("none.dxf"), store); });
  EXPECT_TRUE(store.isEmpty());
}

TEST(DrawingFile, ADwgNameIsRefusedUnlessADxfFileHasIt) {
  const TemporaryFolder folder;
  RecordStore store;
  readDrawing(folder.put("plan.dxf", plan()), store);
  for (const char* name : {"new.dwg", "new.DWG"}) {
    const FileError error = errorOf([&] { writeDrawing(store, folder.file(name)); });
    EXPECT_EQ(error.status, Acad::eUnsupportedFileFormat);
    EXPECT_NE(error.message().find("this drawing was read from a DXF file"), std::string::npos);
  }
  const std::string dwg("AC1032\0\0\0", 9);
  errorOf([&] { writeDrawing(store, folder.put("old.dwg", dwg)); });
  EXPECT_EQ(folder.get("old.dwg"), dwg);
  writeDrawing(store, folder.put("named.dwg", asciiDxf("0 EOF\n")));
  EXPECT_EQ(folder.get("named.dwg"), plan());
}

TEST(DrawingFile, AStopAtAnyMomentLeavesTheOldFileOrTheNewOne) {
  const TemporaryFolder folder;
  RecordStore store;
  const std::string path = folder.put("plan.dxf", plan());
  readDrawing(path, store);
  store.setErased(*store.find(0x50), true);
  int reports = 0;
  writeDrawing(store, folder.file("counted.dxf"), {}, [&](double) { return ++reports > 0; });
  ASSERT_GE(reports, 3);
  // The last report comes when everything is done: nothing can be stopped any more.
  for (int stopAt = 1; stopAt < reports; ++stopAt) {
    int seen = 0;
    const FileError error = errorOf(
        [&] { writeDrawing(store, path, withBackup(), [&](double) { return ++seen != stopAt; }); });
    EXPECT_EQ(error.status, Acad::eUserBreak);
    EXPECT_EQ(error.message(), path + ": writing was stopped");
    EXPECT_EQ(folder.get("plan.dxf"), plan());
    EXPECT_EQ(folder.names(), (Names{"counted.dxf", "plan.dxf"}));
  }
}

TEST(DrawingFile, AReadCanBeStopped) {
  const TemporaryFolder folder;
  RecordStore store;
  const std::string path = folder.put("plan.dxf", plan());
  const FileError error =
      errorOf([&] { readDrawing(path, store, [](double fraction) { return fraction < 0.5; }); });
  EXPECT_EQ(error.status, Acad::eUserBreak);
  EXPECT_TRUE(store.isEmpty());
}

TEST(DrawingFile, ProgressRunsUpToOneAndNeverBack) {
  const TemporaryFolder folder;
  RecordStore store;
  double last = 0;
  const Progress watch = [&](double fraction) {
    EXPECT_GE(fraction, last);
    last = fraction;
    return true;
  };
  readDrawing(folder.put("plan.dxf", plan()), store, watch);
  EXPECT_EQ(last, 1.0);
  last = 0;
  writeDrawing(store, folder.file("out.dxf"), {}, watch);
  EXPECT_EQ(last, 1.0);
}

TEST(DrawingFile, AFaultOfTheDiskLeavesTheOldDrawing) {
  const TemporaryFolder folder;
  RecordStore store;
  const std::string path = folder.put("plan.dxf", plan());
  readDrawing(path, store);
  store.setErased(*store.find(0x50), true);
  FaultyFiles counting;
  writeDrawing(store, folder.file("counted.dxf"), {}, {}, counting);
  for (std::size_t i = 0; i < counting.calls.size(); ++i) {
    if (counting.calls[i] == "flushFolder") {
      continue;  // the new version is in place by then
    }
    FaultyFiles files;
    files.failAt = static_cast<int>(i);
    const FileError error = errorOf([&] { writeDrawing(store, path, {}, {}, files); });
    if (error.status != Acad::eOk) {
      EXPECT_EQ(folder.get("plan.dxf"), plan()) << counting.calls[i];
      EXPECT_EQ(error.fileName, path);
    }
    EXPECT_EQ(folder.names(), (Names{"counted.dxf", "plan.dxf"}));
    folder.put("plan.dxf", plan());
  }
}

}  // namespace
}  // namespace quoin::dxf
