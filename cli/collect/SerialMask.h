// What stands in a serial number's place where it must not be told: a keyed hash, so that inventories that
// were masked with one key still compare, and nobody without the key can try serial numbers out.
#pragma once

#include <string>

namespace cli {

class SerialMask {
 public:
  /// `key` must not be empty. Throws UserError where the machine's libcrypto has no HMAC-SHA-256.
  explicit SerialMask(std::string key);

  /// The key is the whole content of the file at `path`, a final newline included; "-" is standard input.
  /// Throws UserError when it cannot be read, is empty, or has more than 1 MiB.
  static SerialMask OfKeyFile(const std::string& path);
  /// The key is drawn at random, once for the run of the program. Throws UserError.
  static SerialMask OfThisRun();

  /// "masked-" and 16 hexadecimal digits, always the same for one serial number.
  std::string Mask(const std::string& serial) const;

 private:
  std::string fKey;
};

}  // namespace cli
