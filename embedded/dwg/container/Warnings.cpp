#include "embedded/dwg/container/Warnings.h"

namespace quoin::dwg {

std::string Warning::message() const {
  std::string text = section;
  if (offset != 0) {
    text += (text.empty() ? "byte " : ", byte ") + std::to_string(offset);
  }
  return text.empty() ? cause : text + ": " + cause;
}

namespace container {

std::string recordText(std::uint64_t handle) {
  std::string digits;
  for (; handle != 0; handle >>= 4) {
    digits.insert(digits.begin(), "0123456789ABCDEF"[handle & 0xF]);
  }
  return "record " + (digits.empty() ? "0" : digits);
}

void Warnings::add(const std::string& section, std::uint64_t offset, const std::string& cause) {
  if (m_list.size() < kMost) {
    m_list.push_back({section, offset, cause});
  } else {
    ++m_leftOut;
  }
}

void Warnings::addDamage(const std::string& section, std::uint64_t offset,
                         const std::string& cause) {
  add(section, offset, cause);
  refuseWriting("the file is damaged (" + Warning{section, offset, cause}.message() +
                "), and only whole files are written");
}

void Warnings::refuseWriting(const std::string& why) {
  if (m_whyReadOnly.empty()) {
    m_whyReadOnly = why;
  }
}

void Warnings::close() {
  if (m_leftOut > 0) {
    m_list.push_back({"", 0, "and " + std::to_string(m_leftOut) + " more"});
  }
}

}  // namespace container
}  // namespace quoin::dwg
