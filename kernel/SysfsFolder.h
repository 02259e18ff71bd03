// A folder of sysfs, held open, so that everything read through it is of the same device: when the device
// goes, so do its files, even where another one takes its name.
#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "system/FileDescriptor.h"

namespace kernel {

/// Something in sysfs that cannot be read, or is not what it has to be: "speed: Permission denied".
class SysfsError : public std::runtime_error {
 public:
  SysfsError(const std::string& file, const std::string& reason) : std::runtime_error(file + ": " + reason) {}
};

/// The size of a page, which no text file in sysfs exceeds.
inline constexpr std::size_t kMostText = 4096;

/// In all operations a path is relative to the folder.
class SysfsFolder {
 public:
  struct Entry {
    std::string name;
    bool isFolder;
  };

  explicit SysfsFolder(sys::FileDescriptor folder) : fFolder(std::move(folder)) {}

  /// Throws SysfsError.
  SysfsFolder Open(const std::string& path) const;
  /// The whole text file. Throws SysfsError, also for more than `kMostText` bytes.
  std::string Read(const std::string& path) const;
  /// The same; nothing where there is no such file.
  std::optional<std::string> ReadIfThere(const std::string& path) const;
  /// The whole file, of any kind. Throws SysfsError, also for more than `most` bytes.
  std::string ReadBytes(const std::string& path, std::size_t most) const;
  /// The text of a file without its final line break. Throws SysfsError.
  std::string ReadLine(const std::string& path) const;
  /// The number in a file, which blanks may precede. Throws SysfsError, also for a number above `most`.
  unsigned ReadNumber(const std::string& path, unsigned most) const;
  /// The same; nothing where the line is empty.
  std::optional<unsigned> ReadNumberIfAny(const std::string& path, unsigned most) const;
  /// What a link points to; empty where there is no such link.
  std::string LinkTarget(const std::string& path) const;
  /// The last name in that.
  std::string LinkName(const std::string& path) const;
  bool Has(const std::string& path) const;
  /// All that is in it, links counting as files, in no order. Throws SysfsError.
  std::vector<Entry> Entries() const;

 private:
  sys::FileDescriptor fFolder;
};

/// The text without a line break at its end.
std::string_view WithoutLineBreak(std::string_view text);

}  // namespace kernel
