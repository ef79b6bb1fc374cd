#include "embedded/dxf/FileError.h"

namespace quoin::dxf {

std::string FileError::message() const {
  std::string text = fileName;
  if (line != 0) {
    text += (text.empty() ? "line " : ":") + std::to_string(line);
  } else if (offset != 0) {
    text += (text.empty() ? "byte " : ", byte ") + std::to_string(offset);
  }
  if (!text.empty()) {
    text += ": ";
  }
  if (!record.empty()) {
    text += record + ": ";
  }
  return text + what();
}

}  // namespace quoin::dxf
