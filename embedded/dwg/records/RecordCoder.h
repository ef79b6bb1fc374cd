// Reads or writes the fields of one record, in the order in which DWG has them. What a kind
// consists of is one function that calls these in order and works both ways: when reading, each
// call returns what the file says and keeps it under its key; when writing, it takes the field
// of that key (or what it is by default) and returns that. Where a field decides what follows, the
// function uses the returned value, so that both ways go through the same branches.
//
// A record has one stream of data, from R2007 on one of texts, and one of handles at its end.
//
// Source: Open Design Specification for .dwg files, "Common entity data", "Strings".
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "embedded/dwg/records/BitReader.h"
#include "embedded/dwg/records/BitWriter.h"
#include "embedded/dwg/records/RecordValues.h"
#include "embedded/dxf/Format.h"

namespace quoin::os {
class CodePage;
}

namespace quoin::dwg {

// How a handle refers: who deletes whom, and what is saved with what.
inline constexpr std::uint8_t kSoftOwner = 2;
inline constexpr std::uint8_t kHardOwner = 3;
inline constexpr std::uint8_t kSoftPointer = 4;
inline constexpr std::uint8_t kHardPointer = 5;

/// One record's bytes behind their size, and how many bits its handles take (from R2010 on).
struct RecordBytes {
  std::string data;
  std::uint64_t handleBits = 0;
};

class HOST_API RecordCoder {
 public:
  /// Reads a record: its data from the object type on.
  RecordCoder(dxf::Version version, const os::CodePage& codePage, std::uint64_t own,
              std::string_view data, std::uint64_t handleBits, RecordValues& values);
  /// Writes a record of these fields.
  RecordCoder(dxf::Version version, const os::CodePage& codePage, std::uint64_t own,
              const RecordValues& values);

  bool isReading() const { return m_isReading; }
  dxf::Version version() const { return m_version; }
  bool since(dxf::Version version) const { return m_version >= version; }
  std::uint64_t own() const { return m_own; }
  /// Reading: whether the record ended too early, or is left in a state that makes no sense.
  bool hasFailed() const;
  /// Makes the record count as one that cannot be read.
  void fail() { m_hasFailed = true; }
  /// Reading: bits of the data that no call has read.
  std::size_t bitsLeft() const { return m_data.end() - m_data.position(); }
  /// Reading: whether any handles are left.
  bool hasHandlesLeft() const;

  /// The object type that a record begins with, and from R2000 to R2007 its size in bits.
  std::uint16_t objectType(std::uint16_t type);
  /// R13 and R14 have that size later.
  void sizeInBits();
  /// In the place of objectType(), for the sections that are fields as records are: from R2007 on
  /// their size in bits stands in front of the streams, before all fields stand in one stream.
  void openSection();

  // --- fields -----------------------------------------------------------------------------
  std::int64_t B(int key, std::int64_t missing = 0);
  std::int64_t BB(int key, std::int64_t missing = 0);
  std::int64_t RC(int key, std::int64_t missing = 0);
  std::int64_t RS(int key, std::int64_t missing = 0);
  std::int64_t RL(int key, std::int64_t missing = 0);
  std::int64_t BS(int key, std::int64_t missing = 0);
  std::int64_t BL(int key, std::int64_t missing = 0);
  std::int64_t BLL(int key, std::int64_t missing = 0);
  double BD(int key, double missing = 0.0);
  double RD(int key, double missing = 0.0);
  /// A double as its difference to `base`.
  double DD(int key, double base);
  /// Text in the code page or, from R2007 on, in the stream of texts.
  void TV(int key);
  std::uint64_t H(int key, std::uint8_t code);
  /// A handle that stands among the data in every version.
  std::uint64_t dataHandle(int key, std::uint8_t code);
  /// Bytes as they stand.
  void bytes(int key, std::size_t count);
  /// All that is left of the data, the texts and the handles, as it stands: five keys downwards.
  void rest(int key);

  // --- several fields -------------------------------------------------------------------
  /// The keys are key, key + 10 and key + 20.
  void point3BD(int key);
  void point2RD(int key);
  void point2BD(int key);
  void point3DD(int key, const double (&base)[3], double (&point)[3]);
  /// Thickness: a single bit for none, from R2000 on.
  void BT(int key);
  /// Extrusion: a single bit for the Z axis, from R2000 on.
  void BE(int key);

