// The sections of a DWG file by their names; up to R2000 they have numbers instead.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace quoin::dwg {

enum class SectionName : std::uint8_t {
  Header,
  Classes,
  Handles,  // the object map
  Objects,
  ObjFreeSpace,
  Template,
  AuxHeader,
  Preview,
  SummaryInfo,
  AppInfo,
  AppInfoHistory,
  RevHistory,
  FileDepList,
  VbaProject,
  Security,
  Signature,
  AcDsData
};

namespace container {

/// In the order of SectionName.
constexpr std::array<std::string_view, 17> kSectionNames{
    "AcDb:Header",          "AcDb:Classes",    "AcDb:Handles",        "AcDb:AcDbObjects",
    "AcDb:ObjFreeSpace",    "AcDb:Template",   "AcDb:AuxHeader",      "AcDb:Preview",
    "AcDb:SummaryInfo",     "AcDb:AppInfo",    "AcDb:AppInfoHistory", "AcDb:RevHistory",
    "AcDb:FileDepList",     "AcDb:VBAProject", "AcDb:Security",       "AcDb:Signature",
    "AcDb:AcDsPrototype_1b"};

constexpr std::string_view sectionText(SectionName name) {
  return kSectionNames[static_cast<std::size_t>(name)];
}

}  // namespace container
}  // namespace quoin::dwg
