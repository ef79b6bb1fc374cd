// DXF, ASCII and binary, of every version: the format that record stores are made of.
#pragma once

#include "embedded/dxf/DrawingCodec.h"

namespace quoin::dxf {

class HOST_API DxfCodec : public DrawingCodec {
 public:
  const char* name() const override { return "DXF"; }
  bool recognises(std::string_view head) const override;
  void read(std::string buffer, const std::string& fileName, RecordStore& store,
            const Progress& progress) const override;
  void write(const RecordStore& store, const std::function<void(std::string_view)>& sink,
             const Progress& progress) const override;
};

}  // namespace quoin::dxf
