// Why a document is not taken into the store. It is recorded there, and the next one is read.
#pragma once

#include <stdexcept>

namespace store {

class Refusal : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace store
