// Replaces the host's knowledge of the hosting system in this test program, so that a test can set the
// system's names and see which namespaces were passed.
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
  /// The namespaces passed in, in order: for the creation class name and for the name.
  std::vector<const NKESTA20::ICIMNamespace*> askedForClass;
  std::vector<const NKESTA20::ICIMNamespace*> askedForName;
};

SystemNames& CurrentSystemNames();

}  // namespace usbinfo_test
