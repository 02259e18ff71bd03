// What stands in a serial number's place where it must not be shown: a keyed hash, so that inventories that
// were masked with one key still compare, and nobody without the key can try serial numbers out.
#pragma once

#include <memory>
#include <optional>
#include <string>

namespace cli {

class SerialMask {
 public:
  /// The shortest key that is taken, in bytes.
  static constexpr std::size_t kLeastKeyBytes = 16;
  /// The longest key that is taken, in bytes.
  static constexpr std::size_t kMostKeyBytes = std::size_t{1} << 20;

  /// Masks with `key`. Hashes are made with the 32 bytes that Argon2id13 stretches it to, with 2 passes over
  /// 64 MiB and the salt "usbinfo/masks/v1", so that trying keys out costs. Throws UserError for a key that is
  /// too short, and where there are no 64 MiB.
  static SerialMask OfKey(const std::string& key);
  /// The key is the whole content of the file or FIFO at `path`, a final newline included; "-" is standard
  /// input. Warns on standard error of a file that other users can read or write. Throws UserError when it
  /// cannot be read, and for a key that is too short or too long.
  static SerialMask OfKeyFile(const std::string& path);
  /// The key is drawn at random, once for the run of the program.
  static SerialMask OfThisRun();

  /// "masked-" and the first 16 hexadecimal digits of the HMAC-SHA-256 of `serial`.
  std::string Mask(const std::string& serial) const;
  /// 16 hexadecimal digits by which inventories can say that they were masked with the same key: the hash of
  /// a fixed text. None of a random key, with which nothing else compares.
  std::optional<std::string> Fingerprint() const;

 private:
  /// Memory that is locked while it is used and wiped when it is freed.
  using Secret = std::shared_ptr<unsigned char>;

  SerialMask(Secret key, bool isRandom) : fKey(std::move(key)), fIsRandom(isRandom) {}

  static Secret NewSecret(std::size_t bytes);
  static SerialMask OfBytes(const unsigned char* key, std::size_t bytes, const std::string& name);
  std::string HashOf(const std::string& text) const;

  Secret fKey;
  bool fIsRandom;
};

/// Has the kernel write no core file of this process, and let no other process of the user look into it.
/// Throws std::system_error.
void ForbidCoreDumps();

}  // namespace cli