  // --- what decides what follows --------------------------------------------------------
  /// A bit that says whether fields are left out because they are what they are by default;
  /// `canOmit` when writing. The file's own choice is kept where it still can be.
  bool omits(int hiddenKey, bool canOmit);
  /// A number of parts that follow; when writing, of the fields that have `partKey`.
  std::size_t countBL(int key, int partKey);
  std::size_t countBS(int key, int partKey);
  std::size_t countRC(int key, int partKey);
  /// A number of parts that DXF tells as well: the field itself, which the parts must bear out.
  std::size_t partsBL(int key);
  std::size_t partsBS(int key);
  std::size_t partsRC(int key);
  /// Writing: how many fields have the key, and what the next one is.
  std::size_t amount(int key) const {
    return m_wanted == nullptr ? 0 : m_wanted->count(shifted(key));
  }
  bool hasOtherThanZero(int key) const;
  double nextDouble(int key, double missing = 0.0);
  std::int64_t nextInteger(int key, std::int64_t missing = 0);
  std::uint64_t nextHandle(int key);
  const Value* next(int key);
  std::string nextBytes(int key);
  /// Reading: keeps a field that the file implies.
  void implied(int key, double number);
  void impliedInteger(int key, std::int64_t integer);
  void impliedHandle(int key, std::uint64_t handle);
  void impliedText(int key, std::wstring text);
  /// Reading: gives the fields with one key another.
  void rename(int key, int newKey) { m_values->rename(shifted(key), shifted(newKey)); }
  /// From now on keys are meant that are this much higher: for an object within a record.
  void shiftKeys(int by) { m_keyShift = by; }

  /// Reading: keeps the bits that fill the last byte; nobody knows what they say.
  void padding();
  /// Keeps what no call has read, so that it is written where it stood. Returns, when reading, how
  /// many bits that is: of the data and texts, and of what stands behind them.
  struct Rest {
    std::size_t data = 0;
    std::size_t end = 0;
  };
  Rest rest();
  /// Writing: the whole record. Fails: false when a field does not fit.
  bool finish(RecordBytes& record);

  /// The parts, for what has a form of its own (extended data).
  BitReader& data() { return m_data; }
  BitWriter& dataOut() { return m_dataOut; }
  const os::CodePage& codePage() const { return *m_codePage; }
  RecordValues& values() { return *m_values; }
  /// Writing: the fields.
  const RecordValues& wanted() const { return *m_wanted; }

 private:
  void openStreams(std::size_t endOfData);
  std::size_t checkedCount(std::uint64_t count);
  std::size_t checkedParts(std::uint64_t count);
  void restOf(BitReader& from, BitWriter& to, int bytesKey, int countKey);
  std::uint64_t codeHandle(int key, std::uint8_t code, BitReader& from, BitWriter& to);
  const Value* take(int key);
  /// A whole number; `read` tells how it is stored where there are several ways, `write` gets that.
  template <typename Read, typename Write>
  std::int64_t integer(int key, std::int64_t missing, Read read, Write write);
  int shifted(int key) const { return key + m_keyShift; }

  dxf::Version m_version;
  const os::CodePage* m_codePage;
  std::uint64_t m_own;
  bool m_isReading;
  bool m_hasFailed = false;

  std::string_view m_record;
  std::uint64_t m_handleBits = 0;
  BitReader m_data;
  BitReader m_texts;
  BitReader m_handles;
  RecordValues* m_values = nullptr;

  const RecordValues* m_wanted = nullptr;
  ValueCursor m_cursor;
  BitWriter m_dataOut;
  BitWriter m_textsOut;
  BitWriter m_handlesOut;
  static constexpr std::size_t kNowhere = ~std::size_t{0};
  std::size_t m_sizeAt = kNowhere;  // of the size in bits
  bool m_hasTexts = false;
  bool m_isOneStream = false;  // handles stand among the data
  int m_keyShift = 0;
};

/// The shortest absolute reference to a handle.
HOST_API HandleReference absoluteReference(std::uint64_t handle, std::uint8_t code);

}  // namespace quoin::dwg
