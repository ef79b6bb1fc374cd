#include "embedded/dwg/container/FileHead.h"

#include <algorithm>
#include <array>

#include "embedded/dwg/container/Bytes.h"

namespace quoin::dwg::container {
namespace {

constexpr std::size_t kMaintenancePlace = 0x0B;
constexpr std::size_t kPreviewPlace = 0x0D;
constexpr std::size_t kCodePagePlace = 0x13;
constexpr std::size_t kSecurityPlace = 0x18;

// By number; an empty name stands for nothing that text can be in.
constexpr std::array<std::string_view, 45> kCodePages{
    "",          "ASCII",     "ISO8859-1", "ISO8859-2", "ISO8859-3", "ISO8859-4", "ISO8859-5",
    "ISO8859-6", "ISO8859-7", "ISO8859-8", "ISO8859-9", "DOS437",    "DOS850",    "DOS852",
    "DOS855",    "DOS857",    "DOS860",    "DOS861",    "DOS863",    "DOS864",    "DOS865",
    "DOS869",    "DOS932",    "MACINTOSH", "BIG5",      "KSC5601",   "JOHAB",     "DOS866",
    "ANSI_1250", "ANSI_1251", "ANSI_1252", "GB2312",    "ANSI_1253", "ANSI_1254", "ANSI_1255",
    "ANSI_1256", "ANSI_1257", "ANSI_874",  "ANSI_932",  "ANSI_936",  "ANSI_949",  "ANSI_950",
    "ANSI_1361", "",          "ANSI_1258"};

}  // namespace

bool isDwg(std::string_view head) {
  // "AC1032", "AC1.50", "AC2.10"; a zero byte or a number follows, never a line of text.
  if (head.size() < kMarkSize || !head.starts_with("AC")) {
    return false;
  }
  const bool isDigits = std::all_of(head.begin() + 2, head.begin() + kMarkSize,
                                    [](char c) { return (c >= '0' && c <= '9') || c == '.'; });
  return isDigits &&
         (head.size() == kMarkSize || static_cast<unsigned char>(head[kMarkSize]) < ' ');
}

FileHead readFileHead(std::string_view file) {
  FileHead head;
  const std::string_view mark = file.substr(0, kMarkSize);
  const dxf::Version version = dxf::versionFromAcadVer(mark);
  if (version < dxf::Version::R13 || dxf::acadVerText(version) != mark) {
    return head;
  }
  head.version = version;
  head.maintenance = numberAt<std::uint8_t>(file, kMaintenancePlace);
  head.previewPlace = numberAt<std::uint32_t>(file, kPreviewPlace);
  head.codePage = numberAt<std::uint16_t>(file, kCodePagePlace);
  if (version >= dxf::Version::R2004) {
    head.securityFlags = numberAt<std::uint32_t>(file, kSecurityPlace);
  }
  return head;
}

std::string codePageText(unsigned number) {
  const bool isKnown = number < kCodePages.size() && !kCodePages[number].empty();
  return std::string(isKnown ? kCodePages[number] : "ANSI_1252");
}

}  // namespace quoin::dwg::container
