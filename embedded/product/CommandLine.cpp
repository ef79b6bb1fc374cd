#include "embedded/product/CommandLine.h"

namespace quoin::product {

namespace {
CommandLineRunner s_runner = nullptr;
}

void setCommandLineRunner(CommandLineRunner runner) {
  s_runner = runner;
}

CommandLineRunner commandLineRunner() {
  return s_runner;
}

}  // namespace quoin::product
