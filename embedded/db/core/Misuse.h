// Counts what clients do wrong with objects, for hostx::misuse.
#pragma once

#include <string>

#include "dbmain.h"

namespace quoin::db {

void noteLeftOpen(const std::wstring& object, bool forWrite);
void noteUsedAfterClose(const std::wstring& object);
void noteWrittenWithoutWrite(const std::wstring& object);
void noteDeletedInDatabase(const std::wstring& object);

/// "LINE 2F"; the class name where the kind is not known any more.
std::wstring describe(const AcDbObject& object);

/// Takes over a closed view and deletes the one that has been here longest, once there are
/// kQuarantined of them.
void quarantine(AcDbObject* closed) noexcept;
inline constexpr std::size_t kQuarantined = 1024;

}  // namespace quoin::db
