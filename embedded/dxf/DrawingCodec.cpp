#include "embedded/dxf/DrawingCodec.h"

#include "embedded/dxf/DwgRefusal.h"
#include "embedded/dxf/DxfCodec.h"

namespace quoin::dxf {

DrawingCodec::~DrawingCodec() = default;

const std::vector<const DrawingCodec*>& codecs() {
  static const DxfCodec dxf;
  static const DwgRefusal dwg;
  static const std::vector<const DrawingCodec*> all = {&dxf, &dwg};
  return all;
}

const DrawingCodec* codecFor(std::string_view head) {
  for (const DrawingCodec* codec : codecs()) {
    if (codec->recognises(head)) {
      return codec;
    }
  }
  return nullptr;
}

}  // namespace quoin::dxf
