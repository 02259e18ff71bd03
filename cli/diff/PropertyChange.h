// One property of an item with its values in two inventories.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "cli/model/Item.h"
#include "cli/model/KernelFacts.h"

namespace cli {

/// A property of a class or something that the kernel knows. The first alternative means that there is none.
using ComparedValue = std::variant<std::monostate, std::uint64_t, double, std::string,
                                   std::vector<std::string>, Reference, std::vector<InterfaceFacts>>;

struct PropertyChange {
  /// As the class names the property, or as the member of "kernel" in a saved inventory is called.
  std::string_view name;
  /// Nothing for what the kernel knows.
  std::optional<PropertyId> property;
  /// The strings of a device are those that it sends, where both inventories have them from the kernel.
  ComparedValue before;
  ComparedValue after;
};

}  // namespace cli
