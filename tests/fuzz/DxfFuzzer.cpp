// The libFuzzer target for drawing files (-DQUOIN_FUZZ=ON with clang):
//   bin/fuzz_dxf <a folder for findings> tests/fuzz/corpus/dxf
#include <cstddef>
#include <cstdint>

#include "fuzz/DxfProbe.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quoin::test::probeDxf({reinterpret_cast<const char*>(data), size});
  return 0;
}
