// A device list as the model takes it: its records with every value already worked out, and the lines that no
// parser takes. Reading a list is proven elsewhere, so the records come from the real cutter; no host is
// needed for that.
#pragma once

#include <string>
#include <vector>

namespace usbinfo_test {

struct ModelRecord {
  bool isHub;
  bool isRoot;  // its level text is "00"
  unsigned short level;
  std::string identifier;
  std::string parent;
  std::string port;  // the identifier of the port that it hangs on
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
  unsigned short ports;
  unsigned long megabits;
};

struct ModelList {
  std::vector<std::string> unmatchedTypes;
  std::vector<ModelRecord> records;
};

ModelList ReadModelList(const std::string& text);

}  // namespace usbinfo_test
