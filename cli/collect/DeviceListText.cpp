#include "cli/collect/DeviceListText.h"

#include <algorithm>

namespace cli {

bool IsBlank(std::string_view text) {
  return text.find_first_not_of(" \t\r\n\v\f") == std::string_view::npos;
}

bool LooksLikeDeviceList(std::string_view text) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    const std::size_t first = std::min(line.find_first_not_of(" \t"), line.size());
    if (line.substr(first, 2) == "T:") return true;
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return false;
}

}  // namespace cli
