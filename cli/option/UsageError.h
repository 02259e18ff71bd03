// An error in a command line.
#pragma once

#include <initializer_list>
#include <string>

#include "cli/text/UserError.h"

namespace cli {

class UsageError : public UserError {
 public:
  using UserError::UserError;
};

struct GivenOption {
  const char* name;
  /// Whether the command line has it.
  bool isGiven;
};

/// Throws UsageError, "NAME REASON", for the first option that is given.
void RefuseOptions(std::initializer_list<GivenOption> options, const std::string& reason);

}  // namespace cli
