// The third target: any text as a saved inventory, and compared.
#pragma once

#include <string>

namespace usbinfo_test {

/// `text` is one saved inventory, or two with a zero byte between them. Throws BrokenInvariant unless each is
/// refused in so many words or differs from itself in nothing and from an empty one in all it has; and, of
/// two, the difference read the other way round is the mirrored one, and both its forms can be read.
void CheckDiff(const std::string& text);

}  // namespace usbinfo_test
