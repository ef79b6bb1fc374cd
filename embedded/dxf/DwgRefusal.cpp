#include "embedded/dxf/DwgRefusal.h"

#include <algorithm>

#include "embedded/dxf/FileError.h"

namespace quoin::dxf {
namespace {

constexpr std::size_t kMarkSize = 6;  // "AC1032"

/// "R2018" for a known mark, "unknown version AC1099" for others.
std::string dwgVersionName(std::string_view mark) {
  const Version version = versionFromAcadVer(mark);
  if (version == Version::Unknown) {
    return "unknown version " + std::string(mark);
  }
  return acadVerText(version) == mark ? std::string(releaseName(version)) + ", " + std::string(mark)
                                      : std::string(mark);
}

}  // namespace

bool DwgRefusal::recognises(std::string_view head) const {
  // "AC1032", "AC1.50", "AC2.10"; a zero byte or a number follows, never a line of text.
  if (head.size() < kMarkSize || !head.starts_with("AC")) {
    return false;
  }
  const bool isDigits = std::all_of(head.begin() + 2, head.begin() + kMarkSize,
                                    [](char c) { return (c >= '0' && c <= '9') || c == '.'; });
  const bool textFollows =
      head.size() > kMarkSize && static_cast<unsigned char>(head[kMarkSize]) >= ' ';
  return isDigits && !textFollows;
}

void DwgRefusal::read(std::string buffer, const std::string& fileName, RecordStore& /*store*/,
                      const Progress& /*progress*/) const {
  const std::string_view mark = std::string_view(buffer).substr(0, kMarkSize);
  FileError error(Acad::eUnsupportedFileFormat,
                  "this is a DWG drawing (" + dwgVersionName(mark) +
                      "), and this build reads DXF only; save it as DXF (any version, ASCII or "
                      "binary) in the program that made it, or convert it with a DWG to DXF "
                      "converter, and use that file");
  error.fileName = fileName;
  throw error;
}

void DwgRefusal::write(const RecordStore& /*store*/,
                       const std::function<void(std::string_view)>& /*sink*/,
                       const Progress& /*progress*/) const {
  throw FileError(Acad::eUnsupportedFileFormat, "this build does not write DWG drawings");
}

}  // namespace quoin::dxf
