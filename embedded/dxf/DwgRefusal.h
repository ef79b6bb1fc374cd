// DWG files are recognised, so that the message can say what they are and what to do; they
// are neither read nor written.
#pragma once

#include "embedded/dxf/DrawingCodec.h"

namespace quoin::dxf {

class HOST_API DwgRefusal : public DrawingCodec {
 public:
  const char* name() const override { return "DWG"; }
  /// A file that begins with the mark of any DWG version ("AC1032" and its like).
  bool recognises(std::string_view head) const override;
  /// Fails: always, with eUnsupportedFileFormat; the message names the version and how to
  /// convert the drawing.
  void read(std::string buffer, const std::string& fileName, RecordStore& store,
            const Progress& progress) const override;
  /// Fails: always, with eUnsupportedFileFormat; nothing reaches the sink.
  void write(const RecordStore& store, const std::function<void(std::string_view)>& sink,
             const Progress& progress) const override;
};

}  // namespace quoin::dxf
