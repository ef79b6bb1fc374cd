#include "host/AcadDbTool.h"

#include <utility>

#include "dbmain.h"
#include "embedded/product/SaveOutcomes.h"
#include "hostextra.h"

namespace {

/// The last outcomes; older ones are forgotten, so that a host that nobody asks does not grow.
constexpr std::size_t kMostOutcomes = 1000;

std::vector<quoin::product::SaveOutcome>& outcomes() {
  static std::vector<quoin::product::SaveOutcome> kept;
  return kept;
}

Acad::ErrorStatus save(AcDbDatabase* pDb, const wchar_t* path, bool keepBackup, bool& isInPlace) {
  if (!pDb) {
    return Acad::eNoDatabase;
  }
  if (!path || *path == 0) {
    return Acad::eInvalidInput;
  }
  const Acad::ErrorStatus status = pDb->saveAs(path, keepBackup);
  isInPlace = hostx::isSaveInPlace(pDb);
  return status;
}

}  // namespace

Acad::ErrorStatus CAcadDbTool::SaveDb(AcDbDatabase* pDb, const wchar_t* path, bool keepBackup) {
  bool isInPlace = false;
  const Acad::ErrorStatus status = save(pDb, path, keepBackup, isInPlace);
  if (outcomes().size() == kMostOutcomes) {
    outcomes().erase(outcomes().begin());
  }
  outcomes().push_back({path ? path : L"", status,
                        status == Acad::eOk ? std::wstring() : hostx::lastFileError(pDb), isInPlace,
                        hostx::lastSave(pDb)});
  return status;
}

namespace quoin::product {

std::vector<SaveOutcome> takeSaveOutcomes() {
  return std::exchange(outcomes(), {});
}

}  // namespace quoin::product
