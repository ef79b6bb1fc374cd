#include "embedded/dwg/records/ClassSection.h"

#include <limits>
#include <utility>

#include "embedded/dwg/records/RecordCoder.h"
#include "embedded/dxf/Tag.h"
#include "embedded/os/CodePage.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

// Where DXF has a field, its key is the group code there.
enum Key : int {
  kDxfName = 1,
  kCppName = 2,
  kApplication = 3,
  kFlags = 90,
  kCount = 91,
  kWasZombie = 280,
  kItemClass = 281,
  kNumber = -1,
  kVersion = -2,  // that the class came with
  kMaintenance = -3,
  kUnknown = -4,  // twice
  kLargestNumber = -5,
  kZero = -6,  // twice
  kTrue = -7,
};

constexpr std::int64_t kEntityClass = 0x1F2;  // 0x1F3: an object
/// Fewer bits than any class has: 4 short codes, 3 texts and a bit.
constexpr std::size_t kLeastBits = 8;

void codeClass(RecordCoder& coder) {
  coder.BS(kNumber);
  coder.BS(kFlags);
  coder.TV(kApplication);
  coder.TV(kCppName);
  coder.TV(kDxfName);
  coder.B(kWasZombie);
  coder.BS(kItemClass);
  if (!coder.since(Version::R2004)) {
    return;
  }
  coder.BL(kCount);
  coder.BL(kVersion);
  coder.BL(kMaintenance);
  coder.BL(kUnknown);
  coder.BL(kUnknown);
}

void codeClasses(RecordCoder& coder) {
  coder.openSection();
  if (coder.since(Version::R2004)) {
    coder.BS(kLargestNumber);
    coder.RC(kZero);
    coder.RC(kZero);
    coder.B(kTrue);
  }
  if (coder.isReading()) {
    while (coder.bitsLeft() >= kLeastBits && !coder.hasFailed()) {
      codeClass(coder);
    }
    return;
  }
  for (std::size_t left = coder.amount(kNumber); left != 0; --left) {
    codeClass(coder);
  }
}

}  // namespace

bool ClassSection::read(std::string_view contents, Version version, const os::CodePage& codePage) {
  *this = ClassSection();
  m_version = version;
  m_codePage = &codePage;
  RecordValues values;
  RecordCoder coder(version, codePage, 0, contents, 0, values);
  codeClasses(coder);
  if (coder.hasFailed()) {
    return false;
  }
  const RecordCoder::Rest rest = coder.rest();
  m_values = std::move(values);
  m_isExact = rest.data == 0 && rest.end < kLeastBits && encoded(m_values) == contents;
  listClasses();
  return true;
}

void ClassSection::listClasses() {
  ValueCursor cursor(m_values);
  const auto integer = [&](int key) {
    const Value* const value = cursor.take(key);
    return value == nullptr ? std::int64_t{0} : value->integer;
  };
  const auto text = [&](int key) { return m_values.textOf(*cursor.take(key)); };
  for (std::size_t left = m_values.count(kNumber); left != 0; --left) {
    DrawingClass& drawingClass = m_classes.emplace_back();
    drawingClass.number = static_cast<std::uint16_t>(integer(kNumber));
    drawingClass.flags = static_cast<std::uint16_t>(integer(kFlags));
    drawingClass.application = text(kApplication);
    drawingClass.cppName = text(kCppName);
    drawingClass.dxfName = text(kDxfName);
    drawingClass.wasZombie = integer(kWasZombie) != 0;
    drawingClass.isEntity = integer(kItemClass) == kEntityClass;
    drawingClass.count = integer(kCount);
  }
}

ClassMap ClassSection::byType() const {
  ClassMap classes;
  for (const DrawingClass& drawingClass : m_classes) {
    std::string name;
    for (const wchar_t character : drawingClass.dxfName) {
      constexpr wchar_t kAscii = 0x80;  // names of classes are ASCII
      name += character < kAscii ? static_cast<char>(character) : '?';
    }
    classes.try_emplace(drawingClass.number, ClassFacts{std::move(name), drawingClass.isEntity});
  }
  return classes;
}

void ClassSection::writeTags(const dxf::Format& format, std::string& bytes) const {
  for (const DrawingClass& drawingClass : m_classes) {
    // DXF counts these two among its own kinds since R2004.
    if (m_version >= Version::R2004 &&
        (drawingClass.dxfName == L"LAYOUT" || drawingClass.dxfName == L"ACDBPLACEHOLDER")) {
      continue;
    }
    dxf::putAscii(bytes, 0, "CLASS", format);
    dxf::putText(bytes, kDxfName, drawingClass.dxfName, format);
    dxf::putText(bytes, kCppName, drawingClass.cppName, format);
    dxf::putText(bytes, kApplication, drawingClass.application, format);
    dxf::putInteger(bytes, kFlags, drawingClass.flags, format);
    if (m_version >= Version::R2004) {
      dxf::putInteger(bytes, kCount, drawingClass.count, format);
    }
    dxf::putInteger(bytes, kWasZombie, drawingClass.wasZombie ? 1 : 0, format);
    dxf::putInteger(bytes, kItemClass, drawingClass.isEntity ? 1 : 0, format);
  }
}

bool ClassSection::setCount(std::uint16_t number, std::int64_t count) {
  if (!m_isExact || m_version < Version::R2004 || count < 0 ||
      count > std::numeric_limits<std::int32_t>::max()) {
    return false;
  }
  bool isFound = false;
  bool isClass = false;
  for (std::size_t i = 0; i < m_values.size() && !isFound; ++i) {
    Value& value = m_values[i];
    isClass = value.key == kNumber ? static_cast<std::uint16_t>(value.integer) == number : isClass;
    if (isClass && value.key == kCount) {
      value.integer = count;
      isFound = true;
    }
  }
  m_classes.clear();
  listClasses();
  return isFound;
}

std::string ClassSection::encoded(const RecordValues& values) const {
  RecordCoder coder(m_version, *m_codePage, 0, values);
  codeClasses(coder);
  coder.rest();
  RecordBytes bytes;
  return coder.finish(bytes) ? std::move(bytes.data) : std::string();
}

std::string ClassSection::write() const {
  return m_isExact ? encoded(m_values) : std::string();
}

}  // namespace quoin::dwg
