#include "embedded/dwg/records/DrawingFacts.h"

#include <utility>

#include "embedded/dxf/Tag.h"
#include "embedded/os/CaseFold.h"

namespace quoin::dwg {
namespace {

std::wstring keyOf(std::string_view table, std::wstring_view name) {
  std::wstring key(table.begin(), table.end());
  key += L'/';
  key += os::foldCase(std::wstring(name));
  return key;
}

/// The name as it is read from a tag: with the characters that \U+XXXX stands for.
std::wstring readName(const std::wstring& name, const dxf::Format& format) {
  constexpr int kNameCode = 2;
  std::string bytes;
  dxf::putText(bytes, kNameCode, name, format);
  dxf::TagCursor cursor(bytes, format);
  dxf::TagView tag;
  return cursor.next(tag) ? dxf::textOf(tag, format) : name;
}

}  // namespace

void DrawingFacts::name(std::string_view table, std::uint64_t handle, std::wstring name) {
  m_handles.try_emplace(keyOf(table, readName(name, format)), handle);
  m_names[handle] = std::move(name);
}

const std::wstring& DrawingFacts::nameOf(std::uint64_t handle) const {
  static const std::wstring kNone;
  const auto found = m_names.find(handle);
  return found == m_names.end() ? kNone : found->second;
}

std::uint64_t DrawingFacts::handleOf(std::string_view table, std::wstring_view name) const {
  const auto found = m_handles.find(keyOf(table, name));
  return found == m_handles.end() ? 0 : found->second;
}

}  // namespace quoin::dwg
