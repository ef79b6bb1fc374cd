// Small drawings for tests, written as one tag a line ("0 LINE", "10 1.5", "1" for an empty
// text), spelled out as an ASCII or a binary file. The spelling is the tests' own, so that it
// checks the writer and does not repeat it.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "embedded/dxf/RecordStore.h"

namespace quoin::test {

/// The (group code, value) pairs of such a text.
inline std::vector<std::pair<int, std::string>> tagsIn(std::string_view text) {
  std::vector<std::pair<int, std::string>> tags;
  while (!text.empty()) {
    const std::string line(text.substr(0, text.find('\n')));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.empty()) {
      continue;
    }
    const std::size_t blank = line.find(' ');
    tags.emplace_back(std::stoi(line),
                      blank == std::string::npos ? std::string{} : line.substr(blank + 1));
  }
  return tags;
}

inline std::string asciiDxf(std::string_view text, std::string_view lineEnd = "\r\n",
                            std::size_t codeColumns = 3) {
  std::string bytes;
  for (const auto& [code, value] : tagsIn(text)) {
    const std::string digits = std::to_string(code);
    bytes.append(codeColumns > digits.size() ? codeColumns - digits.size() : 0, ' ');
    bytes += digits;
    bytes += lineEnd;
    bytes += value;
    bytes += lineEnd;
  }
  return bytes;
}

/// Bytes of one binary value, by the group code's range in the DXF reference.
inline std::string binaryValue(int code, const std::string& value) {
  const auto raw = [](auto number) {
    std::string bytes(sizeof number, '\0');
    std::memcpy(bytes.data(), &number, sizeof number);
    return bytes;
  };
  const auto in = [code](int first, int last) { return code >= first && code <= last; };
  if (in(10, 59) || in(110, 149) || in(210, 239) || in(460, 469) || in(1010, 1059)) {
    return raw(std::strtod(value.c_str(), nullptr));
  }
  if (in(60, 79) || in(170, 179) || in(270, 289) || in(370, 389) || in(400, 409) ||
      in(1060, 1070)) {
    return raw(static_cast<std::int16_t>(std::stoi(value)));
  }
  if (in(90, 99) || in(420, 429) || in(440, 459) || code == 1071) {
    return raw(static_cast<std::int32_t>(std::stol(value)));
  }
  if (in(160, 169)) {
    return raw(static_cast<std::int64_t>(std::stoll(value)));
  }
  if (in(290, 299)) {
    return raw(static_cast<std::int8_t>(std::stoi(value)));
  }
  if (in(310, 319) || code == 1004) {
    std::string chunk(1, static_cast<char>(value.size() / 2));
    for (std::size_t i = 0; i + 1 < value.size(); i += 2) {
      chunk.push_back(static_cast<char>(std::stoi(value.substr(i, 2), nullptr, 16)));
    }
    return chunk;
  }
  return value + '\0';
}

inline std::string binaryDxf(std::string_view text, bool narrowCodes) {
  std::string bytes("AutoCAD Binary DXF\r\n\x1a\0", 22);
  for (const auto& [code, value] : tagsIn(text)) {
    if (narrowCodes && code < 255) {
      bytes.push_back(static_cast<char>(code));
    } else {
      bytes += narrowCodes ? "\xFF" : "";
      bytes.push_back(static_cast<char>(code & 0xFF));
      bytes.push_back(static_cast<char>(code >> 8));
    }
    bytes += binaryValue(code, value);
  }
  return bytes;
}

/// The smallest file that everybody reads: R12, entities only.
inline std::string entitiesOnly(std::string_view entities) {
  return "0 SECTION\n2 ENTITIES\n" + std::string(entities) + "0 ENDSEC\n0 EOF\n";
}

