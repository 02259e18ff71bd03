// The one exception type by which the host reports failure. Its members are inline, so every module that
// throws or catches it carries its own copy; default visibility makes them one type.
#pragma once

#include <exception>
#include <string>

#include "host/HostApi.h"
#include "host/TQSVStatusCode.h"

namespace NKESTA20 {

class USBINFO_HOST_API TQSVException : public std::exception {
 public:
  explicit TQSVException(const TQSVStatusCode& status) : fStatus(status) {}
  TQSVException(const TQSVException&) = default;
  TQSVException& operator=(const TQSVException&) = default;
  ~TQSVException() noexcept override = default;

  /// The status code's text; empty when memory for it is lacking. Valid as long as the exception.
  const char* what() const noexcept override {
    try {
      if (fText.empty()) fText = fStatus.TranslateStatusCode();
    } catch (...) {
      return "";
    }
    return fText.c_str();
  }

  const TQSVStatusCode& GetStatusCode() const { return fStatus; }

 private:
  TQSVStatusCode fStatus;
  mutable std::string fText;
};

}  // namespace NKESTA20
