#include "embedded/db/core/Misuse.h"

#include <array>
#include <mutex>

#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/os/Utf8.h"
#include "hostextra.h"

namespace quoin::db {
namespace {

constexpr std::size_t kKeptMessages = 100;

std::mutex& misuseLock() {
  static std::mutex lock;
  return lock;
}

hostx::Misuse& record() {
  static hostx::Misuse misuse;
  return misuse;
}

void note(Adesk::UInt64 hostx::Misuse::*counter, const std::wstring& message) {
  const std::lock_guard guard(misuseLock());
  ++(record().*counter);
  if (record().messages.size() < kKeptMessages) {
    record().messages.push_back(message);
  }
}

/// A ring of closed views. It is never destroyed: pointers into it stay good to the end.
struct Quarantine {
  std::mutex lock;
  std::array<AcDbObject*, kQuarantined> views{};
  std::size_t next = 0;
};

Quarantine& ring() {
  static auto* const quarantine = new Quarantine;
  return *quarantine;
}

}  // namespace

void noteLeftOpen(const std::wstring& object, bool forWrite) {
  note(&hostx::Misuse::leftOpen,
       object + (forWrite ? L" left open for write" : L" left open for read"));
}

void noteUsedAfterClose(const std::wstring& object) {
  note(&hostx::Misuse::usedAfterClose, object + L" used after it was closed");
}

void noteWrittenWithoutWrite(const std::wstring& object) {
  note(&hostx::Misuse::writtenWithoutWrite, object + L" changed without being open for write");
}

void noteDeletedInDatabase(const std::wstring& object) {
  note(&hostx::Misuse::deletedInDatabase, object + L" deleted while a database owns it");
}

std::wstring describe(const AcDbObject& object) {
  const ObjectImpl& impl = Access::of(object);
  std::wstring text;
  std::uint64_t handle = impl.closedHandle;
  if (impl.stub) {
    text = os::fromUtf8(DatabaseImpl::of(*impl.stub).kindOf(*impl.stub));
    handle = impl.stub->handle;
  } else {
    text = object.isA()->name();
  }
  if (handle != 0) {
    ACHAR digits[AcDbHandle::kTextSize];
    AcDbHandle(handle).getIntoAsciiBuffer(digits);
    text += L' ';
    text += digits;
  }
  return text;
}

void quarantine(AcDbObject* closed) noexcept {
  Quarantine& quarantine = ring();
  AcDbObject* released = closed;
  {
    const std::lock_guard guard(quarantine.lock);
    std::swap(released, quarantine.views[quarantine.next]);
    quarantine.next = (quarantine.next + 1) % kQuarantined;
  }
  delete released;
}

}  // namespace quoin::db

namespace hostx {

Misuse misuse() {
  const std::lock_guard guard(quoin::db::misuseLock());
  return quoin::db::record();
}

void resetMisuse() {
  const std::lock_guard guard(quoin::db::misuseLock());
  quoin::db::record() = Misuse();
}

}  // namespace hostx
