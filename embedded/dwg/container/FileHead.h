// The first bytes of a DWG file: version, code page, security.
#pragma once

#include <string>
#include <string_view>

#include "embedded/dwg/container/Container.h"
#include "hostapi.h"

namespace quoin::dwg::container {

constexpr std::size_t kMarkSize = 6;  // "AC1032"
constexpr std::uint32_t kIsEncrypted = 1;
constexpr std::uint32_t kIsSigned = 0x10;

/// Whether these are the first bytes of a DWG file of any version.
HOST_API bool isDwg(std::string_view head);
/// Fails: throws Damage where the file is too short; Version::Unknown for a version that is not
/// read.
HOST_API FileHead readFileHead(std::string_view file);
/// "ANSI_1252" for 30; that too for a number that stands for nothing.
HOST_API std::string codePageText(unsigned number);

}  // namespace quoin::dwg::container
