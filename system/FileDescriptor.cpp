#include "system/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

namespace sys {

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
  if (this != &other) {
    Close();
    fFd = other.Take();
  }
  return *this;
}

int FileDescriptor::Take() {
  return std::exchange(fFd, -1);
}

void FileDescriptor::Close() {
  if (IsOpen()) ::close(Take());
}

void ThrowSystemError(int error) {
  throw std::system_error(error, std::generic_category());
}

FileDescriptor OpenFile(const std::string& path, int flags) {
  constexpr mode_t kForAll = 0666;
  FileDescriptor file(::open(path.c_str(), flags | O_CLOEXEC, kForAll));
  if (!file.IsOpen()) ThrowSystemError(errno);
  return file;
}

std::string ReadAll(int fd, std::size_t most) {
  constexpr std::size_t kChunk = 65536;
  std::string text;
  std::array<char, kChunk> chunk;
  for (;;) {
    const ssize_t got = ::read(fd, chunk.data(), chunk.size());
    if (got == 0) return text;
    if (got > 0) {
      if (static_cast<std::size_t>(got) > most - text.size()) ThrowSystemError(EFBIG);
      text.append(chunk.data(), static_cast<std::size_t>(got));
    } else if (errno != EINTR) {
      ThrowSystemError(errno);
    }
  }
}

int TryWriteAll(int fd, const std::string& text) noexcept {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t put = ::write(fd, text.data() + written, text.size() - written);
    if (put >= 0) {
      written += static_cast<std::size_t>(put);
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

void WriteAll(int fd, const std::string& text) {
  const int error = TryWriteAll(fd, text);
  if (error != 0) ThrowSystemError(error);
}

}  // namespace sys
