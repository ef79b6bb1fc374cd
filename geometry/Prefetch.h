// Bringing a record into the cache before it is needed. Not exported.
#pragma once

/// Reads of records that lie scattered in memory would each wait for it; prefetched, many are on
/// the way at once.
template <class Record>
inline void Prefetch([[maybe_unused]] const Record& record) {
#if defined(__GNUC__)
  // First and last byte: a record of up to two cache lines.
  const auto* const bytes = reinterpret_cast<const unsigned char*>(&record);
  __builtin_prefetch(bytes);
  __builtin_prefetch(bytes + sizeof(Record) - 1);
#endif
}
