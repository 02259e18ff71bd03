// The kernel's short names of USB classes, as its device list prints them.
#pragma once

#include <cstdint>
#include <string_view>

namespace kernel {

/// "hub", "stor." and so on, at most five characters; "unk." for a class that the kernel has no name for.
std::string_view ClassName(std::uint8_t classCode);

}  // namespace kernel
