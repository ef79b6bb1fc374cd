// What records made by hand need of a drawing: a few names, the two spaces, every class that has a
// row.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "embedded/dwg/records/DrawingFacts.h"
#include "embedded/dwg/records/Kinds.h"
#include "embedded/dwg/records/RecordCodec.h"
#include "embedded/os/CodePage.h"

namespace quoin::dwg::testing {

inline constexpr std::uint64_t kModelSpace = 0x1F;
inline constexpr std::uint64_t kPaperSpace = 0x1E;

inline DrawingFacts smallFacts(dxf::Version version, const std::string& codePage) {
  DrawingFacts facts;
  facts.format.version = version;
  facts.format.lineEnd = "\n";
  facts.format.groupCodeColumns = 0;
  facts.format.codePage = codePage;
  facts.codePage = &os::CodePage::named(codePage);
  facts.modelSpace = kModelSpace;
  facts.paperSpace = kPaperSpace;
  facts.byLayerLinetype = 0x15;
  facts.byBlockLinetype = 0x14;
  facts.continuousLinetype = 0x16;
  facts.linetypes = {0x16, 0x40};
  facts.name("LTYPE", 0x15, L"ByLayer");
  facts.name("LTYPE", 0x14, L"ByBlock");
  facts.name("LTYPE", 0x16, L"Continuous");
  facts.name("LTYPE", 0x40, L"DASHED");
  facts.name("LAYER", 0x10, L"0");
  facts.name("LAYER", 0x41, L"墙体");
  facts.name("STYLE", 0x11, L"Standard");
  facts.name("DIMSTYLE", 0x27, L"Standard");
  facts.name("APPID", 0x12, L"ACAD");
  facts.name("BLOCK_RECORD", 0x50, L"*D3");
  facts.name("BLOCK_RECORD", 0x51, L"Door");
  facts.blocks[kModelSpace];
  facts.blocks[kPaperSpace].isPaperSpace = true;
  return facts;
}

/// The kinds that drawings number by their classes get the types from 500 on, in order of name.
inline ClassMap allClasses() {
  std::vector<const Kind*> kinds;
  for (const Kind* kind : allKinds()) {
    if (kind->type == 0) {
      kinds.push_back(kind);
    }
  }
  std::sort(kinds.begin(), kinds.end(), [](const Kind* one, const Kind* other) {
    return std::string_view(one->name) < other->name;
  });
  ClassMap classes;
  std::uint16_t type = 500;
  for (const Kind* kind : kinds) {
    classes[type++] = {kind->name, kind->family == Family::Entity};
  }
  return classes;
}

/// The object type of a kind among these classes.
inline std::uint16_t typeOf(const Kind& kind, const ClassMap& classes) {
  if (kind.type != 0) {
    return kind.type;
  }
  for (const auto& [type, facts] : classes) {
    if (facts.dxfName == kind.name) {
      return type;
    }
  }
  return 0;
}

/// The versions whose records are read.
inline constexpr dxf::Version kVersions[] = {
    dxf::Version::R13,   dxf::Version::R14,   dxf::Version::R2000, dxf::Version::R2004,
    dxf::Version::R2007, dxf::Version::R2010, dxf::Version::R2013, dxf::Version::R2018};

}  // namespace quoin::dwg::testing
