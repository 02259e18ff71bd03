// An owned file descriptor and the reading and writing of whole contents through one.
#pragma once

#include <string>

namespace standin {

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
  /// Gives the descriptor away.
  int Take();
  void Close();

 private:
  int fFd = -1;
};

/// All that can be read from `fd` up to its end, whatever size it is said to have. Throws std::system_error.
std::string ReadAll(int fd);

/// Writes the whole of `text`. Throws std::system_error.
void WriteAll(int fd, const std::string& text);

}  // namespace standin
