// Changes a DWG file for the check with an independent reader: moves one LINE of model space by the
// last bits of its coordinate, and adds a copy of its record with a handle of its own. With a text,
// gives that to the first TEXT and the first MTEXT instead.
// Usage: change_dwg IN OUT; prints both handles. Or: change_dwg IN OUT TEXT
#include <cstdint>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "dbents.h"
#include "dbmtext.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "dbsymutl.h"
#include "embedded/dwg/container/DwgFile.h"
#include "embedded/dxf/FileError.h"
#include "embedded/os/Utf8.h"
#include "hostextra.h"

namespace {

using quoin::dwg::DwgFile;
using quoin::dwg::RecordView;
using quoin::dxf::Version;

constexpr unsigned kLine = 0x13;
constexpr unsigned kModelSpace = 2;

/// The bits of a record, the highest of each byte first, as far as this needs their codes.
class Bits {
 public:
  explicit Bits(std::string_view bytes) : m_bytes(bytes) {}

  unsigned take(std::size_t count) {
    unsigned bits = 0;
    for (; count > 0; --count, ++m_at) {
      bits = bits << 1 | (byteAt(m_at / 8) >> (7 - m_at % 8) & 1U);
    }
    return bits;
  }
  void skip(std::size_t bits) { m_at += bits; }
  std::size_t at() const { return m_at; }

  unsigned bitShort() {
    const unsigned code = take(2);
    const unsigned low = code < 2 ? take(8) : 0;
    return code == 0 ? low | take(8) << 8 : code == 3 ? 256 : low;
  }
  void bitLong() {
    const unsigned code = take(2);
    skip(code == 0 ? 32 : code == 1 ? 8 : 0);
  }
  void bitDouble() { skip(take(2) == 0 ? 64 : 0); }
  /// Skips a handle; returns where it begins.
  std::size_t handle() {
    const std::size_t begin = m_at;
    skip(4);
    skip(take(4) * std::size_t{8});
    return begin;
  }

 private:
  unsigned byteAt(std::size_t index) const {
    if (index >= m_bytes.size()) {
      throw std::out_of_range("the record ends");
    }
    return static_cast<unsigned char>(m_bytes[index]);
  }

