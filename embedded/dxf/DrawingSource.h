// The file of another format that a record store was made from. The store holds its tags; whoever
// writes the file again needs what the tags do not say.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "hostapi.h"

namespace quoin::dxf {

/// How many records of a kind are not read, or in part: those that are not are kept, and can be
/// neither shown nor edited.
struct UnreadKind {
  std::string name;  // "MESH"
  std::size_t count = 0;
  bool isEntity = false;
};

class HOST_API DrawingSource {
 public:
  virtual ~DrawingSource();
  /// The codec that reads and writes it: "DWG".
  virtual const char* formatName() const = 0;
  virtual std::size_t fileSize() const = 0;
  /// The application that saved the file; "" when unknown.
  virtual std::string savedBy() const = 0;
  /// Why the file must not be written; "" where it may be.
  virtual std::string whyReadOnly() const = 0;
  /// Whether more is known of the record with this handle than what all records share.
  virtual bool isRead(std::uint64_t handle) const = 0;
  /// Whether the record with this handle may be edited: all of it is known.
  virtual bool canEdit(std::uint64_t handle) const = 0;
  /// What is kept unread, by kind.
  virtual std::vector<UnreadKind> unread() const = 0;
  /// Kinds whose tags say less than their records, which keep the rest through an edit.
  virtual std::vector<UnreadKind> partlyRead() const = 0;
};

}  // namespace quoin::dxf
