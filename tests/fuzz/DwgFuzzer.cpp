// The libFuzzer target for the container of DWG drawings (-DQUOIN_FUZZ=ON with clang):
//   bin/fuzz_dwg <a folder for findings> tests/fuzz/corpus/dwg
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/DwgProbe.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quoin::test::probeDwg(std::string(reinterpret_cast<const char*>(data), size));
  return 0;
}
