// The usbinfo-store command: runs the command line, and turns errors into one line on standard error and an
// exit status.
#include <csignal>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "cli/text/Output.h"
#include "cli/text/Text.h"
#include "store/Clock.h"
#include "store/CommandLine.h"
#include "store/ExitStatus.h"
#include "store/Message.h"
#include "system/SignalGuard.h"
#include "system/StandardStreams.h"

namespace {

int Fail(const std::string& message) {
  store::PrintMessage(message);
  return store::kFailure;
}

/// Process-wide settings, made before anything is read or written.
void PrepareProcess() {
  sys::OccupyStandardStreams();
  cli::UseCharacterSetOfEnvironment();
  // A closed pipe or a limit on the size of files shows in the write that fails.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
}

}  // namespace

int main(int argc, char** argv) {
  PrepareProcess();
  try {
    const store::SystemClock clock;
    return store::CommandLine(clock).Run({argv + (argc > 0 ? 1 : 0), argv + argc});
  } catch (const cli::ClosedPipe&) {
    sys::EndBySignal(SIGPIPE);
  } catch (const std::bad_alloc&) {
    return Fail("out of memory");
  } catch (const std::exception& error) {
    return Fail(error.what());
  } catch (...) {
    return Fail("unexpected failure");
  }
}
