// What is odd about a file, and whether it may be written for all that.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "hostapi.h"

namespace quoin::dwg {

struct HOST_API Warning {
  std::string section;       // "AcDb:Handles", "file header"
  std::uint64_t offset = 0;  // in the file, or in the section where it is packed
  std::string cause;

  /// "AcDb:Handles, byte 1742: the checksum is wrong".
  std::string message() const;
};

namespace container {

/// "record 2F", as messages name it.
std::string recordText(std::uint64_t handle);

/// Collects warnings: so many of them that somebody may read them, and how many more there were.
class HOST_API Warnings {
 public:
  /// Something that does not keep the file from being written.
  void add(const std::string& section, std::uint64_t offset, const std::string& cause);
  /// Damage: the file can be read as far as it goes, and must not be written.
  void addDamage(const std::string& section, std::uint64_t offset, const std::string& cause);
  /// Something that is no damage and keeps the file from being written all the same.
  void refuseWriting(const std::string& why);
  /// Adds how many warnings were left out. Call once.
  void close();

  const std::vector<Warning>& list() const { return m_list; }
  /// One sentence; empty where the file may be written.
  const std::string& whyReadOnly() const { return m_whyReadOnly; }

 private:
  static constexpr std::size_t kMost = 100;

  std::vector<Warning> m_list;
  std::size_t m_leftOut = 0;
  std::string m_whyReadOnly;
};

}  // namespace container
}  // namespace quoin::dwg
