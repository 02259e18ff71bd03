// An error in a command line.
#pragma once

#include "cli/text/UserError.h"

namespace cli {

class UsageError : public UserError {
 public:
  using UserError::UserError;
};

}  // namespace cli
