// The base of the six line parsers of the device list: it cuts a field out of a line. The parsers derive from
// it and are owned by a device record.
#pragma once

#include <string>

class LineParser {
 public:
  /// The text of `line` between `key` and `terminator`, both given in lower case and matched without regard
  /// to case; the first occurrence of each counts, and the search for the terminator begins at the key. The
  /// terminator "\n" means the end of the line. Nothing is trimmed. Empty when either is missing.
  std::string getString(std::string line, std::string key, std::string terminator) const;

 protected:
  LineParser() = default;
  ~LineParser() = default;
  LineParser(const LineParser&) = default;
  LineParser& operator=(const LineParser&) = default;
};

/// `text` with the letters A to Z made small, every other byte as it is: what `tolower` does in the POSIX
/// locale, whatever locale the host has set.
std::string ToLowerPosix(std::string text);
