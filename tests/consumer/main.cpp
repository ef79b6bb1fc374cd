// Starts the host, loads the module and then the client module, and runs the client's command.
#include <cstdio>
#include <exception>

#include "embedded/product/HostApplication.h"

int main() {
  try {
    quoin::HostApplication host;
    host.loadModule(QUOIN_MODULE);
    host.loadModule(CLIENT_MODULE);
    const AcEdCommand* const command = host.runtime().commands().lookupCmd(L"TEECOUNT");
    if (!command) {
      std::puts("the client module registered no command");
      return 1;
    }
    command->functionAddr()();
    return 0;
  } catch (const std::exception& error) {
    std::printf("%s\n", error.what());
    return 1;
  }
}
