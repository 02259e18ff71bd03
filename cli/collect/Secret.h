// Secret bytes: locked in memory where the system allows it, and wiped when the last copy is destroyed.
#pragma once

#include <cstddef>
#include <memory>

namespace cli {

class Secret {
 public:
  /// `size` bytes of no particular value. Throws std::bad_alloc.
  explicit Secret(std::size_t size);

  unsigned char* Data() { return fBytes.get(); }
  const unsigned char* Data() const { return fBytes.get(); }
  std::size_t Size() const { return fSize; }

 private:
  std::shared_ptr<unsigned char> fBytes;
  std::size_t fSize;
};

}  // namespace cli
