// Object paths by a second reading, for the readers of the formats that write them.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "cli/model/Item.h"

namespace usbinfo_test {

/// The path of a controller, hub, port or device, taken apart.
struct ReadPath {
  std::string className;
  /// Names and values, in the order of the path.
  std::vector<std::pair<std::string, std::string>> keys;
};

/// Throws BrokenInvariant where `text` is not `Class.Key="value",Key="value"`.
ReadPath ParsePath(const std::string& text);

/// The path of `item` as text, made from its keys; those of a link are paths themselves.
std::string PathTextOf(const cli::Item& item);

}  // namespace usbinfo_test
