// The libFuzzer target for drawing files (-DQUOIN_FUZZ=ON with clang):
//   bin/fuzz_dxf <a folder for findings> tests/fuzz/corpus/dxf
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/DrawingProbe.h"
#include "fuzz/DxfProbe.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  if (quoin::test::probeDxf(bytes) == quoin::test::ProbeResult::Loaded) {
    quoin::test::probeDrawing(bytes);
  }
  return 0;
}
