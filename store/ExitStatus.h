// The command's exit statuses, which scripts rely on.
#pragma once

namespace store {

enum ExitStatus {
  kDone = 0,            // something was printed; all documents were loaded
  kNothingMatched = 1,  // no host or device matched
  kRefused = 1,         // some documents were refused
  kFailure = 2,         // wrong usage, no store, unreadable input, a database that fails, failed output
};

}  // namespace store
