// The host's object path: a class and its key values. Declared here, defined by the host. Instances return
// their own path; the association providers turn paths into reference values.
#pragma once

#include "host/HostApi.h"

namespace NKESTA20 {

class USBINFO_HOST_API TCIMReference {
 public:
  TCIMReference();
  TCIMReference(const TCIMReference& other);
  TCIMReference& operator=(const TCIMReference& other);
  ~TCIMReference();

  /// True when both name the same object: equal class and equal key values.
  bool operator==(const TCIMReference& other) const;

 private:
  friend class HostData;
  const void* fData = nullptr;
};

}  // namespace NKESTA20
