#include "embedded/db/core/Opening.h"

#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/db/core/Misuse.h"
#include "embedded/db/core/RecordKinds.h"

namespace quoin::db {
namespace {

constexpr std::uint16_t kMostReaders = 256;

Acad::ErrorStatus openAgain(ObjectImpl& impl, AcDb::OpenMode mode) {
  if (impl.state == OpenState::Write) {
    return Acad::eWasOpenForWrite;
  }
  if (mode == AcDb::kForWrite) {
    return Acad::eWasOpenForRead;
  }
  if (impl.readers >= kMostReaders) {
    return Acad::eAtMaxReaders;
  }
  ++impl.readers;
  return Acad::eOk;
}

}  // namespace

Acad::ErrorStatus openStub(AcDbObject*& object, AcDbStub* stub, AcDb::OpenMode mode,
                           bool openErased) noexcept {
  object = nullptr;
  if (!stub) {
    return Acad::eNullObjectId;
  }
  if (!stub->store || (mode != AcDb::kForRead && mode != AcDb::kForWrite)) {
    return Acad::eInvalidInput;
  }
  try {
    DatabaseImpl& database = DatabaseImpl::of(*stub);
    if (!openErased && database.isErased(*stub)) {
      return Acad::eWasErased;
    }
    if (stub->object) {
      const Acad::ErrorStatus status = openAgain(Access::of(*stub->object), mode);
      object = status == Acad::eOk ? stub->object : nullptr;
      return status;
    }
    // What the drawing says of the record beyond its tags would be lost with an edit.
    const dxf::DrawingSource* const source = database.store.source();
    if (mode == AcDb::kForWrite && source != nullptr && !stub->isNew && !stub->changed &&
        !source->canEdit(stub->handle)) {
      return Acad::eDwgObjectImproperlyRead;
    }
    std::unique_ptr<AcDbObject> view = makeView(*stub);
    ObjectImpl& impl = Access::of(*view);
    impl.stub = stub;
    impl.database = &database;
    impl.state = mode == AcDb::kForWrite ? OpenState::Write : OpenState::Read;
    impl.readers = mode == AcDb::kForWrite ? 0 : 1;
    stub->object = view.get();
    ++database.openCount;
    object = view.release();
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

void closeView(AcDbObject& view, bool intoQuarantine) noexcept {
  ObjectImpl& impl = Access::of(view);
  if (impl.stub) {
    impl.closedHandle = impl.stub->handle;
    impl.stub->object = nullptr;
    --impl.database->openCount;
  }
  impl.stub = nullptr;
  impl.database = nullptr;
  impl.state = OpenState::Closed;
  impl.readers = 0;
  impl.forgetDecoded();
  if (impl.hasOwn()) {
    impl.ownToChange().texts.clear();
  }
  if (intoQuarantine) {
    quarantine(&view);
  }
}

void releaseLeftOpen(AcDbObject& view) noexcept {
  try {
    noteLeftOpen(describe(view), Access::of(view).state == OpenState::Write);
  } catch (const std::bad_alloc&) {
    // The count is lost, the view is not.
  }
  closeView(view, true);
}

}  // namespace quoin::db
