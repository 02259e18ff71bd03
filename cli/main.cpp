// The usbinfo command.
#include "cli/collect/Hardening.h"
#include "cli/command/CommandLine.h"
#include "cli/text/Program.h"

int main(int argc, char** argv) {
  return cli::RunProgram("usbinfo", [&] {
    cli::ProtectSearchPath();
    return cli::CommandLine().Run({argv + (argc > 0 ? 1 : 0), argv + argc});
  });
}
