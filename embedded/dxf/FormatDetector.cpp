#include "embedded/dxf/FormatDetector.h"

#include <algorithm>

#include "embedded/dxf/FileError.h"
#include "embedded/dxf/TagReader.h"

namespace quoin::dxf {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kSentinelText = "AutoCAD Binary DXF";
constexpr int kCommentCode = 999;

void detectBinary(std::string_view bytes, DetectedFormat& detected) {
  if (!bytes.starts_with(kBinarySentinel)) {
    throw FileError(Acad::eBadDxfFile,
                    "the mark of a binary DXF file is damaged, as by a transfer that changes "
                    "line ends; copy the file again as binary");
  }
  detected.format.form = Form::Binary;
  detected.firstTag = kBinarySentinel.size();
  // The first tag is "0 SECTION" or a comment: with one-byte codes a zero byte and the text, or
  // the mark of a two-byte code; else both bytes of the code.
  const std::string_view tags = bytes.substr(detected.firstTag);
  if (tags.size() >= 2) {
    detected.format.narrowGroupCodes = static_cast<unsigned char>(tags[0]) == kWideCodeFollows ||
                                       (tags[0] == '\0' && tags[1] != '\0');
  }
}

/// "  0" is padded to three columns, "0" to one. Longer codes fill the columns and show nothing.
int columnsOfCodes(std::string_view text, const Format& format) {
  constexpr int kTagsLookedAt = 200;
  constexpr std::size_t kMostColumns = 6;
  const char* const end = text.data() + text.size();
  const char* at = text.data();
  const TagLayout layout(format);
  RawTag tag;
  for (int i = 0; i < kTagsLookedAt && readTag(at, end, layout, tag) == ReadResult::Tag; ++i) {
    if (tag.code >= 0 && tag.code < 10) {
      const std::string_view line(at, static_cast<std::size_t>(tag.value - at));
      return static_cast<int>(std::min(line.find_first_of("0123456789") + 1, kMostColumns));
    }
    at = tag.next;
  }
  return Format{}.groupCodeColumns;
}

void detectAscii(std::string_view bytes, DetectedFormat& detected) {
  if (bytes.starts_with(kByteOrderMark)) {
    detected.firstTag = kByteOrderMark.size();
  }
  const std::string_view text = bytes.substr(detected.firstTag);
  const std::size_t lineSize = std::min(text.find_first_of("\r\n"), text.size());
  const std::size_t behindReturns = std::min(text.find_first_not_of('\r', lineSize), text.size());
  const bool hasFeed = behindReturns < text.size() && text[behindReturns] == '\n';
  const bool hasReturn = behindReturns != lineSize;
  Format& format = detected.format;
  format.lineEnd = !hasReturn ? "\n" : hasFeed ? "\r\n" : "\r";
  format.groupCodeColumns = columnsOfCodes(text, format);
}

}  // namespace

DetectedFormat detectFormat(std::string_view bytes) {
  DetectedFormat detected;
  if (bytes.starts_with(kSentinelText)) {
    detectBinary(bytes, detected);
  } else {
    detectAscii(bytes, detected);
  }
  return detected;
}

bool looksLikeDxf(std::string_view head) {
  if (head.starts_with(kSentinelText)) {
    return true;
  }
  const DetectedFormat detected = detectFormat(head);
  RawTag tag;
  const ReadResult result = readTag(head.data() + detected.firstTag, head.data() + head.size(),
                                    TagLayout(detected.format), tag);
  if (result != ReadResult::Tag) {
    return false;
  }
  const std::string_view value = trimmed({tag.value, tag.valueSize});
  return tag.code == kCommentCode || (tag.code == 0 && (value == "SECTION" || value == "EOF"));
}

}  // namespace quoin::dxf
