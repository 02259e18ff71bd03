// An owned file descriptor, how to get one, and the reading and writing of whole contents through it.
#pragma once

#include <cstddef>
#include <string>

namespace sys {

class FileDescriptor {
 public:
  FileDescriptor() = default;
  explicit FileDescriptor(int fd) : fFd(fd) {}
  FileDescriptor(FileDescriptor&& other) noexcept : fFd(other.Take()) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept;
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() { Close(); }

  int Get() const { return fFd; }
  bool IsOpen() const { return fFd >= 0; }
  /// Gives up ownership of the descriptor.
  int Take();
  void Close();

 private:
  int fFd = -1;
};

/// Throws std::system_error with the error number `error`.
[[noreturn]] void ThrowSystemError(int error);

/// Opens the file at `path` with the flags of open(2), not to be inherited by commands; a new file may be
/// read and written as far as the user's mask allows. Throws std::system_error.
FileDescriptor OpenFile(const std::string& path, int flags);

/// All that can be read from `fd` up to its end, whatever size it is said to have. Throws std::system_error,
/// with EFBIG beyond `most` bytes.
std::string ReadAll(int fd, std::size_t most = std::string::npos);

/// Writes the whole of `text`; gives 0, or the error number of the write that failed.
int TryWriteAll(int fd, const std::string& text) noexcept;

/// Writes the whole of `text`. Throws std::system_error.
void WriteAll(int fd, const std::string& text);

}  // namespace sys
