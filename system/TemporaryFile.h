// A file with a random name, written beside the file that it will replace. Until then only its owner can read
// and write it. The destructor removes it, as does a signal that ends the process.
#pragma once

#include <optional>
#include <string>

#include "system/FileDescriptor.h"
#include "system/SignalGuard.h"

namespace sys {

class TemporaryFile {
 public:
  /// Creates `.usbinfo-XXXXXXXXXXXX.new` with mode 0600 in the open folder `folder`, which must stay open as
  /// long as the object lives. Throws std::system_error.
  explicit TemporaryFile(int folder);
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile();

  /// Open for writing.
  int Get() const { return fFile.Get(); }
  /// Renames the file to `name` in its folder, in place of what has that name. Throws std::system_error.
  void Rename(const std::string& name);

 private:
  /// False when something has that name already.
  bool TryToCreate();

  int fFolder;
  std::string fName;
  std::optional<FileGuard> fGuard;
  FileDescriptor fFile;
};

}  // namespace sys
