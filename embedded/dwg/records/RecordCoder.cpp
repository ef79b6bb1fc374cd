#include "embedded/dwg/records/RecordCoder.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "embedded/dwg/records/TextCoding.h"
#include "embedded/os/CodePage.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

constexpr std::uint16_t kLongSize = 0x8000;  // the stream of texts has a size of two shorts
constexpr int kTerminated = 4;               // added to a text's form: a zero behind it counts
constexpr std::size_t kLargestSize = std::size_t{1} << 30;

std::u16string unitsFrom(BitReader& reader, std::size_t count) {
  std::u16string units;
  while (count-- != 0 && !reader.hasFailed()) {
    units += static_cast<char16_t>(reader.rawShort());
  }
  return units;
}

}  // namespace

HandleReference absoluteReference(std::uint64_t handle, std::uint8_t code) {
  HandleReference reference;
  reference.code = code;
  reference.offset = handle;
  reference.bytes = static_cast<std::uint8_t>((std::bit_width(handle) + 7) / 8);
  return reference;
}

RecordCoder::RecordCoder(Version version, const os::CodePage& codePage, std::uint64_t own,
                         std::string_view data, std::uint64_t handleBits, RecordValues& values)
    : m_version(version),
      m_codePage(&codePage),
      m_own(own),
      m_isReading(true),
      m_record(data),
      m_handleBits(handleBits),
      m_data(data, 0, data.size() * 8),
      m_values(&values),
      m_cursor(values) {
  values.clear();
}

RecordCoder::RecordCoder(Version version, const os::CodePage& codePage, std::uint64_t own,
                         const RecordValues& values)
    : m_version(version),
      m_codePage(&codePage),
      m_own(own),
      m_isReading(false),
      m_wanted(&values),
      m_cursor(values) {}

bool RecordCoder::hasFailed() const {
  return m_hasFailed || m_data.hasFailed() || m_texts.hasFailed() || m_handles.hasFailed();
}

bool RecordCoder::hasHandlesLeft() const {
  // Behind the last handle there are bits to fill the byte.
  constexpr std::size_t kShortestHandle = 8;
  return m_handles.position() + kShortestHandle <= m_handles.end();
}

const Value* RecordCoder::take(int key) {
  return m_cursor.take(shifted(key));
}

// --- streams --------------------------------------------------------------------------------

std::uint16_t RecordCoder::objectType(std::uint16_t type) {
  if (m_isReading) {
    type = since(Version::R2010) ? m_data.objectType() : m_data.bitShort().value;
    if (since(Version::R2010)) {
      const std::size_t bits = m_record.size() * 8;
      if (m_handleBits > bits) {
        m_hasFailed = true;
        return type;
      }
      openStreams(bits - m_handleBits);
    }
  } else if (since(Version::R2010)) {
    m_dataOut.objectType(type);
  } else {
    m_dataOut.bitShort(type);
  }
  if (since(Version::R2000)) {
    sizeInBits();
  }
  return type;
}

void RecordCoder::sizeInBits() {
  if (since(Version::R2010)) {
    return;
  }
  if (m_isReading) {
    openStreams(m_data.rawLong());
  } else {
    m_sizeAt = m_dataOut.size();
    m_dataOut.rawLong(0);
  }
}

void RecordCoder::openSection() {
  m_isOneStream = !since(Version::R2007);
  if (m_isOneStream) {
    return;
  }
  if (m_isReading) {
    openStreams(m_data.rawLong());
  } else {
    m_sizeAt = m_dataOut.size();
    m_dataOut.rawLong(0);
  }
}

