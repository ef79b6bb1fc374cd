// Having a record at hand before it is needed. Not exported.
#pragma once

/// One after another, reads of records that lie about would each wait for memory; many in a row,
/// with nothing yet that depends on them, are on the way at once.
template <class Record>
void ReadAhead(const Record& record) {
  // Volatile: the values are not used yet. The two cover a record of up to two cache lines.
  const auto* const bytes = reinterpret_cast<const volatile unsigned char*>(&record);
  static_cast<void>(bytes[0]);
  static_cast<void>(bytes[sizeof(Record) - 1]);
}

/// For what is needed later still: the processor may bring it or not, and goes on meanwhile. Only
/// to be called beside other work: a loop or function that does nothing else has no effect in the
/// compiler's eyes and is left out.
template <class Record>
void AskFor([[maybe_unused]] const Record& record) {
#if defined(__GNUC__)
  const auto* const bytes = reinterpret_cast<const unsigned char*>(&record);
  __builtin_prefetch(bytes);
  __builtin_prefetch(bytes + sizeof(Record) - 1);
#endif
}
