#include "usbfs/configuration.h"

void configuration::Initialize(std::string line) {
  power = getString(line, "mxpwr=", "ma");
}
