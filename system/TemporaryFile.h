// A file with a random name that is written beside the one whose place it takes. Until then it can be read
// and written by its owner alone; it is removed with the object, or by a signal that ends the process.
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
