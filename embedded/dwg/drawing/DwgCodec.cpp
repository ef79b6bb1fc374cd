#include "embedded/dwg/drawing/DwgCodec.h"

#include <memory>
#include <utility>

#include "embedded/dwg/drawing/DwgChanges.h"
#include "embedded/dwg/drawing/DwgSource.h"
#include "embedded/dxf/FileError.h"

namespace quoin::dwg {

bool DwgCodec::recognises(std::string_view head) const {
  return DwgFile::recognises(head);
}

void DwgCodec::read(std::string buffer, const std::string& fileName, dxf::RecordStore& store,
                    const dxf::Progress& progress) const {
  constexpr double kTagsShare = 0.6;
  const auto part = [&](double from, double to) -> dxf::Progress {
    if (!progress) {
      return {};
    }
    return [&progress, from, to](double done) { return progress(from + (to - from) * done); };
  };
  auto source = std::make_unique<DwgSource>(
      std::make_unique<DwgDrawing>(DwgFile(std::move(buffer), fileName), store.givenCodePage()));
  if (source->drawing().facts().modelSpace == 0) {
    dxf::FileError error(Acad::eDwgNeedsRecovery,
                         "this DWG drawing has no table of blocks, so nothing of it can be shown; "
                         "the file is damaged");
    error.fileName = fileName;
    throw error;
  }
  std::string tags = source->drawing().tags(part(0.0, kTagsShare));
  store.load(std::move(tags), fileName, part(kTagsShare, 1.0));
  for (const Warning& warning : source->drawing().file().warnings()) {
    store.addWarning({warning.offset, {}, warning.message()});
  }
  for (const std::string& problem : source->drawing().problems()) {
    store.addWarning({0, {}, problem});
  }
  store.setSource(std::move(source));
}

void DwgCodec::write(const dxf::RecordStore& store,
                     const std::function<void(std::string_view)>& sink,
                     const dxf::Progress& progress) const {
  const auto* const source = dynamic_cast<const DwgSource*>(store.source());
  if (source == nullptr) {
    throw dxf::FileError(Acad::eUnsupportedFileFormat,
                         "this drawing was read from a DXF file, and this program makes no DWG "
                         "file of one; give the file a name that ends in .dxf");
  }
  const DwgFile& file = source->drawing().file();
  if (!store.isChanged()) {
    sink(file.bytes());
    return;
  }
  if (!file.whyReadOnly().empty()) {
    throw dxf::FileError(Acad::eNotApplicable, file.whyReadOnly());
  }
  const FileChanges changes = DwgChanges(source->drawing(), store).collect();
  if (progress && !progress(0.3)) {
    throw dxf::FileError(Acad::eUserBreak, "writing was stopped");
  }
  sink(file.written(changes));
}

}  // namespace quoin::dwg
