#include "embedded/dxf/Format.h"

#include <array>
#include <charconv>
#include <system_error>

namespace quoin::dxf {
namespace {

struct VersionNames {
  Version version;
  int number;  // the digits of AC1027
  std::string_view acadVer;
  std::string_view release;
};
constexpr std::array<VersionNames, 10> kVersions = {{{Version::R10, 1006, "AC1006", "R10"},
                                                     {Version::R12, 1009, "AC1009", "R12"},
                                                     {Version::R13, 1012, "AC1012", "R13"},
                                                     {Version::R14, 1014, "AC1014", "R14"},
                                                     {Version::R2000, 1015, "AC1015", "R2000"},
                                                     {Version::R2004, 1018, "AC1018", "R2004"},
                                                     {Version::R2007, 1021, "AC1021", "R2007"},
                                                     {Version::R2010, 1024, "AC1024", "R2010"},
                                                     {Version::R2013, 1027, "AC1027", "R2013"},
                                                     {Version::R2018, 1032, "AC1032", "R2018"}}};

const VersionNames* namesOf(Version version) {
  for (const VersionNames& names : kVersions) {
    if (names.version == version) {
      return &names;
    }
  }
  return nullptr;
}

}  // namespace

Version versionFromAcadVer(std::string_view acadVer) {
  while (!acadVer.empty() && acadVer.back() == ' ') {
    acadVer.remove_suffix(1);
  }
  while (!acadVer.empty() && acadVer.front() == ' ') {
    acadVer.remove_prefix(1);
  }
  if (!acadVer.starts_with("AC") || acadVer.size() < 3) {
    return Version::Unknown;
  }
  const std::string_view digits = acadVer.substr(2);
  int number = 0;
  const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc{}) {
    return Version::Unknown;
  }
  if (stop != digits.data() + digits.size()) {
    // The oldest spelling has a point: AC1.50, AC2.10.
    return *stop == '.' && number < 10 ? Version::R10 : Version::Unknown;
  }
  for (const VersionNames& names : kVersions) {
    if (number <= names.number) {
      return names.version;
    }
  }
  return Version::Unknown;
}

std::string_view acadVerText(Version version) {
  const VersionNames* names = namesOf(version);
  return names == nullptr ? std::string_view{} : names->acadVer;
}

std::string_view releaseName(Version version) {
  const VersionNames* names = namesOf(version);
  return names == nullptr ? std::string_view("unknown") : names->release;
}

}  // namespace quoin::dxf