  std::string_view m_bytes;
  std::size_t m_at = 0;
};

unsigned objectType(Bits& bits, Version version) {
  if (version < Version::R2010) {
    return bits.bitShort();
  }
  const unsigned code = bits.take(2);
  return code == 0 ? bits.take(8) : 0xFFFF;
}

struct Line {
  std::size_t handleAt = 0;
  std::size_t xAt = 0;  // the 64 bits of the first end's coordinate
};

void skipColour(Bits& bits, Version version) {
  const unsigned colour = bits.bitShort();
  if (version >= Version::R2004) {
    if ((colour & 0x8000) != 0) {
      bits.bitLong();
    }
    if ((colour & 0x2000) != 0) {
      bits.bitLong();
    }
  }
}

/// The places that matter in a LINE of model space; none for other records.
std::optional<Line> lineOf(const RecordView& record, Version version) {
  Line line;
  Bits bits(record.data);
  if (objectType(bits, version) != kLine) {
    return std::nullopt;
  }
  bits.skip(version < Version::R2010 ? 32 : 0);
  line.handleAt = bits.handle();
  for (unsigned size = bits.bitShort(); size != 0; size = bits.bitShort()) {
    bits.handle();
    bits.skip(size * std::size_t{8});
  }
  const bool hasPicture = bits.take(1) != 0;
  if (hasPicture || bits.take(2) != kModelSpace) {
    return std::nullopt;
  }
  bits.bitLong();
  bits.skip(version >= Version::R2013 ? 2 : 1);
  skipColour(bits, version);
  bits.bitDouble();
  bits.skip(4);  // line type, plot style
  if (version >= Version::R2007) {
    bits.skip(2 + 8);  // material, shadows
  }
  bits.skip(version >= Version::R2010 ? 3 : 0);  // visual styles
  bits.bitShort();
  bits.skip(8);  // line weight
  bits.skip(1);  // whether it is flat
  line.xAt = bits.at();
  return line;
}

void flip(std::string& bytes, std::size_t bit) {
  bytes[bit / 8] = static_cast<char>(bytes[bit / 8] ^ 0x80 >> bit % 8);
}

/// The copy's handle, with as many bytes as the old one has.
void putHandle(std::string& bytes, std::size_t at, std::uint64_t handle) {
  const std::size_t size = Bits(bytes.substr(at / 8)).take(at % 8 + 8) & 0xF;
  for (std::size_t bit = 0; bit < size * 8; ++bit) {
    const std::size_t place = at + 8 + bit;
    const bool is = (static_cast<unsigned char>(bytes[place / 8]) >> (7 - place % 8) & 1) != 0;
    if (is != ((handle >> (size * 8 - 1 - bit) & 1) != 0)) {
      flip(bytes, place);
    }
  }
}

std::uint64_t freeHandle(const DwgFile& file, std::uint64_t below) {
  while (file.find(below) != nullptr) {
    --below;
  }
  return below;
}

void change(const std::string& from, const std::string& to) {
  std::ifstream in(from, std::ios::binary);
  const DwgFile file(std::string(std::istreambuf_iterator<char>(in), {}), from);
  for (const RecordView& record : file.records()) {
    const std::optional<Line> line = lineOf(record, file.version());
    if (!line) {
      continue;
    }
    std::string moved(record.data);
    // A number's bytes stand with the lowest in front; these bits move it by a 2^-44th.
    flip(moved, line->xAt + 8 + 7);
    std::string copy(record.data);
    const std::uint64_t fresh = freeHandle(file, record.handle);
    putHandle(copy, line->handleAt, fresh);
    quoin::dwg::FileChanges changes;
    changes.records = {{record.handle, moved, record.handleBits, false},
                       {fresh, copy, record.handleBits, false}};
    std::ofstream(to, std::ios::binary) << file.written(changes);
    std::printf("%llX %llX\n", static_cast<unsigned long long>(record.handle),
                static_cast<unsigned long long>(fresh));
    return;
  }
  throw std::runtime_error("there is no LINE in model space");
}

/// The first entity of this kind in model space; null for none.
AcDbObjectId firstOf(AcDbDatabase& drawing, const std::wstring& kind) {
  AcDbObjectId space;
  acdbSymUtil()->getBlockId(space, ACDB_MODEL_SPACE, &drawing);
  const AcDbObjectPointer<AcDbBlockTableRecord> block(space, AcDb::kForRead);
  AcDbBlockTableRecordIterator* made = nullptr;
  block->newIterator(made);
  const std::unique_ptr<AcDbBlockTableRecordIterator> walk(made);
  AcDbObjectId id;
  for (; !walk->done(); walk->step()) {
    if (walk->getEntityId(id) == Acad::eOk && hostx::kindName(id) == kind) {
      return id;
    }
  }
  return AcDbObjectId::kNull;
}

void changeTexts(const std::string& from, const std::string& to, const std::wstring& text) {
  AcDbDatabase drawing(false, true);
  if (drawing.readDwgFile(quoin::os::fromUtf8(from).c_str()) != Acad::eOk) {
    throw std::runtime_error("it cannot be read");
  }
  const AcDbObjectId single = firstOf(drawing, L"TEXT");
  const AcDbObjectId several = firstOf(drawing, L"MTEXT");
  if (!single.isNull()) {
    AcDbObjectPointer<AcDbText>(single, AcDb::kForWrite)->setTextString(text.c_str());
  }
  if (!several.isNull()) {
    AcDbObjectPointer<AcDbMText>(several, AcDb::kForWrite)->setContents(text.c_str());
  }
  if (drawing.saveAs(quoin::os::fromUtf8(to).c_str()) != Acad::eOk) {
    throw std::runtime_error("it cannot be written");
  }
}

}  // namespace

int main(int count, char** words) {
  if (count != 3 && count != 4) {
    std::fputs("usage: change_dwg IN OUT [TEXT]\n", stderr);
    return 2;
  }
  try {
    if (count == 4) {
      changeTexts(words[1], words[2], quoin::os::fromUtf8(words[3]));
    } else {
      change(words[1], words[2]);
    }
    return 0;
  } catch (const quoin::dxf::FileError& error) {
    std::fprintf(stderr, "change_dwg: %s\n", error.message().c_str());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "change_dwg: %s: %s\n", words[1], error.what());
  }
  return 1;
}
