// The "T" line of a device block: where the device sits. Values stay text exactly as cut; the terminators are
// asymmetric on purpose, so bus, count and speed keep the blanks after them. Owned by a device record, read
// by the inventory.
#pragma once

#include <string>

#include "usbfs/LineParser.h"

class topology : public LineParser {
 public:
  /// Sets all eight fields; one whose key or terminator is missing becomes empty.
  void Initialize(std::string line);

  /// Bus number and the blank after it: "01 ".
  std::string getBus() const { return bus; }
  /// Level in the tree, "00" for a root hub.
  std::string getLevel() const { return level; }
  /// Device number of the parent.
  std::string getParentDevice() const { return parent; }
  /// Port on the parent, counted from zero.
  std::string getPort() const { return port; }
  /// Count of the device at its level, with the blank after it.
  std::string getDeviceLevelNum() const { return count; }
  /// Device number on its bus, right-aligned: "  1".
  std::string getDeviceBusNumber() const { return deviceNumber; }
  /// Speed in Mbit/s, with the blanks after it.
  std::string getSpeed() const { return speed; }
  /// Number of downstream ports, with the blank before it.
  std::string getConnections() const { return maxChildren; }

 private:
  std::string bus;
  std::string level;
  std::string parent;
  std::string port;
  std::string count;
  std::string deviceNumber;
  std::string speed;
  std::string maxChildren;
};
