// The usbinfo-store command.
#include "cli/text/Program.h"
#include "store/Clock.h"
#include "store/CommandLine.h"
#include "store/Message.h"

int main(int argc, char** argv) {
  return cli::RunProgram(store::kProgram, [&] {
    const store::SystemClock clock;
    return store::CommandLine(clock).Run({argv + (argc > 0 ? 1 : 0), argv + argc});
  });
}
