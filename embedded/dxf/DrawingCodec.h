// The seam between the database and file formats: a codec recognises a file by its bytes,
// reads it into a record store and writes a store back. The database knows only this
// interface, so a further format is one more codec in the list.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/dxf/RecordStore.h"

namespace quoin::dxf {

class HOST_API DrawingCodec {
 public:
  virtual ~DrawingCodec();

  /// "DXF", "DWG": for messages.
  virtual const char* name() const = 0;
  /// Whether a file that begins with these bytes (up to 4 KiB) is of this format.
  virtual bool recognises(std::string_view head) const = 0;
  /// Reads the whole file. Fails: throws FileError.
  virtual void read(std::string buffer, const std::string& fileName, RecordStore& store,
                    const Progress& progress) const = 0;
  /// Writes the store in the version and form it was read in. Fails: throws FileError.
  virtual void write(const RecordStore& store, const std::function<void(std::string_view)>& sink,
                     const Progress& progress) const = 0;
};

/// All codecs, in the order in which they are asked.
HOST_API const std::vector<const DrawingCodec*>& codecs();
/// The codec that recognises these first bytes; null for none.
HOST_API const DrawingCodec* codecFor(std::string_view head);

}  // namespace quoin::dxf
