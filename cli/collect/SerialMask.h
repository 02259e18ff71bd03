// What stands in a serial number's place where it must not be shown: a keyed hash, so that inventories that
// were masked with one key still compare, and nobody without the key can try serial numbers out.
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
  /// The shortest and the longest key that is taken, in bytes.
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
  /// The key is drawn at random, once for the run of the program.
  static SerialMask OfThisRun();

  /// "masked-" and the first 16 hexadecimal digits of the HMAC-SHA-256 of `serial`.
  std::string Mask(std::string_view serial) const;
  /// By what inventories can show that they were masked with one key: 16 hexadecimal digits, the hash of a
  /// fixed text. None of a random key, with which nothing else compares.
  std::optional<std::string> Fingerprint() const;

 private:
  SerialMask(Secret key, bool isOfThisRun) : fKey(std::move(key)), fIsOfThisRun(isOfThisRun) {}

  std::string Hash(std::string_view text) const;

  Secret fKey;
  bool fIsOfThisRun;
};

}  // namespace cli
