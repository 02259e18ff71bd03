// A hash that stands for a content, since nobody can find two contents with the same one: BLAKE2b of 24
// bytes.
#pragma once

#include <sodium.h>

#include <string>
#include <string_view>

namespace store {

class ContentHash {
 public:
  ContentHash();

  /// Where one part ends counts: "a", "bc" gives another hash than "ab", "c".
  void Add(std::string_view part);
  /// 32 letters, digits, "-" and "_". To be called once.
  std::string Text();

 private:
  crypto_generichash_state fState{};
};

}  // namespace store
