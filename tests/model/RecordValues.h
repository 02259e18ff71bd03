// A device list with the values that the inventory needs already worked out: texts joined to identifiers,
// numbers read from the fields of the second reading.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "tests/model/ListModel.h"

namespace usbinfo_test {

/// One device of the list.
struct RecordValues {
  /// The most ports that are made for a hub, whatever count it claims.
  static constexpr unsigned int kMaxPorts = 255;

  bool isHub;
  bool isRoot;  // its level text is "00"
  unsigned short level;
  std::string identifier;
  std::string parent;
  std::string port;  // the identifier of the port that it is plugged into
  std::string product;
  std::string manufacturer;
  std::string serial;
  unsigned short hostKind;
  unsigned short version;
  unsigned char classCode;
  unsigned char subclassCode;
  unsigned char protocolCode;
  unsigned char configurations;
  unsigned short vendor;
  unsigned short productNumber;
  unsigned short ports;  // as claimed
  unsigned long megabits;

  /// How many ports are made if it is a hub.
  unsigned int PortsMade() const { return std::min<unsigned int>(ports, kMaxPorts); }
};

struct ListValues {
  /// The types of the lines that no parser takes, in order.
  std::vector<std::string> unmatchedTypes;
  std::vector<RecordValues> records;
};

/// Nothing for an empty text, which does not count as a list.
ListValues ReadListValues(const std::string& text);

}  // namespace usbinfo_test
