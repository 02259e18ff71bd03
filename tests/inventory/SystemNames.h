// Takes the place of the host's knowledge of the hosting system in this test program, so that a test may give
// the system any name, or none, and see whose namespace was asked about.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace NKESTA20 {
class ICIMNamespace;
}

namespace usbinfo_test {

struct SystemNames {
  /// What the host answers; its usual answer when not set.
  std::optional<std::string> creationClassName;
  std::optional<std::string> name;
  /// The namespaces handed in, in order: for the creation class name and for the name.
  std::vector<const NKESTA20::ICIMNamespace*> askedForClass;
  std::vector<const NKESTA20::ICIMNamespace*> askedForName;
};

SystemNames& CurrentSystemNames();

}  // namespace usbinfo_test
