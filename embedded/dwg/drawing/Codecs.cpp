// The list of codecs: here, since DWG is built on what DXF is read with.
#include "embedded/dwg/drawing/DwgCodec.h"
#include "embedded/dxf/DxfCodec.h"

namespace quoin::dxf {

const std::vector<const DrawingCodec*>& codecs() {
  static const DxfCodec dxf;
  static const dwg::DwgCodec dwg;
  static const std::vector<const DrawingCodec*> all = {&dxf, &dwg};
  return all;
}

}  // namespace quoin::dxf
