#include "cli/collect/ListMask.h"

#include <algorithm>
#include <string_view>

#include "cli/collect/RootHubStrings.h"
#include "cli/text/Text.h"

namespace cli {

namespace {

/// The serial number on a line and its position; empty where there is none.
struct SerialField {
  std::size_t begin = 0;
  std::string_view value;
};

SerialField FindSerial(std::string_view line) {
  const std::string_view key = "serialnumber=";
  const std::size_t at = ToLower(line).find(key);
  if (at == std::string::npos) return {};
  const std::size_t begin = at + key.size();
  const std::string_view value = line.substr(begin);
  return {begin, value.substr(0, value.find_last_not_of(" \t\r") + 1)};
}

}  // namespace

std::string MaskSerials(const std::string& text, const SerialMask& mask) {
  RootHubStrings rootHubs;
  std::string masked;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    const std::string_view line = std::string_view(text).substr(start, end - start);
    const bool isRootHubs = rootHubs.Take(line);
    const SerialField serial = FindSerial(line);
    if (isRootHubs || serial.value.empty()) {
      masked += line;
    } else {
      masked.append(line.substr(0, serial.begin)).append(mask.Mask(serial.value));
    }
    if (end < text.size()) masked += '\n';
    start = end + 1;
  }
  return masked;
}

}  // namespace cli
