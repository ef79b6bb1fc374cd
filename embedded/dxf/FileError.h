// What is wrong with a drawing file, with everything that a message needs: file, place,
// record and cause. Thrown inside the embedded host only; the host API returns a status
// and keeps the text for whoever asks.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

#include "acadstrc.h"

namespace quoin::dxf {

class HOST_API FileError : public std::runtime_error {
 public:
  FileError(Acad::ErrorStatus code, const std::string& cause)
      : std::runtime_error(cause), status(code) {}

  Acad::ErrorStatus status;
  std::string fileName;
  std::uint64_t line = 0;    // ASCII: 1-based; 0 when unknown
  std::uint64_t offset = 0;  // binary: byte offset; 0 when unknown
  std::string record;        // "LINE 2F", empty when unknown
  /// Of saving: whether the new file has its name already, whatever failed after that.
  bool isInPlace = false;

  /// "plan.dxf:1742: LINE 2F: group code 'x1' is not a number"; in a binary file the place
  /// reads "plan.dxf, byte 1742: ...". What is unknown is left out.
  std::string message() const;
};

}  // namespace quoin::dxf
