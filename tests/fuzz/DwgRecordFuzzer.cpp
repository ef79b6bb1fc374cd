// The libFuzzer target for the records of DWG drawings (-DQUOIN_FUZZ=ON with clang); inputs as
// DwgRecordProbe.h tells, the first ones in tests/fuzz/corpus/dwg_records.txt:
//   bin/fuzz_dwg_record <a folder for findings>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/DwgRecordProbe.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quoin::test::probeDwgRecord({reinterpret_cast<const char*>(data), size});
  return 0;
}
