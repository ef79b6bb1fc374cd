// How a DXF file is laid out in bytes: form, version, code page and the small habits of
// its writer (line ends, padding of group codes). A drawing is written in the format that
// it was read in, so that what nobody touched comes back byte for byte.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "hostapi.h"

namespace quoin::dxf {

enum class Form : std::uint8_t { Ascii, Binary };

/// Drawing versions in ascending order; the names are those of the programme releases.
enum class Version : std::uint8_t {
  Unknown,
  R10,    // AC1006 and everything older
  R12,    // AC1009 (R11 too)
  R13,    // AC1012
  R14,    // AC1014
  R2000,  // AC1015
  R2004,  // AC1018
  R2007,  // AC1021: text is UTF-8 from here on
  R2010,  // AC1024
  R2013,  // AC1027
  R2018   // AC1032
};

/// The version that a $ACADVER value names ("AC1027"); a version between two known ones
/// counts as the later, everything before AC1006 as R10. Unknown for any other text.
HOST_API Version versionFromAcadVer(std::string_view acadVer);
/// "AC1027" for R2013; "" for Unknown.
HOST_API std::string_view acadVerText(Version version);
/// "R2013" for R2013.
HOST_API std::string_view releaseName(Version version);

/// Everything that decides how a tag is spelled in bytes.
struct Format {
  Form form = Form::Ascii;
  /// Never Unknown in a loaded store: a file that names no version is R2000 where it has
  /// subclass markers, else R12; a version newer than all known ones counts as R2018.
  Version version = Version::R2018;
  /// $DWGCODEPAGE as the file spells it ("ANSI_936"); used for text before R2007.
  std::string codePage = "ANSI_1252";
  /// Whether somebody named the code page in the file's stead: it holds for all its text then.
  bool isCodePageGiven = false;
  /// Binary files up to R12 spell a group code in one byte (255 opens a two-byte code),
  /// later ones in two.
  bool narrowGroupCodes = false;
  /// ASCII: the end of a line as the file's first line has it ("\r\n", "\n" or "\r").
  /// With the first two, lines end at each "\n" and a "\r" before it is no part of the line.
  std::string lineEnd = "\r\n";
  /// ASCII: group codes are padded with blanks on the left to this many columns.
  int groupCodeColumns = 3;

  bool textIsUtf8() const { return version >= Version::R2007 && !isCodePageGiven; }
  bool hasSubclassMarkers() const { return version >= Version::R13; }
  bool hasOwners() const { return version >= Version::R2000 || version == Version::R14; }
};

}  // namespace quoin::dxf
