#include "embedded/db/core/ObjectImpl.h"

#include <cmath>
#include <new>

#include "dbents.h"
#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/db/core/Misuse.h"
#include "embedded/db/core/RecordKinds.h"
#include "embedded/dxf/FileError.h"

namespace quoin::db {
namespace {

const TagList& noTags() {
  static const TagList empty({}, *neutralFormat());
  return empty;
}

/// Writes the record of a free object that has none: its class's, with the points of a line.
void makeOwnBytes(const AcDbObject& object, ObjectImpl& impl) {
  const ClassRow* const row = classOf(impl.madeLine ? AcDbLine::desc() : object.isA());
  std::string bytes = row ? newRecordOf(*row) : std::string();
  if (impl.madeLine) {
    const auto put = [&bytes](int code, const AcGePoint3d& point) {
      const TagList tags(bytes, *neutralFormat());
      RecordEdit edit(tags);
      edit.setPoint(layout::kLine, code, point);
      if (edit.isChanged()) {
        bytes = edit.bytes();
      }
    };
    put(code::kLineStart, impl.madeLine->start);
    put(code::kLineEnd, impl.madeLine->end);
    impl.madeLine.reset();
  }
  ObjectImpl::Own& own = impl.ownToChange();
  own.bytes = std::move(bytes);
  own.format = neutralFormat();
}

}  // namespace

const std::shared_ptr<const dxf::Format>& neutralFormat() {
  static const std::shared_ptr<const dxf::Format> format = [] {
    auto neutral = std::make_shared<dxf::Format>();
    neutral->form = dxf::Form::Ascii;
    neutral->version = dxf::Version::R2018;
    neutral->lineEnd = "\n";
    neutral->groupCodeColumns = 0;
    return neutral;
  }();
  return format;
}

const ObjectImpl::Own& ObjectImpl::own() const {
  static const Own none;
  return m_own ? *m_own : none;
}

ObjectImpl::Own& ObjectImpl::ownToChange() {
  if (!m_own) {
    m_own = std::make_unique<Own>();
  }
  return *m_own;
}

const TagList& tagsOf(const AcDbObject& object) noexcept {
  try {
    ObjectImpl& impl = Access::of(object);
    if (impl.state == OpenState::Closed) {
      noteUsedAfterClose(describe(object));
      return noTags();
    }
    if (impl.tags) {
      return *impl.tags;
    }
    if (impl.stub) {
      return impl.tags.emplace(impl.database->bytesOf(*impl.stub), impl.database->format());
    }
    if (impl.own().bytes.empty()) {
      makeOwnBytes(object, impl);
    }
    return impl.tags.emplace(impl.own().bytes, *impl.own().format);
  } catch (...) {
    return noTags();  // where memory runs out, so does the count of what was closed
  }
}

Acad::ErrorStatus checkWritable(const AcDbObject& object) noexcept {
  try {
    const OpenState state = Access::of(object).state;
    if (state == OpenState::Free || state == OpenState::Write) {
      return Acad::eOk;
    }
    if (state == OpenState::Closed) {
      noteUsedAfterClose(describe(object));
    } else {
      noteWrittenWithoutWrite(describe(object));
    }
  } catch (const std::bad_alloc&) {
    return Acad::eOutOfMemory;
  }
  return Acad::eNotOpenForWrite;
}

void setBytes(AcDbObject& object, std::string bytes) {
  ObjectImpl& impl = Access::of(object);
  impl.forgetDecoded();
  if (impl.stub) {
    impl.database->replace(*impl.stub, std::move(bytes));
  } else {
    impl.ownToChange().bytes = std::move(bytes);
    impl.madeLine.reset();
  }
  impl.isModified = true;
}

Acad::ErrorStatus statusOfException() noexcept {
  try {
    throw;
  } catch (const dxf::FileError& error) {
    return error.status;
  } catch (const std::bad_alloc&) {
    return Acad::eOutOfMemory;
  } catch (...) {
    return Acad::eFileInternalErr;
  }
}

double numberOf(const AcDbObject& object, const SubclassLayout& layout, int code,
                double otherwise) {
  const TagList& tags = tagsOf(object);
  return tags.number(code, layout.in(tags), otherwise);
}

std::int64_t integerOf(const AcDbObject& object, const SubclassLayout& layout, int code,
                       std::int64_t otherwise) {
  const TagList& tags = tagsOf(object);
  return tags.integer(code, layout.in(tags), otherwise);
}

AcGePoint3d pointOf(const AcDbObject& object, const SubclassLayout& layout, int code,
                    const AcGePoint3d& otherwise) {
  const TagList& tags = tagsOf(object);
  return tags.point(code, layout.in(tags), otherwise);
}

AcGeVector3d normalOf(const TagList& tags, TagRange range) {
  const AcGeVector3d normal = tags.point(code::kNormal, range, {0.0, 0.0, 1.0}).asVector();
  const double length = normal.length();
  return length > 0.0 && std::isfinite(length) ? normal / length : AcGeVector3d::kZAxis;
}

AcGeVector3d normalOf(const AcDbObject& object, const SubclassLayout& layout) {
  const TagList& tags = tagsOf(object);
  return normalOf(tags, layout.in(tags));
}

std::wstring textOf(const AcDbObject& object, const SubclassLayout& layout, int code,
                    std::wstring_view otherwise) {
  const TagList& tags = tagsOf(object);
  return tags.text(code, layout.in(tags)).value_or(std::wstring(otherwise));
}

const ACHAR* keptText(const AcDbObject& object, int code, std::wstring text) {
  auto& texts = Access::of(object).ownToChange().texts;
  for (auto& [keptCode, kept] : texts) {
    if (keptCode == code) {
      kept = std::move(text);
      return kept.c_str();
    }
  }
  return texts.emplace_back(code, std::move(text)).second.c_str();
}

ACHAR* newText(std::wstring_view text) {
  ACHAR* copy = nullptr;
  acutNewString(std::wstring(text).c_str(), copy);
  return copy;
}

Acad::ErrorStatus setNumber(AcDbObject& object, const SubclassLayout& layout, int code,
                            double value, std::optional<double> absent) {
  return change(object, [&](RecordEdit& edit) { edit.setDouble(layout, code, value, absent); });
}

Acad::ErrorStatus setAngle(AcDbObject& object, const SubclassLayout& layout, int code,
                           double radians, std::optional<double> absentDegrees) {
  return change(object,
                [&](RecordEdit& edit) { edit.setAngle(layout, code, radians, absentDegrees); });
}

Acad::ErrorStatus setInteger(AcDbObject& object, const SubclassLayout& layout, int code,
                             std::int64_t value, std::optional<std::int64_t> absent) {
  return change(object, [&](RecordEdit& edit) { edit.setInteger(layout, code, value, absent); });
}

Acad::ErrorStatus setFlag(AcDbObject& object, const SubclassLayout& layout, int code,
                          std::int64_t bit, bool on) {
  return change(object, [&](RecordEdit& edit) {
    const std::int64_t flags = edit.tags().integer(code, layout.in(edit.tags()), 0);
    edit.setInteger(layout, code, on ? flags | bit : flags & ~bit, 0);
  });
}

Acad::ErrorStatus setPoint(AcDbObject& object, const SubclassLayout& layout, int code,
                           const AcGePoint3d& point, std::optional<AcGePoint3d> absent) {
  return change(object, [&](RecordEdit& edit) { edit.setPoint(layout, code, point, absent); });
}

Acad::ErrorStatus setNormal(AcDbObject& object, const SubclassLayout& layout,
                            const AcGeVector3d& normal) {
  if (!(normal.length() > AcGeContext::gTol.equalVector())) {
    const Acad::ErrorStatus status = checkWritable(object);
    return status == Acad::eOk ? Acad::eInvalidNormal : status;
  }
  return change(object, [&](RecordEdit& edit) {
    edit.setVector(layout, code::kNormal, normal.normal(), AcGeVector3d::kZAxis);
  });
}

Acad::ErrorStatus setText(AcDbObject& object, const SubclassLayout& layout, int code,
                          const ACHAR* text, std::optional<std::wstring_view> absent) {
  if (!text) {
    return Acad::eInvalidInput;
  }
  return change(object, [&](RecordEdit& edit) { edit.setText(layout, code, text, absent); });
}

}  // namespace quoin::db
