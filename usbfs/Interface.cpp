#include "usbfs/Interface.h"

void Interface::Initialize(std::string line) {
  driver = getString(line, "driver=", "\n");
  interfaceClass = getString(line, "cls=", "(");
  interfaceSubClass = getString(line, "sub=", "prot");
  interfaceNumber = getString(line, "if#=", "alt");
  interfaceProtocol = getString(line, "prot=", "driver");
}
