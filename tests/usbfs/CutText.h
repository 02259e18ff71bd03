// What the tests of the cutter share: a text's records and the types of its unmatched lines, and lines of a
// device list as the kernel writes them.
#pragma once

#include <string>
#include <vector>

#include "usbfs/DeviceListCutter.h"

namespace usbinfo_test {

struct CutText {
  explicit CutText(const std::string& text) {
    auto queue = CutDeviceList(text, [this](const std::string& type) { unmatched.push_back(type); });
    for (; !queue.empty(); queue.pop()) records.push_back(queue.front());
  }

  std::vector<UsbDevice> records;
  std::vector<std::string> unmatched;
};

/// The "T" line, without its newline, of the device with this number (two characters).
inline std::string TopologyLine(const std::string& number) {
  return "T:  Bus=01 Lev=01 Prnt=01 Port=00 Cnt=01 Dev#= " + number + " Spd=12   MxCh= 0";
}

inline std::string InterfaceLine(const std::string& classField) {
  return "I:* If#= 0 Alt= 0 #EPs= 1 " + classField + " Sub=00 Prot=00 Driver=hub";
}

const char* const kEndpointLine = "E:  Ad=81(I) Atr=03(Int.) MxPS=   4 Ivl=256ms";

/// Lines, each ended by a newline.
inline std::string Lines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

}  // namespace usbinfo_test