void RecordCoder::openStreams(std::size_t endOfData) {
  const std::size_t bits = m_record.size() * 8;
  const std::size_t begin = m_data.position();
  if (endOfData > bits || endOfData <= begin) {
    m_hasFailed = true;
    return;
  }
  m_handles = BitReader(m_record, endOfData, bits);
  if (!since(Version::R2007)) {
    m_data = BitReader(m_record, begin, endOfData);
    return;
  }
  std::size_t end = endOfData - 1;
  if (BitReader(m_record, end, endOfData).bit()) {
    constexpr std::size_t kShort = 16;
    const auto shortBefore = [&]() -> std::size_t {
      if (end < begin + kShort) {
        m_hasFailed = true;
        return 0;
      }
      end -= kShort;
      return BitReader(m_record, end, end + kShort).rawShort();
    };
    std::size_t size = shortBefore();
    if ((size & kLongSize) != 0) {
      size = (size & (kLongSize - 1)) | shortBefore() << 15;
    }
    if (m_hasFailed || size > end - begin) {
      m_hasFailed = true;
      return;
    }
    m_texts = BitReader(m_record, end - size, end);
    end -= size;
  }
  m_data = BitReader(m_record, begin, end);
}

namespace {
constexpr int kPadding = -903;
}

void RecordCoder::padding() {
  const std::size_t left = m_handles.end() - m_handles.position();
  if (left < 8) {
    m_values->addInteger(kPadding, m_handles.bits(static_cast<unsigned>(left)),
                         static_cast<int>(left));
  }
}

namespace {

constexpr int kRestOfData = -904;
constexpr int kRestOfTexts = -905;
constexpr int kRestOfHandles = -906;

void keepBits(BitReader& from, int key, RecordValues& values) {
  constexpr std::size_t kMost = 32;
  while (!from.isAtEnd()) {
    const std::size_t count = std::min(kMost, from.end() - from.position());
    values.addInteger(key, from.bits(static_cast<unsigned>(count)), static_cast<int>(count));
  }
}

}  // namespace

RecordCoder::Rest RecordCoder::rest() {
  const auto putBits = [this](int key, BitWriter& to) {
    while (const Value* const kept = take(key)) {
      to.bits(static_cast<std::uint32_t>(kept->integer), static_cast<unsigned>(kept->form));
    }
  };
  if (!m_isReading) {
    putBits(kRestOfData, m_dataOut);
    putBits(kRestOfTexts, m_textsOut);
    putBits(kRestOfHandles, m_handlesOut);
    return {};
  }
  Rest rest;
  rest.data = m_data.end() - m_data.position() + m_texts.end() - m_texts.position();
  rest.end = m_handles.end() - m_handles.position();
  if (m_isOneStream) {
    std::swap(rest.data, rest.end);
  }
  keepBits(m_data, kRestOfData, *m_values);
  keepBits(m_texts, kRestOfTexts, *m_values);
  keepBits(m_handles, kRestOfHandles, *m_values);
  return rest;
}

bool RecordCoder::finish(RecordBytes& record) {
  if (m_hasFailed) {
    return false;
  }
  if (since(Version::R2007)) {
    if (m_hasTexts) {
      const std::size_t size = m_textsOut.size();
      if (size > kLargestSize) {
        return false;
      }
      m_dataOut.append(m_textsOut);
      if (size >= kLongSize) {
        m_dataOut.rawShort(static_cast<std::uint16_t>(size >> 15));
        m_dataOut.rawShort(static_cast<std::uint16_t>((size & (kLongSize - 1)) | kLongSize));
      } else {
        m_dataOut.rawShort(static_cast<std::uint16_t>(size));
      }
    }
    m_dataOut.bit(m_hasTexts);
  }
  const std::size_t dataBits = m_dataOut.size();
  if (m_sizeAt != kNowhere) {
    m_dataOut.replaceLong(m_sizeAt, static_cast<std::uint32_t>(dataBits));
  }
  m_dataOut.append(m_handlesOut);
  const Value* const padding = m_wanted->first(kPadding);
  if (padding != nullptr && (m_dataOut.size() + static_cast<unsigned>(padding->form)) % 8 == 0) {
    m_dataOut.bits(static_cast<std::uint32_t>(padding->integer),
                   static_cast<unsigned>(padding->form));
  }
  record.data = m_dataOut.bytes();
  record.handleBits = since(Version::R2010) ? record.data.size() * 8 - dataBits : 0;
  return true;
}

// --- fields ---------------------------------------------------------------------------------

