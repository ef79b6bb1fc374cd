// DWG, of the versions that DwgFile.h names: a codec like any other.
#pragma once

#include "embedded/dxf/DrawingCodec.h"

namespace quoin::dwg {

class HOST_API DwgCodec : public dxf::DrawingCodec {
 public:
  const char* name() const override { return "DWG"; }
  bool recognises(std::string_view head) const override;
  void read(std::string buffer, const std::string& fileName, dxf::RecordStore& store,
            const dxf::Progress& progress) const override;
  /// Writes the file that the store was read from with the store's changes; an untouched store
  /// gives the very bytes.
  /// Fails: throws FileError: for a store that was not read from a DWG file, for a record that
  /// cannot be written, for a file that may not be.
  void write(const dxf::RecordStore& store, const std::function<void(std::string_view)>& sink,
             const dxf::Progress& progress) const override;
};

}  // namespace quoin::dwg
