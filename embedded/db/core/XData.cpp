// Extended data between tags and lists of result buffers.
#include <cstdlib>
#include <cstring>
#include <memory>
#include <set>

#include "adscodes.h"
#include "dbmain.h"
#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/os/CaseFold.h"
#include "embedded/os/Utf8.h"

using namespace quoin::db;
namespace dxf = quoin::dxf;

namespace {

enum class Value : std::uint8_t { Text, Chunk, Handle, Point, Real, Short, Long, None };

/// What a group code of extended data holds; None for what is no such code.
Value valueOf(int code) {
  constexpr int kLayerName = 1003;
  constexpr int kChunk = 1004;
  constexpr int kHandle = 1005;
  if (code >= kFirstXDataCode && code <= kLayerName) {
    return Value::Text;
  }
  if (code == kChunk) {
    return Value::Chunk;
  }
  if (code == kHandle) {
    return Value::Handle;
  }
  if (code >= 1010 && code <= 1013) {
    return Value::Point;
  }
  if (code >= 1040 && code <= 1042) {
    return Value::Real;
  }
  return code == 1070 ? Value::Short : code == 1071 ? Value::Long : Value::None;
}

constexpr int kCoordinateStep = 10;  // from x to y to z

struct ListDeleter {
  void operator()(resbuf* list) const { acutRelRb(list); }
};
using List = std::unique_ptr<resbuf, ListDeleter>;

void setText(resbuf& buffer, const std::wstring& text) {
  if (acutNewString(text.c_str(), buffer.resval.rstring) != Acad::eOk) {
    throw std::bad_alloc();
  }
}

void setChunk(resbuf& buffer, const std::string& bytes) {
  buffer.resval.rbinary.buf = static_cast<char*>(std::malloc(bytes.size() + 1));
  if (!buffer.resval.rbinary.buf) {
    throw std::bad_alloc();
  }
  std::memcpy(buffer.resval.rbinary.buf, bytes.data(), bytes.size());
  buffer.resval.rbinary.clen = static_cast<short>(bytes.size());
}

/// One buffer of the tag at `index`.
List bufferOf(const TagList& tags, std::size_t index) {
  const dxf::TagView& tag = tags[index];
  List buffer(acutNewRb(tag.code));
  if (!buffer) {
    throw std::bad_alloc();
  }
  const auto coordinate = [&](std::size_t step) {
    const std::size_t at = index + step;
    const bool follows =
        at < tags.size() && tags[at].code == tag.code + kCoordinateStep * static_cast<int>(step);
    return follows ? tags.doubleAt(at) : 0.0;
  };
  switch (valueOf(tag.code)) {
    case Value::Text:
      setText(*buffer, tags.textAt(index));
      break;
    case Value::Handle:
      setText(*buffer, quoin::os::fromUtf8(dxf::trimmedValue(tag)));
      break;
    case Value::Chunk:
      setChunk(*buffer, dxf::binaryOf(tag, tags.format()));
      break;
    case Value::Point:
      for (std::size_t step = 0; step < 3; ++step) {
        buffer->resval.rpoint[step] = coordinate(step);
      }
      break;
    case Value::Real:
      buffer->resval.rreal = tags.doubleAt(index);
      break;
    case Value::Short:
      buffer->resval.rint = static_cast<short>(tags.integerAt(index));
      break;
    case Value::Long:
      buffer->resval.rlong = static_cast<Adesk::Int32>(tags.integerAt(index));
      break;
    case Value::None:
      return nullptr;  // the y and z of a point
  }
  return buffer;
}

List listOf(const TagList& tags, TagRange range) {
  List head;
  resbuf* last = nullptr;
  for (std::size_t i = range.first; i < range.last; ++i) {
    List buffer = bufferOf(tags, i);
    if (!buffer) {
      continue;
    }
    resbuf* const added = buffer.release();
    if (last) {
      last->rbnext = added;
    } else {
      head.reset(added);
    }
    last = added;
  }
  return head;
}

void putBuffer(std::string& bytes, const resbuf& buffer, const dxf::Format& format) {
  const int code = buffer.restype;
  switch (valueOf(code)) {
    case Value::Text:
      dxf::putText(bytes, code, buffer.resval.rstring ? buffer.resval.rstring : L"", format);
      break;
    case Value::Handle:
      dxf::putHandle(bytes, code, AcDbHandle(buffer.resval.rstring).asUInt64(), format);
      break;
    case Value::Chunk: {
      const ads_binary& chunk = buffer.resval.rbinary;
      const std::size_t size = chunk.clen > 0 ? static_cast<std::size_t>(chunk.clen) : 0;
      dxf::putBinary(bytes, code, std::string_view(chunk.buf, chunk.buf ? size : 0), format);
      break;
    }
    case Value::Point:
      for (int step = 0; step < 3; ++step) {
        dxf::putDouble(bytes, code + kCoordinateStep * step, buffer.resval.rpoint[step], format);
      }
      break;
    case Value::Real:
      dxf::putDouble(bytes, code, buffer.resval.rreal, format);
      break;
    case Value::Short:
      dxf::putInteger(bytes, code, buffer.resval.rint, format);
      break;
    case Value::Long:
      dxf::putInteger(bytes, code, buffer.resval.rlong, format);
      break;
    case Value::None:
      break;
  }
}

}  // namespace

resbuf* AcDbObject::xData(const ACHAR* appName) const {
  const TagList& tags = tagsOf(*this);
  try {
    return listOf(tags, appName ? tags.xData(std::wstring_view(appName)) : tags.xData()).release();
  } catch (...) {
    statusOfException();
    return nullptr;
  }
}

Acad::ErrorStatus AcDbObject::setXData(const resbuf* data) {
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  if (!data || data->restype != kAppNameCode || !data->resval.rstring) {
    return Acad::eInvalidInput;
  }
  for (const resbuf* buffer = data; buffer; buffer = buffer->rbnext) {
    if (valueOf(buffer->restype) == Value::None) {
      return Acad::eInvalidDxfCode;
    }
  }
  try {
    const TagList& tags = tagsOf(*this);
    RecordEdit edit(tags);
    std::string added;
    std::set<std::wstring> replaced;
    for (const resbuf* buffer = data; buffer;) {
      // One application: its name and everything up to the next name.
      const std::wstring app = buffer->resval.rstring ? buffer->resval.rstring : L"";
      const resbuf* next = buffer->rbnext;
      const bool isEmpty = !next || next->restype == kAppNameCode;
      if (replaced.insert(quoin::os::foldCase(app)).second) {
        if (const TagRange range = tags.xData(app); !range.isEmpty()) {
          edit.replace(range, {});
        }
      }
      if (!isEmpty) {
        if (m_impl->database) {
          m_impl->database->ensureRecord(TableKind::RegApp, app, true);
        }
        dxf::putText(added, kAppNameCode, app, tags.format());
      }
      for (; next && next->restype != kAppNameCode; next = next->rbnext) {
        putBuffer(added, *next, tags.format());
      }
      buffer = next;
    }
    if (!added.empty()) {
      edit.insertBefore(tags.size(), std::move(added));
    }
    if (edit.isChanged()) {
      setBytes(*this, edit.bytes());
    }
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}