namespace {

/// What a writer takes for a whole number: the field, or what it is when it is missing.
std::int64_t integerOf(const Value* value, std::int64_t missing) {
  return value == nullptr                     ? missing
         : value->type == Value::Type::Double ? static_cast<std::int64_t>(value->number)
                                              : value->integer;
}

double doubleOf(const Value* value, double missing) {
  return value == nullptr                      ? missing
         : value->type == Value::Type::Integer ? static_cast<double>(value->integer)
                                               : value->number;
}

int formOf(const Value* value) {
  return value == nullptr ? BitWriter::kShortest : value->form;
}

}  // namespace

template <typename Read, typename Write>
std::int64_t RecordCoder::integer(int key, std::int64_t missing, Read read, Write write) {
  if (m_isReading) {
    int form = Value::kAnyForm;
    const std::int64_t value = read(m_data, form);
    m_values->addInteger(key, value, form);
    return value;
  }
  const Value* const wanted = m_cursor.take(key);
  const std::int64_t value = integerOf(wanted, missing);
  write(m_dataOut, value, formOf(wanted));
  return value;
}

std::int64_t RecordCoder::B(int key, std::int64_t missing) {
  return integer(
      shifted(key), missing,
      [](BitReader& data, int&) -> std::int64_t { return data.bit() ? 1 : 0; },
      [](BitWriter& out, std::int64_t value, int) { out.bit(value != 0); });
}

std::int64_t RecordCoder::BB(int key, std::int64_t missing) {
  return integer(
      shifted(key), missing, [](BitReader& data, int&) -> std::int64_t { return data.bits(2); },
      [](BitWriter& out, std::int64_t value, int) {
        out.bits(static_cast<std::uint32_t>(value) & 3, 2);
      });
}

std::int64_t RecordCoder::RC(int key, std::int64_t missing) {
  return integer(
      shifted(key), missing, [](BitReader& data, int&) -> std::int64_t { return data.rawChar(); },
      [](BitWriter& out, std::int64_t value, int) {
        out.rawChar(static_cast<std::uint8_t>(value));
      });
}

std::int64_t RecordCoder::RS(int key, std::int64_t missing) {
  return integer(
      shifted(key), missing,
      [](BitReader& data, int&) -> std::int64_t {
        return static_cast<std::int16_t>(data.rawShort());
      },
      [](BitWriter& out, std::int64_t value, int) {
        out.rawShort(static_cast<std::uint16_t>(value));
      });
}

std::int64_t RecordCoder::RL(int key, std::int64_t missing) {
  return integer(
      shifted(key), missing,
      [](BitReader& data, int&) -> std::int64_t {
        return static_cast<std::int32_t>(data.rawLong());
      },
      [](BitWriter& out, std::int64_t value, int) {
        out.rawLong(static_cast<std::uint32_t>(value));
      });
}

std::int64_t RecordCoder::BS(int key, std::int64_t missing) {
  return integer(
      shifted(key), missing,
      [](BitReader& data, int& form) -> std::int64_t {
        const Coded<std::uint16_t> read = data.bitShort();
        form = read.form;
        return static_cast<std::int16_t>(read.value);
      },
      [](BitWriter& out, std::int64_t value, int form) {
        out.bitShort(static_cast<std::uint16_t>(value), form);
      });
}

std::int64_t RecordCoder::BL(int key, std::int64_t missing) {
  return integer(
      shifted(key), missing,
      [](BitReader& data, int& form) -> std::int64_t {
        const Coded<std::uint32_t> read = data.bitLong();
        form = read.form;
        return static_cast<std::int32_t>(read.value);
      },
      [](BitWriter& out, std::int64_t value, int form) {
        out.bitLong(static_cast<std::uint32_t>(value), form);
      });
}

std::int64_t RecordCoder::BLL(int key, std::int64_t missing) {
  return integer(
      shifted(key), missing,
      [](BitReader& data, int&) { return static_cast<std::int64_t>(data.bitLongLong()); },
      [](BitWriter& out, std::int64_t value, int) {
        out.bitLongLong(static_cast<std::uint64_t>(value));
      });
}

