// The "D" line of a device block: the device descriptor. Values stay text, blanks kept; the class code
// keeps the class name in parentheses. Owned by a device record, read by the inventory.
#pragma once

#include <string>

#include "usbfs/LineParser.h"

class descriptor : public LineParser {
 public:
  /// Sets all five fields; one whose key or terminator is missing becomes empty.
  void Initialize(std::string line);

  /// USB version without its points, blanks kept: " 200 ".
  std::string getVersion() const { return version; }
  /// Protocol code and the blank after it.
  std::string getProtocol() const { return protocol; }
  /// Class code with the class name: "09(hub  ) ".
  std::string getClasscode() const { return classCode; }
  /// Subclass code and the blank after it.
  std::string getSubClasscode() const { return subClassCode; }
  /// Number of configurations, with the blanks before it.
  std::string getConfigs() const { return configs; }

  /// `text` without its points.
  std::string removeDecimalPoint(const char* text) const;

 private:
  std::string version;
  std::string protocol;
  std::string classCode;
  std::string subClassCode;
  std::string configs;
};
