#include "usbfs/topology.h"

void topology::Initialize(std::string line) {
  bus = getString(line, "bus=", "lev=");
  level = getString(line, "lev=", " prnt=");
  parent = getString(line, "prnt=", " port=");
  port = getString(line, "port=", " cnt=");
  count = getString(line, "cnt=", "dev#=");
  deviceNumber = getString(line, "dev#=", " spd=");
  speed = getString(line, "spd=", "mxch=");
  maxChildren = getString(line, "mxch=", "\n");
}