/// A small R2000 drawing with layers, two layouts, a block, and a dictionary.
inline std::string smallR2000(std::string_view entities = {}) {
  return R"(999 made for a test
0 SECTION
2 HEADER
9 $ACADVER
1 AC1015
9 $DWGCODEPAGE
3 ANSI_1252
9 $INSUNITS
70 4
9 $HANDSEED
5 100
0 ENDSEC
0 SECTION
2 TABLES
0 TABLE
2 LAYER
5 2
330 0
100 AcDbSymbolTable
70 2
0 LAYER
5 10
330 2
100 AcDbSymbolTableRecord
100 AcDbLayerTableRecord
2 0
70 0
62 7
6 Continuous
0 LAYER
5 11
330 2
100 AcDbSymbolTableRecord
100 AcDbLayerTableRecord
2 Walls
70 0
62 1
6 Continuous
0 ENDTAB
0 TABLE
2 DIMSTYLE
5 A
330 0
100 AcDbSymbolTable
70 1
100 AcDbDimStyleTable
0 DIMSTYLE
105 27
330 A
100 AcDbSymbolTableRecord
100 AcDbDimStyleTableRecord
2 Standard
70 0
0 ENDTAB
0 TABLE
2 BLOCK_RECORD
5 1
330 0
100 AcDbSymbolTable
70 3
0 BLOCK_RECORD
5 1F
330 1
100 AcDbSymbolTableRecord
100 AcDbBlockTableRecord
2 *Model_Space
0 BLOCK_RECORD
5 1B
330 1
100 AcDbSymbolTableRecord
100 AcDbBlockTableRecord
2 *Paper_Space
0 BLOCK_RECORD
5 30
102 {ACAD_XDICTIONARY
360 99
102 }
330 1
100 AcDbSymbolTableRecord
100 AcDbBlockTableRecord
2 Door
0 ENDTAB
0 ENDSEC
0 SECTION
2 BLOCKS
0 BLOCK
5 20
330 1F
100 AcDbEntity
8 0
100 AcDbBlockBegin
2 *Model_Space
70 0
0 ENDBLK
5 21
330 1F
100 AcDbEntity
8 0
100 AcDbBlockEnd
0 BLOCK
5 1C
330 1B
100 AcDbEntity
67 1
8 0
100 AcDbBlockBegin
2 *Paper_Space
70 0
0 ENDBLK
5 1D
330 1B
100 AcDbEntity
67 1
8 0
100 AcDbBlockEnd
0 BLOCK
5 31
330 30
100 AcDbEntity
8 0
100 AcDbBlockBegin
2 Door
70 0
0 LINE
5 32
330 30
100 AcDbEntity
8 0
100 AcDbLine
10 0.0
20 0.0
11 1.0
21 0.0
0 ENDBLK
5 33
330 30
100 AcDbEntity
8 0
100 AcDbBlockEnd
0 ENDSEC
0 SECTION
2 ENTITIES
)" + std::string(entities) +
         R"(0 ENDSEC
0 SECTION
2 OBJECTS
0 DICTIONARY
5 C
330 0
100 AcDbDictionary
3 ACAD_GROUP
350 D
0 DICTIONARY
5 D
102 {ACAD_REACTORS
330 31
102 }
330 C
100 AcDbDictionary
0 ENDSEC
0 SECTION
2 THUMBNAILIMAGE
90 4
310 DEADBEEF
0 ENDSEC
0 EOF
)";
}

/// A LINE of model space in R2000 form.
inline std::string lineTags(std::string_view handle, std::string_view layer = "Walls") {
  return "0 LINE\n5 " + std::string(handle) + "\n330 1F\n100 AcDbEntity\n8 " + std::string(layer) +
         "\n100 AcDbLine\n10 1.5\n20 0.0\n30 0.0\n11 2.0\n21 0.0\n31 0.0\n";
}

/// Loads bytes into a store.
inline void loadBytes(dxf::RecordStore& store, std::string bytes) {
  store.load(std::move(bytes), "test.dxf");
}

/// What the store would write.
inline std::string savedBytes(const dxf::RecordStore& store) {
  std::string bytes;
  store.save([&](std::string_view piece) { bytes += piece; });
  return bytes;
}

}  // namespace quoin::test
