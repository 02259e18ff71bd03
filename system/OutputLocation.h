// The file that an output path leads to: its folder, held open, and its name there. Every symbolic link on
// the way is followed here rather than by the kernel, so that the checked file is the one that is used.
//
// In a world-writable folder with the sticky bit, such as /tmp, another user may have created something of
// that name to redirect or receive the output. There, links and files are used only when they belong to this
// process's user or to the folder's owner, whatever the sysctls protected_symlinks, protected_fifos and
// protected_regular say.
#pragma once

#include <sys/stat.h>

#include <optional>
#include <stdexcept>
#include <string>

#include "system/FileDescriptor.h"

namespace sys {

/// The path leads through or to something of another user's that must not be used. what() names it.
class UntrustedPath : public std::runtime_error {
 public:
  using runtime_error::runtime_error;
};

class OutputLocation {
 public:
  /// Throws std::system_error when there is no such folder or the path names a folder, UntrustedPath where
  /// something on the way must not be used.
  explicit OutputLocation(const std::string& path);

  /// Opened with O_PATH, for openat(2) and its like.
  int Folder() const { return fFolder.Get(); }
  const std::string& Name() const { return fName; }
  /// The status of what exists there; nothing for a file that is still to be created.
  const std::optional<struct stat>& Existing() const { return fExisting; }

  /// Whether a new file can be put there: nothing exists yet, or a regular file that the path names by its
  /// name. False for devices and pipes, and for what this process has open already: /proc/self/fd/N, and
  /// /dev/stdout, which is a link to it.
  bool IsReplaceable() const;
  /// Whether both lead to the same name in the same folder.
  bool IsSameAs(const OutputLocation& other) const;

  /// Opens what is there, to write at its end. Waits for a reader where it is a FIFO. Throws
  /// std::system_error, and UntrustedPath as the constructor does.
  FileDescriptor Open() const;
  /// Creates the file, or empties a regular one; opens anything else, or what is open already, as it is.
  FileDescriptor Create() const;

 private:
  FileDescriptor fFolder;
  std::string fName;
  std::optional<struct stat> fExisting;
  /// The descriptor of this process that the path names; -1 when it names none.
  int fDescriptor = -1;
};

}  // namespace sys
