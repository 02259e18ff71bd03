#include "cli/collect/Warning.h"

#include <iostream>

#include "cli/text/Text.h"

namespace cli {

void Warn(const std::string& warning) {
  std::cerr << "usbinfo: " << EscapeForTerminal(warning) << "\n";
}

}  // namespace cli
