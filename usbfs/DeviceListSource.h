// Gets the text of the kernel's device list: which file, which command, which log line, in which order.
// It borrows a provider for its logging and keeps nothing between calls.
#pragma once

#include <string>

#include "provider/TUsb.h"

class DeviceListSource {
 public:
  /// `log` must outlive the source.
  explicit DeviceListSource(const TUsb& log) : fLog(log) {}

  /// The text: of the usbfs list, else of the debugfs list, else of usbfs mounted for the moment, else of the
  /// "usb-devices" command. Empty when there is none, which the log reports. A host exception is caught while
  /// files are tested and read, and passed through from the command.
  std::string Read() const;

 private:
  std::string ReadFiles() const;
  void CaptureListing(std::string& text) const;
  std::string RunCommand() const;

  const TUsb& fLog;
};
