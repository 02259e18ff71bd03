#include "cli/collect/SerialMask.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sodium.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "cli/text/Message.h"
#include "cli/text/UserError.h"
#include "system/FileDescriptor.h"

namespace cli {

namespace {

constexpr const char* kAdvice = "make one with \"head -c 32 /dev/urandom > key\" and name it with --mask-key";

/// Reads from `fd` up to its end or until `buffer` is full; gives the number of bytes. Unlike sys::ReadAll,
/// it leaves no copies in memory.
std::size_t ReadInto(Secret& buffer, int fd) {
  std::size_t filled = 0;
  while (filled < buffer.Size()) {
    const ssize_t got = ::read(fd, buffer.Data() + filled, buffer.Size() - filled);
    if (got == 0) break;
    if (got > 0) {
      filled += static_cast<std::size_t>(got);
    } else if (errno != EINTR) {
      sys::ThrowSystemError(errno);
    }
  }
  return filled;
}

void WarnOfSharedFile(int fd, const std::string& path) {
  struct stat status;
  if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) return;
  if ((status.st_mode & (S_IRWXG | S_IRWXO)) == 0) return;
  PrintMessage(fmt::format("other users can read or write the key in {}; run \"chmod 600\" on it", path));
}

std::size_t ReadKey(Secret& buffer, const std::string& path) {
  if (path == "-") return ReadInto(buffer, STDIN_FILENO);
  const sys::FileDescriptor file = sys::OpenFile(path, O_RDONLY);
  WarnOfSharedFile(file.Get(), path);
  return ReadInto(buffer, file.Get());
}

Secret Stretch(std::string_view key) {
  constexpr unsigned long long kPasses = 2;
  constexpr std::size_t kMemory = std::size_t{64} << 20;
  constexpr std::array<unsigned char, crypto_pwhash_SALTBYTES> kSalt = {
      'u', 's', 'b', 'i', 'n', 'f', 'o', '/', 'm', 'a', 's', 'k', 's', '/', 'v', '1'};
  Secret stretched(crypto_auth_hmacsha256_KEYBYTES);
  if (::crypto_pwhash(stretched.Data(), stretched.Size(), key.data(), key.size(), kSalt.data(), kPasses,
                      kMemory, crypto_pwhash_ALG_ARGON2ID13) != 0) {
    throw UserError(
        "cannot prepare the key to mask with: that takes 64 MiB of memory; allow for more memory");
  }
  return stretched;
}

void CheckLength(std::size_t length, const std::string& name) {
  if (length < SerialMask::kShortestKey) {
    throw UserError(fmt::format("the key in {} has {} bytes, but needs at least {}; {}", name, length,
                                SerialMask::kShortestKey, kAdvice));
  }
  if (length > SerialMask::kLongestKey) {
    throw UserError(fmt::format("the key in {} has more than 1 MiB; {}", name, kAdvice));
  }
}

Secret RandomKey() {
  Secret key(crypto_auth_hmacsha256_KEYBYTES);
  ::randombytes_buf(key.Data(), key.Size());
  return key;
}

}  // namespace

SerialMask SerialMask::OfKey(std::string_view key) {
  return {Stretch(key), false};
}

SerialMask SerialMask::OfKeyFile(const std::string& path) {
  const std::string name = path == "-" ? "standard input" : path;
  Secret buffer(kLongestKey + 1);
  std::size_t length = 0;
  try {
    length = ReadKey(buffer, path);
  } catch (const std::system_error& error) {
    throw UserError(fmt::format("cannot read the key in {}: {}; {}", name, error.code().message(), kAdvice));
  }
  CheckLength(length, name);
  return OfKey({reinterpret_cast<const char*>(buffer.Data()), length});
}

SerialMask SerialMask::OfThisRun() {
  static const Secret key = RandomKey();
  return {key, true};
}

std::string SerialMask::Mask(std::string_view serial) const {
  return "masked-" + Hash(serial);
}

std::optional<std::string> SerialMask::Fingerprint() const {
  if (fIsOfThisRun) return std::nullopt;
  return Hash("usbinfo mask key fingerprint");
}

std::string SerialMask::Hash(std::string_view text) const {
  constexpr std::size_t kBytesShown = 8;
  std::array<unsigned char, crypto_auth_hmacsha256_BYTES> hash{};
  ::crypto_auth_hmacsha256(hash.data(), reinterpret_cast<const unsigned char*>(text.data()), text.size(),
                           fKey.Data());
  return fmt::format("{:02x}", fmt::join(hash.begin(), hash.begin() + kBytesShown, ""));
}

}  // namespace cli
