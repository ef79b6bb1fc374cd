// The sections of a DWG drawing that are no records, made by the tests in every version: header
// variables and classes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "embedded/dwg/records/HeaderVariables.h"
#include "embedded/dwg/records/RecordCoder.h"
#include "embedded/os/CodePage.h"

namespace quoin::test {

/// Handles and whole numbers by the names that HeaderVariables.h has for their variables.
using MadeVariables = std::vector<std::pair<std::string_view, std::uint64_t>>;

/// The header's variables: these, and all others as zeroes and empty texts.
inline std::string madeHeaderSection(dxf::Version version, const os::CodePage& codePage,
                                     const MadeVariables& variables) {
  dwg::RecordValues values;
  for (const auto& [name, number] : variables) {
    const dwg::StoredVariable* const variable = dwg::storedVariable(name, version);
    if (variable == nullptr) {
      continue;  // another version's
    }
    switch (variable->code) {
      case dwg::VariableCode::Owner:
        values.addHandle(variable->key, number, dwg::absoluteReference(number, dwg::kHardOwner));
        break;
      case dwg::VariableCode::Pointer:
        values.addHandle(variable->key, number, dwg::absoluteReference(number, dwg::kHardPointer));
        break;
      case dwg::VariableCode::HandleSeed:
        values.addHandle(variable->key, number, dwg::absoluteReference(number, 0));
        break;
      default:
        values.addInteger(variable->key, static_cast<std::int64_t>(number));
    }
  }
  dwg::RecordCoder coder(version, codePage, 0, values);
  dwg::codeVariables(coder);
  dwg::RecordBytes bytes;
  coder.finish(bytes);
  return bytes.data;
}

struct MadeClass {
  std::string dxfName;
  std::string cppName;
  bool isEntity = false;
};

/// Classes from number 500 on.
inline std::string madeClassSection(dxf::Version version, const os::CodePage& codePage,
                                    const std::vector<MadeClass>& classes) {
  enum Key : int { kText = 1, kNumber };
  dwg::RecordValues values;
  const auto wide = [](std::string_view text) { return std::wstring(text.begin(), text.end()); };
  for (const MadeClass& made : classes) {
    values.addText(kText, L"Tests");
    values.addText(kText, wide(made.cppName));
    values.addText(kText, wide(made.dxfName));
  }
  dwg::RecordCoder coder(version, codePage, 0, values);
  coder.openSection();
  const bool isPaged = version >= dxf::Version::R2004;
  if (isPaged) {
    coder.BS(kNumber, 499 + static_cast<std::int64_t>(classes.size()));
    coder.RC(kNumber);
    coder.RC(kNumber);
    coder.B(kNumber, 1);
  }
  for (std::size_t i = 0; i < classes.size(); ++i) {
    coder.BS(kNumber, 500 + static_cast<std::int64_t>(i));
    coder.BS(kNumber);
    coder.TV(kText);
    coder.TV(kText);
    coder.TV(kText);
    coder.B(kNumber);
    coder.BS(kNumber, classes[i].isEntity ? 0x1F2 : 0x1F3);
    for (int part = 0; isPaged && part < 5; ++part) {
      coder.BL(kNumber);
    }
  }
  dwg::RecordBytes bytes;
  coder.finish(bytes);
  return bytes.data;
}

}  // namespace quoin::test
