// The exit statuses of the commands, which scripts rely on.
#pragma once

namespace cli {

enum ExitStatus {
  kPrinted = 0,       // something was printed; all documents were loaded; all is allowed
  kNothingFound = 1,  // no USB device, or nothing matched
  kDifferent = 1,     // the inventories compared differ
  kNotAllowed = 1,    // the policy does not allow a device
  kRefused = 1,       // some documents were refused
  kFailure = 2,  // wrong usage, unreadable input, no plug-in or store, a database that fails, failed output
};

}  // namespace cli
