// The "C" line of a device block: the power a configuration draws. Parsed and kept with every record.
#pragma once

#include <string>

#include "usbfs/LineParser.h"

class configuration : public LineParser {
 public:
  /// Sets the field; empty when its key or unit is missing.
  void Initialize(std::string line);

  /// Maximum draw in mA without the unit, blanks kept; empty without a unit.
  std::string getPower() const { return power; }

 private:
  std::string power;
};
