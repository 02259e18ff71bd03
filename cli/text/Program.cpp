#include "cli/text/Program.h"

#include <csignal>
#include <exception>
#include <new>
#include <string>

#include "cli/text/ExitStatus.h"
#include "cli/text/Message.h"
#include "cli/text/Output.h"
#include "cli/text/Text.h"
#include "system/SignalGuard.h"
#include "system/StandardStreams.h"

namespace cli {

namespace {

/// Process-wide settings, made before anything is read or written.
void PrepareProcess() {
  sys::OccupyStandardStreams();
  UseCharacterSetOfEnvironment();
  // A closed pipe or a limit on the size of files shows in the write that fails, so that nothing half-written
  // is left behind.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
}

}  // namespace

std::string DescribeException() {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    return "out of memory";
  } catch (const std::exception& error) {
    return error.what();
  } catch (...) {
    return "unexpected failure";
  }
}

int RunProgram(const std::string& program, const std::function<int()>& run) {
  PrepareProcess();
  NameProgram(program);
  try {
    return run();
  } catch (const ClosedPipe&) {
    sys::EndBySignal(SIGPIPE);
  } catch (...) {
    PrintMessage(DescribeException());
  }
  return kFailure;
}

}  // namespace cli
