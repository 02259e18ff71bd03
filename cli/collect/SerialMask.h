// The mask that replaces a serial number: a keyed hash, so that inventories masked with the same key can
// still be compared, and nobody without the key can try out serial numbers.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "cli/collect/Secret.h"

namespace cli {

class SerialMask {
 public:
  /// The shortest and the longest key that is accepted, in bytes.
  static constexpr std::size_t kShortestKey = 16;
  static constexpr std::size_t kLongestKey = std::size_t{1} << 20;

  /// The hashes are made with the 32 bytes to which Argon2id stretches `key`, so that it costs to try keys
  /// out: version 1.3, 2 passes over 64 MiB, the salt "usbinfo/masks/v1". Throws UserError where there are no
  /// 64 MiB.
  static SerialMask OfKey(std::string_view key);
  /// The key is the whole content of the file or FIFO at `path`, a final newline included; "-" is standard
  /// input. Warns on standard error of a file that other users can read or write. Throws UserError when it
  /// cannot be read, is too short or too long, and as OfKey does.
  static SerialMask OfKeyFile(const std::string& path);
  /// The key is random and drawn once per run of the program.
  static SerialMask OfThisRun();

  /// "masked-" and the first 16 hexadecimal digits of the HMAC-SHA-256 of `serial`.
  std::string Mask(std::string_view serial) const;
  /// Identifies the key with which an inventory was masked: 16 hexadecimal digits, the hash of a fixed text.
  /// Nothing for a random key, since no other inventory can have been masked with it.
  std::optional<std::string> Fingerprint() const;

 private:
  SerialMask(Secret key, bool isOfThisRun) : fKey(std::move(key)), fIsOfThisRun(isOfThisRun) {}

  std::string Hash(std::string_view text) const;

  Secret fKey;
  bool fIsOfThisRun;
};

}  // namespace cli
