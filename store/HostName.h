// Names of hosts.
#pragma once

#include <cstddef>
#include <string>

namespace store {

/// The longest name that the DNS has, in bytes.
inline constexpr std::size_t kLongestHostName = 253;

/// Whether `name` can be that of a host: it is neither empty nor too long, and is UTF-8 without control
/// characters.
bool IsHostName(const std::string& name);

}  // namespace store
