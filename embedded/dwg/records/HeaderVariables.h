// The variables of a drawing's header: how DWG stores them, in its order, and how DXF spells them,
// in its own. HeaderSection.h is what others use.
//
// Source: Open Design Specification for .dwg files, "Data section AcDb:Header"; DXF reference,
// "HEADER section group codes".
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "embedded/dwg/records/DxfLayout.h"
#include "embedded/dwg/records/RecordCoder.h"
#include "embedded/dxf/Format.h"
#include "hostapi.h"

namespace quoin::dwg {

enum class VariableCode : std::uint8_t {
  Bit,
  RawChar,
  BitShort,
  BitLong,
  BitLongLong,
  BitDouble,
  Text,
  Point3,  // of bit doubles
  Point2,  // of raw doubles
  Color,
  Date,            // Julian day and milliseconds, or days and milliseconds
  Owner,           // a hard owner
  Pointer,         // a hard pointer
  PointerBehind3,  // a hard pointer that is there where the number before it is 3
  HandleSeed,
};

/// A variable as DWG has it. Some that DXF does not have are known by what they are
/// (BLOCK_CONTROL); those whose use nobody knows have no name.
struct StoredVariable {
  VariableCode code = VariableCode::Bit;
  std::string_view name;  // without the dollar sign
  dxf::Version since = dxf::Version::R13;
  dxf::Version until = dxf::Version::R2018;
  int key = 0;  // of its field; a point's are key, key + 10, key + 20

  bool isIn(dxf::Version version) const { return since <= version && version <= until; }
};

/// Further fields of a variable, from its key on.
enum VariablePart : int {
  kMilliseconds = 1,  // Date
  kTrueColor = 1,     // Color
  kColorNames = 5,
};

/// A variable as DXF has it.
struct SpelledVariable {
  std::string_view name;  // with the dollar sign
  DxfLayout layout;
  dxf::Version since = dxf::Version::R13;
  dxf::Version until = dxf::Version::R2018;

  bool isIn(dxf::Version version) const { return since <= version && version <= until; }
};

/// A variable that is some bits of another one.
struct PackedVariable {
  std::string_view name;  // with the dollar sign
  unsigned shift = 0;
  unsigned bits = 0;
  bool isInverted = false;
};

/// All variables, in DWG's order.
std::span<const StoredVariable> storedVariables();
/// The first with this name (without the dollar sign) that this version has; null for none.
HOST_API const StoredVariable* storedVariable(std::string_view name, dxf::Version version);
/// Reads or writes all variables, each under its key.
HOST_API void codeVariables(RecordCoder& coder);
/// All variables, in DXF's order.
std::span<const SpelledVariable> spelledVariables();
/// The one of this name, which is part of FLAGS; null for none.
const PackedVariable* packedVariable(std::string_view name);

}  // namespace quoin::dwg
