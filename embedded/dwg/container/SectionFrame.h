// How the header variables and the classes lie in their sections: between two marks of 16 bytes,
// with a size in front and a checksum behind (Open Design Specification for .dwg files, chapters
// 9, "Data section AcDb:Header", and 10, "Data section AcDb:Classes").
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "embedded/dxf/Format.h"
#include "hostapi.h"

namespace quoin::dwg::container {

enum class FramedSection : std::uint8_t { Header, Classes };

struct SectionFrame {
  std::string_view contents;  // behind the sizes, in front of the checksum
  std::size_t begin = 0;      // of the contents, in the section
  bool isSumRight = false;
};

/// Finds the contents of such a section. `maintenance` is the release of the version that the
/// file header tells; some of R2010 have a second size.
/// Fails: throws Damage where the marks are missing or the size cannot be.
HOST_API SectionFrame readSectionFrame(std::string_view section, FramedSection which,
                                       dxf::Version version, unsigned maintenance);

/// The section with other contents; what stands behind its end mark stays.
HOST_API std::string withContents(std::string_view section, FramedSection which,
                                  dxf::Version version, unsigned maintenance,
                                  std::string_view contents);

}  // namespace quoin::dwg::container
