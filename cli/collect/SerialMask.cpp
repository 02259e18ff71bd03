// Keys and hashes; see the header.
#include "cli/collect/SerialMask.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>
#include <unistd.h>

#include <array>
#include <system_error>
#include <utility>

#include "cli/text/UserError.h"
#include "system/FileDescriptor.h"

namespace cli {

namespace {

std::string ReadKey(const std::string& path) {
  // A device that never ends must not be read for ever.
  constexpr std::size_t kMostBytes = std::size_t{1} << 20;
  if (path == "-") return sys::ReadAll(STDIN_FILENO, kMostBytes);
  return sys::ReadAll(sys::OpenFile(path, O_RDONLY).Get(), kMostBytes);
}

std::string RandomKey() {
  std::array<unsigned char, 32> bytes{};
  if (RAND_bytes(bytes.data(), static_cast<int>(bytes.size())) != 1) {
    throw UserError("cannot draw a random key to mask with; name one with --mask-key FILE");
  }
  return {bytes.begin(), bytes.end()};
}

}  // namespace

SerialMask::SerialMask(std::string key) : fKey(std::move(key)) {
  // What fails later fails while the plug-in runs, which would take it for a machine without a list.
  Mask(std::string());
}

SerialMask SerialMask::OfKeyFile(const std::string& path) {
  const std::string name = path == "-" ? "standard input" : path;
  const char* const advice = "name a file that holds a key with --mask-key";
  try {
    std::string key = ReadKey(path);
    if (key.empty()) throw UserError(fmt::format("the key in {} is empty; {}", name, advice));
    return SerialMask(std::move(key));
  } catch (const std::system_error& error) {
    throw UserError(fmt::format("cannot read the key in {}: {}; {}", name, error.code().message(), advice));
  }
}

SerialMask SerialMask::OfThisRun() {
  static const std::string key = RandomKey();
  return SerialMask(key);
}

std::string SerialMask::Mask(const std::string& serial) const {
  constexpr std::size_t kBytesShown = 8;
  std::array<unsigned char, EVP_MAX_MD_SIZE> hash{};
  const auto* const data = reinterpret_cast<const unsigned char*>(serial.data());
  if (HMAC(EVP_sha256(), fKey.data(), static_cast<int>(fKey.size()), data, serial.size(), hash.data(),
           nullptr) == nullptr) {
    throw UserError("cannot mask serial numbers: libcrypto has no HMAC-SHA-256; look at its configuration");
  }
  return fmt::format("masked-{:02x}", fmt::join(hash.begin(), hash.begin() + kBytesShown, ""));
}

}  // namespace cli
