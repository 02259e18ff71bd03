// A status code of the host, as its exceptions carry it. Declared here, defined by the host; the data is an
// entry of the host's own table of codes, so copies share it.
#pragma once

#include <string>

#include "host/HostApi.h"

namespace NKESTA20 {

class USBINFO_HOST_API TQSVStatusCode {
 public:
  /// The status with the number `code`, as the DMTF counts them from 1; an unknown one means failure.
  explicit TQSVStatusCode(unsigned int code);

  /// The code's text, such as "CIM_ERR_NOT_FOUND".
  std::string TranslateStatusCode() const;

 private:
  const void* fData;
};

}  // namespace NKESTA20
