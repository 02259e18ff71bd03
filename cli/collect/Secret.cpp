#include "cli/collect/Secret.h"

#include <sodium.h>

#include <new>

namespace cli {

Secret::Secret(std::size_t size) : fSize(size) {
  if (::sodium_init() < 0) throw std::bad_alloc();
  auto* const bytes = static_cast<unsigned char*>(::sodium_malloc(size));
  if (bytes == nullptr) throw std::bad_alloc();
  fBytes.reset(bytes, ::sodium_free);
}

}  // namespace cli
