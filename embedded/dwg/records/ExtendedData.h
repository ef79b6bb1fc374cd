// Extended data (groups 1000 to 1071) of a record: in DWG the bytes of each application stand in
// front of the record's own fields.
//
// Source: Open Design Specification for .dwg files, "Extended object data".
#pragma once

#include <string>
#include <string_view>

#include "embedded/dwg/records/DrawingFacts.h"
#include "embedded/dwg/records/RecordValues.h"

namespace quoin::dwg {

/// Appends the tags of all applications' data.
void writeExtendedTags(const RecordValues& values, const DrawingFacts& facts, std::string& bytes);

/// The fields that hold these tags; of an application whose data did not change, its bytes.
/// Fails: false with the cause.
bool readExtendedTags(std::string_view tags, const RecordValues& original,
                      const DrawingFacts& facts, RecordValues& values, std::string& problem);

}  // namespace quoin::dwg
