#include "system/TemporaryFile.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <string_view>

namespace sys {

namespace {

/// 60 random bits, so that nobody can create a file of that name first.
std::string RandomName() {
  constexpr std::string_view kDigits = "abcdefghijklmnopqrstuvwxyz234567";
  std::array<unsigned char, 12> random{};
  if (::getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size()))
    ThrowSystemError(errno);
  std::string name = ".usbinfo-";
  for (const unsigned char byte : random) name += kDigits[byte % kDigits.size()];
  return name + ".new";
}

}  // namespace

TemporaryFile::TemporaryFile(int folder) : fFolder(folder) {
  constexpr int kMostTries = 100;
  for (int tries = 0; !TryToCreate(); ++tries) {
    if (tries == kMostTries) ThrowSystemError(EEXIST);
  }
}

TemporaryFile::~TemporaryFile() {
  if (fGuard) ::unlinkat(fFolder, fName.c_str(), 0);
}

void TemporaryFile::Rename(const std::string& name) {
  if (::renameat(fFolder, fName.c_str(), fFolder, name.c_str()) != 0) ThrowSystemError(errno);
  fGuard.reset();
}

bool TemporaryFile::TryToCreate() {
  fName = RandomName();
  fGuard.emplace(fFolder, fName);
  fFile = FileDescriptor(
      ::openat(fFolder, fName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
  if (fFile.IsOpen()) return true;
  const int error = errno;
  fGuard.reset();
  if (error != EEXIST) ThrowSystemError(error);
  return false;
}

}  // namespace sys
