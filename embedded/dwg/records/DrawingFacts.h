// What records of a drawing must know of each other to be read or written one by one: the two
// spaces, the linetypes that have no handle in a record, and the names that DXF has for handles.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "embedded/dxf/Format.h"
#include "hostapi.h"

namespace quoin::os {
class CodePage;
}

namespace quoin::dwg {

/// What DXF tells with a BLOCK and DWG with its header.
struct BlockFacts {
  bool isPaperSpace = false;  // any layout but the model's
  std::int64_t flags = 0;
  double base[3] = {0, 0, 0};
  std::wstring path;  // of an external reference
  std::wstring description;
};

/// A colour of a colour book.
struct BookColor {
  std::int64_t rgb = 0;
  std::wstring name;  // book, dollar sign, name in it
};

class HOST_API DrawingFacts {
 public:
  dxf::Format format;  // of the tags
  const os::CodePage* codePage = nullptr;
  std::uint16_t codePageNumber = 30;  // as DWG counts them; 30 is ANSI_1252
  std::uint64_t modelSpace = 0;       // BLOCK_RECORDs
  std::uint64_t paperSpace = 0;
  std::uint64_t byLayerLinetype = 0;
  std::uint64_t byBlockLinetype = 0;
  std::uint64_t continuousLinetype = 0;

  std::uint64_t byBlockMaterial = 0;     // the MATERIAL of this name, from R2007 on
  std::vector<std::uint64_t> linetypes;  // in the order of their table, without those two
  /// Of each viewport its number in its layout, from 1 on: DXF has it, DWG the order alone.
  std::unordered_map<std::uint64_t, std::int64_t> viewportNumbers;

  std::unordered_map<std::uint64_t, BookColor> bookColors;  // by the handle of the DBCOLOR
  std::unordered_map<std::uint64_t, BlockFacts> blocks;     // by the handle of the header

  /// Enters a record of a table ("LAYER", "LTYPE", "STYLE", "BLOCK_RECORD", ...) or a named
  /// object; of two with one name the first is found by it.
  void name(std::string_view table, std::uint64_t handle, std::wstring name);
  /// The name behind a handle; empty for none.
  const std::wstring& nameOf(std::uint64_t handle) const;
  /// The handle of a name, in any case; 0 for none.
  std::uint64_t handleOf(std::string_view table, std::wstring_view name) const;

 private:
  std::unordered_map<std::uint64_t, std::wstring> m_names;
  std::unordered_map<std::wstring, std::uint64_t> m_handles;  // "table/folded name"
};

}  // namespace quoin::dwg
