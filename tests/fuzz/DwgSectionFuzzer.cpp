// The libFuzzer target for the header variables, classes and object map of DWG drawings
// (-DQUOIN_FUZZ=ON with clang); inputs as DwgSectionProbe.h tells, the first ones in
// tests/fuzz/corpus/dwg_sections.txt:
//   bin/fuzz_dwg_section <a folder for findings>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/DwgSectionProbe.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quoin::test::probeDwgSection({reinterpret_cast<const char*>(data), size});
  return 0;
}
