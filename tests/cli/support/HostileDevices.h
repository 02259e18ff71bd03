// Device lists whose devices try to break out of the text that they are printed in, the form that each string
// must have in formats for programs, and checks for strings that got through.
#pragma once

#include <string>
#include <vector>

namespace usbinfo_test {

struct HostileString {
  const char* name;
  /// As the device sends it.
  std::string bytes;
  /// The same with U+FFFD for bytes that are not UTF-8.
  std::string asUtf8;
  /// The same with U+FFFD for what XML has no character for as well.
  std::string asXml;
};

const std::vector<HostileString>& HostileStrings();

/// `text` with U+FFFD for what is not UTF-8, found by the command's own decoder.
std::string AsUtf8(const std::string& text);

/// A root hub with a port for each string, and on each port a device that has it for every string it can
/// send.
std::string HostileDeviceList();

/// The same machine with harmless devices.
std::string HarmlessDeviceList();

/// A root hub with one port and this one device on it.
std::string DeviceListWith(const std::string& deviceString);

/// True when a terminal would act on something in `text`, beyond the ends of its lines.
bool ActsOnTerminal(const std::string& text);

/// True when something in `text` changes the direction in which people read it.
bool HasDirectionMark(const std::string& text);

/// True when something in `text` that hostile strings hold is not seen by people, or is a long run of marks.
bool HidesCharacters(const std::string& text);

}  // namespace usbinfo_test
