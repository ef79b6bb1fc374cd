#include "embedded/dxf/DxfCodec.h"

#include <utility>

#include "embedded/dxf/FormatDetector.h"

namespace quoin::dxf {

bool DxfCodec::recognises(std::string_view head) const {
  return looksLikeDxf(head);
}

void DxfCodec::read(std::string buffer, const std::string& fileName, RecordStore& store,
                    const Progress& progress) const {
  store.load(std::move(buffer), fileName, progress);
}

void DxfCodec::write(const RecordStore& store, const std::function<void(std::string_view)>& sink,
                     const Progress& progress) const {
  store.save(sink, progress);
}

}  // namespace quoin::dxf
