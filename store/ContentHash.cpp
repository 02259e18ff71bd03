#include "store/ContentHash.h"

#include <array>
#include <cstdint>

namespace store {

namespace {

constexpr std::size_t kBytes = 24;

}  // namespace

ContentHash::ContentHash() {
  // Chooses the fastest code for this processor.
  static const int initialized = ::sodium_init();
  static_cast<void>(initialized);
  ::crypto_generichash_init(&fState, nullptr, 0, kBytes);
}

void ContentHash::Add(std::string_view part) {
  const std::uint64_t size = part.size();
  ::crypto_generichash_update(&fState, reinterpret_cast<const unsigned char*>(&size), sizeof size);
  ::crypto_generichash_update(&fState, reinterpret_cast<const unsigned char*>(part.data()), part.size());
}

std::string ContentHash::Text() {
  std::array<unsigned char, kBytes> hash{};
  ::crypto_generichash_final(&fState, hash.data(), hash.size());
  std::array<char, sodium_base64_ENCODED_LEN(kBytes, sodium_base64_VARIANT_URLSAFE_NO_PADDING)> text{};
  ::sodium_bin2base64(text.data(), text.size(), hash.data(), hash.size(),
                      sodium_base64_VARIANT_URLSAFE_NO_PADDING);
  return text.data();
}

}  // namespace store
