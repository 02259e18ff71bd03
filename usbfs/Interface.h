// The "I" line of a device block: one interface descriptor, kept as text. The class is cut at "(", unlike the
// device's own class. Owned by a device record; the test for hubs uses a temporary one.
#pragma once

#include <string>

#include "usbfs/LineParser.h"

class Interface : public LineParser {
 public:
  /// Sets all five fields; one whose key or terminator is missing becomes empty.
  void Initialize(std::string line);

  /// Name of the bound driver, "(none)" included.
  std::string getDriver() const { return driver; }
  /// Class code without the class name: "09" for a hub.
  std::string getClass() const { return interfaceClass; }
  /// Subclass code and the blank after it.
  std::string getSubClass() const { return interfaceSubClass; }
  /// Interface number, blanks on both sides kept.
  std::string getInterface() const { return interfaceNumber; }
  /// Protocol code and the blank after it.
  std::string getProtocol() const { return interfaceProtocol; }

 private:
  std::string driver;
  std::string interfaceClass;
  std::string interfaceSubClass;
  std::string interfaceNumber;
  std::string interfaceProtocol;
};
