#include "cli/collect/MachineId.h"

#include <fcntl.h>
#include <sodium.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <system_error>

#include "system/FileDescriptor.h"

namespace cli {

namespace {

/// The 32 hexadecimal digits that machine-id(5) describes; nothing for any other text.
std::optional<std::string> ReadMachineId(const std::string& path) {
  constexpr std::size_t kDigits = 32;
  constexpr std::size_t kMostBytes = 4096;
  try {
    std::string text = sys::ReadAll(sys::OpenFile(path, O_RDONLY).Get(), kMostBytes);
    text.erase(std::min(text.find('\n'), text.size()));
    const bool isId = text.size() == kDigits &&
                      text.find_first_not_of("0123456789abcdef") == std::string::npos &&
                      text.find_first_not_of('0') != std::string::npos;
    return isId ? std::optional<std::string>(std::move(text)) : std::nullopt;
  } catch (const std::system_error&) {
    return std::nullopt;
  }
}

}  // namespace

std::optional<std::string> MachineIdHash(const std::string& path) {
  constexpr std::string_view kPurpose = "usbinfo/machine/v1";
  constexpr std::size_t kHashedBytes = 16;
  const std::optional<std::string> id = ReadMachineId(path);
  if (!id) return std::nullopt;
  std::array<unsigned char, crypto_auth_hmacsha256_BYTES> hash{};
  static_assert(crypto_auth_hmacsha256_KEYBYTES == 32);
  ::crypto_auth_hmacsha256(hash.data(), reinterpret_cast<const unsigned char*>(kPurpose.data()),
                           kPurpose.size(), reinterpret_cast<const unsigned char*>(id->data()));
  std::string text(2 * kHashedBytes + 1, '\0');
  ::sodium_bin2hex(text.data(), text.size(), hash.data(), kHashedBytes);
  text.pop_back();
  return text;
}

}  // namespace cli
