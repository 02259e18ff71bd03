// The third target: any text as a saved inventory, and compared.
#pragma once

#include <string>

namespace usbinfo_test {

/// `text` is one saved inventory, or two with a zero byte between them. Throws BrokenInvariant unless each is
/// refused with a message, or does not differ from itself and differs from an empty one in all its items;
/// and, of two, exchanging them mirrors the difference, and both its forms can be read.
void CheckDiff(const std::string& text);

}  // namespace usbinfo_test
