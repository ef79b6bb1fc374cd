#include "embedded/dxf/DrawingFile.h"

#include <algorithm>
#include <utility>

#include "embedded/dxf/DrawingCodec.h"
#include "embedded/dxf/FileError.h"
#include "embedded/dxf/FormatDetector.h"
#include "embedded/os/CaseFold.h"
#include "embedded/os/File.h"
#include "embedded/os/Trace.h"

namespace quoin::dxf {
namespace {

constexpr std::size_t kHeadSize = 4096;
constexpr double kReadShare = 0.2;   // of reading: the disk; the rest is the codec
constexpr double kWriteShare = 0.9;  // of saving: the codec; the rest is the disk

/// A part of a longer piece of work.
Progress partOf(const Progress& progress, double from, double to) {
  if (!progress) {
    return {};
  }
  return [&progress, from, to](double fraction) { return progress(from + (to - from) * fraction); };
}

/// Runs `work`; what files fail with becomes a FileError of this path.
template <typename Work>
void translated(const std::string& path, Work work) {
  try {
    work();
  } catch (const os::FileFailure& failure) {
    FileError error(failure.status, failure.what());
    error.fileName = path;
    error.isInPlace = failure.isInPlace;
    throw error;
  } catch (FileError& error) {
    if (error.fileName.empty()) {
      error.fileName = path;
    }
    throw;
  }
}

std::string causeOfNoCodec(std::string_view head) {
  if (head.empty()) {
    return "the file is empty";
  }
  if (head.starts_with("\xFF\xFE") || head.starts_with("\xFE\xFF")) {
    return "this is UTF-16 text; DXF files are written in UTF-8 or an ANSI code page";
  }
  return "this is no drawing: it begins neither as an ASCII nor as a binary DXF file";
}

bool hasExtension(const std::string& path, std::string_view extension) {
  return path.size() >= extension.size() &&
         os::sameName(std::string_view(path).substr(path.size() - extension.size()), extension);
}

/// Whether the name says DWG and no DXF file has it already.
bool claimsDwg(const std::string& path, os::FileSystem& files) {
  if (!hasExtension(path, ".dwg")) {
    return false;
  }
  try {
    return !looksLikeDxf(os::readFileHead(path, kHeadSize, files));
  } catch (const os::FileFailure&) {
    return true;  // not there yet: the name alone decides
  }
}

const DrawingCodec& codecNamed(std::string_view name) {
  const auto& all = codecs();
  return **std::find_if(all.begin(), all.end(),
                        [&](const DrawingCodec* codec) { return codec->name() == name; });
}

/// A drawing is written in the format that it was read in.
const DrawingCodec& codecOf(const RecordStore& store) {
  return codecNamed(store.source() == nullptr ? "DXF" : store.source()->formatName());
}

/// Fails: throws FileError where the name asks for another format than the drawing's.
void checkName(const RecordStore& store, const std::string& path, os::FileSystem& files) {
  if (store.source() == nullptr) {
    if (claimsDwg(path, files)) {
      codecNamed("DWG").write(store, {}, {});
    }
    return;
  }
  if (hasExtension(path, ".dxf")) {
    throw FileError(Acad::eUnsupportedFileFormat,
                    "this drawing was read from a " + std::string(store.source()->formatName()) +
                        " file and is written as one; 'quoin convert' makes a DXF file of it");
  }
}

}  // namespace

os::FileFacts readDrawing(const std::string& path, RecordStore& store, const Progress& progress,
                          os::FileSystem& files) {
  store.clear();
  os::FileFacts version;
  translated(path, [&] {
    const DrawingCodec* codec = nullptr;
    os::ReadRules rules;
    rules.goOn = partOf(progress, 0.0, kReadShare);
    rules.headSize = kHeadSize;
    // A device or a pipe without end would fill the memory before it turns out to be no drawing.
    rules.checkHead = [&](std::string_view head) {
      codec = codecFor(head);
      if (codec == nullptr) {
        throw FileError(head.empty() ? Acad::eBadDxfFile : Acad::eUnsupportedFileFormat,
                        causeOfNoCodec(head));
      }
    };
    std::string bytes = os::readFile(path, rules, files, &version);
    os::trace(os::Traced::Store, [&] {
      return path + ": read as " + std::string(codec->name()) + ", " +
             std::to_string(bytes.size()) + " bytes";
    });
    codec->read(std::move(bytes), path, store, partOf(progress, kReadShare, 1.0));
  });
  return version;
}

namespace {

/// Whether the file holds the store's bytes already: it was read from there, and neither has
/// changed since. Then nothing is to be written, where nothing can be written too.
bool isThere(const RecordStore& store, const std::string& path, const SaveOptions& options,
             os::FileSystem& files, os::FileFacts& version) {
  return options.keepBackup && options.expected && !store.isChanged() &&
         files.facts(path, true, version) == 0 && version.isSameVersion(*options.expected);
}

}  // namespace

SaveResult writeDrawing(const RecordStore& store, const std::string& path,
                        const SaveOptions& options, const Progress& progress,
                        os::FileSystem& files) {
  SaveResult result;
  translated(path, [&] {
    checkName(store, path, files);
    if (isThere(store, path, options, files, result.version)) {
      result.isUnchanged = true;
      os::trace(os::Traced::Saver, [&] { return path + ": holds these bytes already"; });
      return;
    }
    os::AtomicFile::Options fileOptions;
    fileOptions.keepBackup = options.keepBackup;
    fileOptions.backupFolder = options.backupFolder;
    fileOptions.expected = options.expected;
    os::AtomicFile file(path, fileOptions, files);
    codecOf(store).write(
        store, [&](std::string_view piece) { file.write(piece); },
        partOf(progress, 0.0, kWriteShare));
    // The last moment at which a stop leaves everything as it was.
    if (progress && !progress(kWriteShare)) {
      throw FileError(Acad::eUserBreak, "writing was stopped");
    }
    file.commit();
    result = {file.backup(), file.isUnchanged(), file.version()};
    os::trace(os::Traced::Saver, [&] {
      return path + (result.isUnchanged ? ": unchanged" : ": replaced") +
             (result.backup.empty() ? "" : ", backup " + result.backup);
    });
    if (progress) {
      progress(1.0);
    }
  });
  return result;
}

void writePieces(const RecordStore& store, const std::function<void(std::string_view)>& sink,
                 const Progress& progress) {
  codecOf(store).write(store, sink, progress);
}

}  // namespace quoin::dxf