double RecordCoder::BD(int key, double missing) {
  if (m_isReading) {
    const Coded<double> read = m_data.bitDouble();
    m_values->addDouble(shifted(key), read.value, read.form);
    return read.value;
  }
  const Value* const wanted = take(key);
  const double value = doubleOf(wanted, missing);
  m_dataOut.bitDouble(value, formOf(wanted));
  return value;
}

double RecordCoder::RD(int key, double missing) {
  if (m_isReading) {
    const double value = m_data.rawDouble();
    m_values->addDouble(shifted(key), value);
    return value;
  }
  const double value = doubleOf(take(key), missing);
  m_dataOut.rawDouble(value);
  return value;
}

double RecordCoder::DD(int key, double base) {
  if (m_isReading) {
    const Coded<double> read = m_data.defaultDouble(base);
    m_values->addDouble(shifted(key), read.value, read.form);
    return read.value;
  }
  const Value* const wanted = take(key);
  const double value = doubleOf(wanted, base);
  m_dataOut.defaultDouble(value, base, formOf(wanted));
  return value;
}

void RecordCoder::TV(int key) {
  const bool isUnicode = since(Version::R2007);
  if (m_isReading) {
    BitReader& from = isUnicode ? m_texts : m_data;
    const Coded<std::uint16_t> length = from.bitShort();
    if (isUnicode) {
      m_values->addText(shifted(key), textOfUnits(unitsFrom(from, length.value)), length.form);
      return;
    }
    std::string raw;
    for (unsigned i = 0; i < length.value && !from.hasFailed(); ++i) {
      raw += static_cast<char>(from.rawChar());
    }
    // Most writers count a zero behind the text.
    int form = length.form;
    if (!raw.empty() && raw.back() == '\0') {
      raw.pop_back();
      form += kTerminated;
    }
    m_values->addText(shifted(key), m_codePage->decode(raw), form);
    return;
  }
  const Value* const wanted = take(key);
  static const std::wstring kNone;
  const std::wstring& text =
      wanted == nullptr || wanted->type != Value::Type::Text ? kNone : m_wanted->textOf(*wanted);
  constexpr std::size_t kLongestText = 0xFFFF;
  if (isUnicode) {
    const std::u16string units = unitsOf(text);
    m_hasTexts = true;
    m_hasFailed = m_hasFailed || units.size() > kLongestText;
    m_textsOut.bitShort(static_cast<std::uint16_t>(units.size()), formOf(wanted));
    for (const char16_t unit : units) {
      m_textsOut.rawShort(unit);
    }
    return;
  }
  std::string raw = bytesOfText(text, *m_codePage);
  const int form = formOf(wanted);
  if (form == BitWriter::kShortest ? !raw.empty() : form >= kTerminated) {
    raw += '\0';
  }
  m_hasFailed = m_hasFailed || raw.size() > kLongestText;
  m_dataOut.bitShort(static_cast<std::uint16_t>(raw.size()),
                     form >= kTerminated ? form - kTerminated : form);
  for (const char byte : raw) {
    m_dataOut.rawChar(static_cast<std::uint8_t>(byte));
  }
}

std::uint64_t RecordCoder::H(int key, std::uint8_t code) {
  return m_isOneStream ? codeHandle(key, code, m_data, m_dataOut)
                       : codeHandle(key, code, m_handles, m_handlesOut);
}

std::uint64_t RecordCoder::dataHandle(int key, std::uint8_t code) {
  return codeHandle(key, code, m_data, m_dataOut);
}

std::uint64_t RecordCoder::codeHandle(int key, std::uint8_t code, BitReader& from, BitWriter& to) {
  if (m_isReading) {
    const HandleReference reference = from.handle();
    const std::uint64_t handle = reference.resolved(m_own);
    m_values->addHandle(shifted(key), handle, reference);
    return handle;
  }
  const Value* const wanted = take(key);
  const auto handle = static_cast<std::uint64_t>(integerOf(wanted, 0));
  const bool keepsReference = wanted != nullptr && wanted->type == Value::Type::Handle &&
                              (wanted->reference.code != 0 || wanted->reference.bytes != 0) &&
                              wanted->reference.resolved(m_own) == handle;
  to.handle(keepsReference ? wanted->reference : absoluteReference(handle, code));
  return handle;
}

