#include "cli/command/Message.h"

#include "cli/text/Message.h"

namespace cli {

void PrintMessage(const std::string& message) {
  PrintMessageOf("usbinfo", message);
}

}  // namespace cli
