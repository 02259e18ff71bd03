// The command's exit statuses, which scripts rely on.
#pragma once

namespace cli {

enum ExitStatus {
  kPrinted = 0,       // something was printed
  kNothingFound = 1,  // no USB device, or nothing matched
  kDifferent = 1,     // the inventories compared differ
  kFailure = 2,       // wrong usage, unreadable input, no plug-in, failed output
};

}  // namespace cli