void RecordCoder::bytes(int key, std::size_t count) {
  if (m_isReading) {
    if (count > (m_data.end() - m_data.position()) / 8) {
      m_hasFailed = true;
      return;
    }
    std::string read(count, '\0');
    for (char& byte : read) {
      byte = static_cast<char>(m_data.rawChar());
    }
    m_values->addBytes(shifted(key), std::move(read));
    return;
  }
  const Value* const wanted = take(key);
  std::string given = wanted == nullptr || wanted->type != Value::Type::Bytes
                          ? std::string()
                          : m_wanted->bytesOf(*wanted);
  given.resize(count, '\0');
  for (const char byte : given) {
    m_dataOut.rawChar(static_cast<std::uint8_t>(byte));
  }
}

void RecordCoder::restOf(BitReader& from, BitWriter& to, int bytesKey, int countKey) {
  constexpr std::size_t kByte = 8;
  if (m_isReading) {
    const std::size_t count = from.end() - from.position();
    m_values->addInteger(shifted(countKey), static_cast<std::int64_t>(count));
    std::string read;
    for (std::size_t left = count; left != 0; left -= std::min(left, kByte)) {
      const auto bits = static_cast<unsigned>(std::min(left, kByte));
      read += static_cast<char>(from.bits(bits) << (kByte - bits));
    }
    m_values->addBytes(shifted(bytesKey), std::move(read));
    return;
  }
  const std::string given = nextBytes(bytesKey);
  take(bytesKey);
  auto left = static_cast<std::size_t>(std::max<std::int64_t>(integerOf(take(countKey), 0), 0));
  left = std::min(left, given.size() * kByte);
  for (std::size_t i = 0; left != 0; ++i) {
    const auto bits = static_cast<unsigned>(std::min(left, kByte));
    to.bits(static_cast<std::uint8_t>(given[i]) >> (kByte - bits), bits);
    left -= bits;
  }
}

void RecordCoder::rest(int key) {
  restOf(m_data, m_dataOut, key, key - 1);
  if (since(Version::R2007)) {
    restOf(m_texts, m_textsOut, key - 2, key - 3);
    m_hasTexts = m_hasTexts || m_textsOut.size() != 0;
  }
  if (m_isReading) {
    while (hasHandlesLeft() && !hasFailed()) {
      H(key - 4, kHardPointer);
    }
  } else {
    for (std::size_t left = amount(key - 4); left != 0; --left) {
      H(key - 4, kHardPointer);
    }
  }
}

// --- several fields -------------------------------------------------------------------------

void RecordCoder::point3BD(int key) {
  BD(key);
  BD(key + 10);
  BD(key + 20);
}

void RecordCoder::point2RD(int key) {
  RD(key);
  RD(key + 10);
}

void RecordCoder::point2BD(int key) {
  BD(key);
  BD(key + 10);
}

void RecordCoder::point3DD(int key, const double (&base)[3], double (&point)[3]) {
  for (int i = 0; i < 3; ++i) {
    point[i] = DD(key + 10 * i, base[i]);
  }
}

namespace {
constexpr int kThicknessOmitted = -901;
constexpr int kExtrusionOmitted = -902;
}  // namespace

void RecordCoder::BT(int key) {
  if (!since(Version::R2000)) {
    BD(key);
  } else if (omits(kThicknessOmitted, nextDouble(key) == 0.0)) {
    implied(key, 0.0);
  } else {
    BD(key);
  }
}

void RecordCoder::BE(int key) {
  const auto isZAxis = [&] {
    return nextDouble(key) == 0.0 && nextDouble(key + 10) == 0.0 &&
           nextDouble(key + 20, 1.0) == 1.0;
  };
  if (since(Version::R2000) && omits(kExtrusionOmitted, isZAxis())) {
    implied(key, 0.0);
    implied(key + 10, 0.0);
    implied(key + 20, 1.0);
    return;
  }
  BD(key);
  BD(key + 10);
  BD(key + 20, 1.0);
}

// --- what decides what follows --------------------------------------------------------------

