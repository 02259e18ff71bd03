// A module whose initialization fails with a host exception, as when a host refuses a registration.
#include "host/TQSVException.h"

namespace {

int Fail() {
  constexpr unsigned int kAccessDenied = 2;
  throw NKESTA20::TQSVException(NKESTA20::TQSVStatusCode(kAccessDenied));
}

const int failure = Fail();

}  // namespace
