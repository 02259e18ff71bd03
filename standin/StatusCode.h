// The stand-in's status codes: the DMTF numbers that it throws, and the throwing.
#pragma once

namespace standin {

enum class StatusCode : unsigned int {
  kFailed = 1,
  kAccessDenied = 2,
  kInvalidParameter = 4,
  kInvalidClass = 5,
  kNotFound = 6,
  kNoSuchProperty = 12,
  kTypeMismatch = 13,
};

/// Throws TQSVException with `code`.
[[noreturn]] void Throw(StatusCode code);

}  // namespace standin
