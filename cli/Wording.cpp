// The words for people; see the header.
#include "cli/Wording.h"

#include <fmt/format.h>

namespace cli {

std::string FormatSpeed(std::uint64_t bitsPerSecond) {
  constexpr std::uint64_t kMega = 1000000;
  constexpr std::uint64_t kGiga = 1000 * kMega;
  if (bitsPerSecond == 0) return std::string();
  if (bitsPerSecond % kGiga == 0) return fmt::format("{} Gbit/s", bitsPerSecond / kGiga);
  return fmt::format("{} Mbit/s", bitsPerSecond / kMega);
}

std::string FormatSpeedClass(std::uint64_t speedClass) {
  switch (speedClass) {
    case 1:
      return "1.5 Mbit/s";
    case 2:
      return "12 Mbit/s";
    case 3:
      return "480 Mbit/s";
    case 4:
      return "5+ Gbit/s";
    default:
      return std::string();
  }
}

std::string Count(std::uint64_t number, const std::string& noun) {
  return fmt::format("{} {}{}", number, noun, number == 1 ? "" : "s");
}

std::string Behind(const std::string& identifier, const std::string& marker) {
  const std::size_t found = identifier.rfind(marker);
  const std::size_t at = found == std::string::npos ? 0 : found + marker.size();
  const std::size_t first = identifier.find_first_not_of(' ', at);
  if (first == std::string::npos) return std::string();
  return identifier.substr(first, identifier.find_last_not_of(' ') - first + 1);
}

std::string BusOf(const std::string& identifier) {
  return Behind(identifier.substr(0, identifier.find(" Device ")), "Bus ");
}

std::string NameOf(const InstanceView& item) {
  const std::string name = item.Text("Description");
  return name.empty() || name == "Not Available" ? "(no name)" : name;
}

bool IsFree(const InstanceView& port) {
  return port.Text("StatusDescriptions") == "{No device connected}";
}

}  // namespace cli
