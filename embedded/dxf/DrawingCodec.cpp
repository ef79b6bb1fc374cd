#include "embedded/dxf/DrawingCodec.h"

#include "embedded/dxf/DrawingSource.h"

namespace quoin::dxf {

DrawingCodec::~DrawingCodec() = default;
DrawingSource::~DrawingSource() = default;

const DrawingCodec* codecFor(std::string_view head) {
  for (const DrawingCodec* codec : codecs()) {
    if (codec->recognises(head)) {
      return codec;
    }
  }
  return nullptr;
}

}  // namespace quoin::dxf
