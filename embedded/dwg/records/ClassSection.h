// The classes of a drawing: what its object types from 500 on are. The contents of the section as
// the records of a DXF file's CLASSES section, and back.
//
// Source: Open Design Specification for .dwg files, "Data section AcDb:Classes".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/dwg/records/RecordCodec.h"
#include "embedded/dwg/records/RecordValues.h"
#include "embedded/dxf/Format.h"
#include "hostapi.h"

namespace quoin::dwg {

/// One row of the section.
struct DrawingClass {
  std::uint16_t number = 0;  // the object type of its records
  std::uint16_t flags = 0;   // what may be done to proxies
  std::wstring application;
  std::wstring cppName;
  std::wstring dxfName;
  bool wasZombie = false;  // its application was absent when the drawing was saved
  bool isEntity = false;
  std::int64_t count = 0;  // of its records; R2004 and later
};

class HOST_API ClassSection {
 public:
  /// Reads the classes. `contents` is the section without its frame (marks, sizes, checksum),
  /// from R2007 on beginning with its size in bits.
  /// Fails: false where it ends too early or cannot be read; there are no classes then.
  bool read(std::string_view contents, dxf::Version version, const os::CodePage& codePage);

  const std::vector<DrawingClass>& classes() const { return m_classes; }
  /// The classes as RecordCodec wants them; of two with one number the first counts.
  ClassMap byType() const;
  /// Whether nothing was left unread, and writing what was read gave the very bits again, so that
  /// it may be changed.
  bool isExact() const { return m_isExact; }

  /// Appends a CLASS record for each class that DXF lists, in the file's order.
  void writeTags(const dxf::Format& format, std::string& bytes) const;
  /// Says how many records a class has. Fails: false, nothing changed, for a section that is not
  /// exact, before R2004, for an unknown class and a negative count.
  bool setCount(std::uint16_t number, std::int64_t count);

  /// The contents; with nothing set those that were read. "" for a section that is not exact.
  std::string write() const;

 private:
  std::string encoded(const RecordValues& values) const;
  void listClasses();

  dxf::Version m_version = dxf::Version::Unknown;
  const os::CodePage* m_codePage = nullptr;
  RecordValues m_values;
  std::vector<DrawingClass> m_classes;
  bool m_isExact = false;
};

}  // namespace quoin::dwg