bool RecordCoder::omits(int hiddenKey, bool canOmit) {
  if (m_isReading) {
    return B(hiddenKey) != 0;
  }
  const bool omitted = canOmit && integerOf(take(hiddenKey), 1) != 0;
  m_dataOut.bit(omitted);
  return omitted;
}

std::size_t RecordCoder::checkedCount(std::uint64_t count) {
  // Every part takes a bit at least, here or in a stream beside.
  if (count > m_record.size() * 8) {
    m_hasFailed = true;
    return 0;
  }
  return count;
}

std::size_t RecordCoder::countBL(int key, int partKey) {
  if (m_isReading) {
    return checkedCount(static_cast<std::uint32_t>(BL(key)));
  }
  const std::size_t count = amount(partKey);
  m_dataOut.bitLong(static_cast<std::uint32_t>(count), formOf(take(key)));
  return count;
}

std::size_t RecordCoder::countBS(int key, int partKey) {
  if (m_isReading) {
    return checkedCount(static_cast<std::uint16_t>(BS(key)));
  }
  const std::size_t count = amount(partKey);
  m_hasFailed = m_hasFailed || count > 0xFFFF;
  m_dataOut.bitShort(static_cast<std::uint16_t>(count), formOf(take(key)));
  return count;
}

std::size_t RecordCoder::countRC(int key, int partKey) {
  if (m_isReading) {
    return checkedCount(static_cast<std::uint8_t>(RC(key)));
  }
  const std::size_t count = amount(partKey);
  m_hasFailed = m_hasFailed || count > 0xFF;
  take(key);
  m_dataOut.rawChar(static_cast<std::uint8_t>(count));
  return count;
}

std::size_t RecordCoder::checkedParts(std::uint64_t count) {
  if (m_isReading) {
    return checkedCount(count);
  }
  if (count > m_wanted->size()) {
    m_hasFailed = true;
    return 0;
  }
  return count;
}

std::size_t RecordCoder::partsBL(int key) {
  return checkedParts(static_cast<std::uint32_t>(BL(key)));
}

std::size_t RecordCoder::partsBS(int key) {
  return checkedParts(static_cast<std::uint16_t>(BS(key)));
}

std::size_t RecordCoder::partsRC(int key) {
  return checkedParts(static_cast<std::uint8_t>(RC(key)));
}

bool RecordCoder::hasOtherThanZero(int key) const {
  for (std::size_t i = 0; m_wanted != nullptr && i < m_wanted->size(); ++i) {
    const Value& value = (*m_wanted)[i];
    if (value.key == shifted(key) && doubleOf(&value, 0.0) != 0.0) {
      return true;
    }
  }
  return false;
}

double RecordCoder::nextDouble(int key, double missing) {
  return m_isReading ? missing : doubleOf(m_cursor.peek(shifted(key)), missing);
}

std::int64_t RecordCoder::nextInteger(int key, std::int64_t missing) {
  return m_isReading ? missing : integerOf(m_cursor.peek(shifted(key)), missing);
}

std::uint64_t RecordCoder::nextHandle(int key) {
  return static_cast<std::uint64_t>(nextInteger(key));
}

const Value* RecordCoder::next(int key) {
  return m_isReading ? nullptr : m_cursor.peek(shifted(key));
}

std::string RecordCoder::nextBytes(int key) {
  const Value* const value = next(key);
  return value == nullptr || value->type != Value::Type::Bytes ? std::string()
                                                               : m_wanted->bytesOf(*value);
}

void RecordCoder::implied(int key, double number) {
  if (m_isReading) {
    m_values->addDouble(shifted(key), number);
  } else {
    take(key);
  }
}

void RecordCoder::impliedInteger(int key, std::int64_t integer) {
  if (m_isReading) {
    m_values->addInteger(shifted(key), integer);
  } else {
    take(key);
  }
}

void RecordCoder::impliedText(int key, std::wstring text) {
  if (m_isReading) {
    m_values->addText(shifted(key), std::move(text));
  } else {
    take(key);
  }
}

void RecordCoder::impliedHandle(int key, std::uint64_t handle) {
  if (m_isReading) {
    m_values->addHandle(shifted(key), handle);
  } else {
    take(key);
  }
}

}  // namespace quoin::dwg
