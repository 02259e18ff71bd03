// Names of hosts.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

namespace store {

/// The longest name that the DNS has, in bytes.
inline constexpr std::size_t kLongestHostName = 253;

/// Whether `name` can be that of a host: it is neither empty nor too long, and has no control characters.
inline bool IsHostName(const std::string& name) {
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
  return !name.empty() && name.size() <= kLongestHostName &&
         std::none_of(name.begin(), name.end(), isControl);
}

}  // namespace store
