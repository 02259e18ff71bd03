// An error that ends the command with exit status 2: one line that says what, where and what to do about it.
#pragma once

#include <stdexcept>

namespace cli {

class UserError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace cli
