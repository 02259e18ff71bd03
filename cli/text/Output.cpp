// Whole output; see the header.
#include "cli/text/Output.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "cli/text/UserError.h"
#include "system/FileDescriptor.h"

using sys::FileDescriptor;

namespace cli {

namespace {

void Check(int result) {
  if (result != 0) sys::ThrowSystemError(errno);
}

/// The kernel's links to what is open, such as /proc/self/fd/1 behind /dev/stdout: these are written to, not
/// replaced.
bool IsOpenAlready(const std::filesystem::path& path) {
  return path.string().rfind("/proc/", 0) == 0;
}

/// The file that `path` leads to through links, whether or not it is there yet.
std::string FollowLinks(const std::string& path) {
  namespace fs = std::filesystem;
  constexpr int kMaxLinks = 40;  // as the kernel counts before it gives up
  fs::path target = path;
  for (int links = 0; links < kMaxLinks && fs::is_symlink(target) && !IsOpenAlready(target); ++links) {
    target = target.parent_path() / fs::read_symlink(target);
  }
  if (fs::is_symlink(target) && !IsOpenAlready(target)) sys::ThrowSystemError(ELOOP);
  return target;
}

/// A new file beside the one to be written, removed unless it takes that one's place.
class NewFile {
 public:
  explicit NewFile(const std::string& target) : fTarget(target) {
    // Numbers of processes come again, so what a run left that was killed must not stop another one.
    constexpr int kMostTries = 100;
    for (int number = 0; !TryToMake(number); ++number) {
      if (number == kMostTries) sys::ThrowSystemError(EEXIST);
    }
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;
  ~NewFile() {
    if (!fInPlace) ::unlink(fPath.c_str());
  }

  void Write(const std::string& text) {
    sys::WriteAll(fFile.Get(), text);
    Check(::fsync(fFile.Get()));
  }

  void TakePlace() {
    struct stat old;
    if (::stat(fTarget.c_str(), &old) == 0) Check(::fchmod(fFile.Get(), old.st_mode & 07777));
    Check(std::rename(fPath.c_str(), fTarget.c_str()));
    fInPlace = true;
  }

 private:
  /// False when the file of that number is there already, whoever made it.
  bool TryToMake(int number) {
    const std::filesystem::path folder = std::filesystem::path(fTarget).parent_path();
    fPath = folder / fmt::format(".usbinfo-{}-{}.new", ::getpid(), number);
    try {
      fFile = sys::OpenFile(fPath, O_WRONLY | O_CREAT | O_EXCL);
      return true;
    } catch (const std::system_error& error) {
      if (error.code().value() != EEXIST) throw;
      return false;
    }
  }

  std::string fTarget;
  std::string fPath;
  FileDescriptor fFile;
  bool fInPlace = false;
};

bool AreOne(const std::string& left, const std::string& right) {
  namespace fs = std::filesystem;
  std::error_code error;
  if (fs::exists(left, error)) return fs::equivalent(left, right, error);
  return fs::weakly_canonical(fs::absolute(left), error) == fs::weakly_canonical(fs::absolute(right), error);
}

void WriteInPlace(const std::string& path, const std::string& text) {
  sys::WriteAll(sys::OpenFile(path, O_WRONLY | O_APPEND).Get(), text);
}

void Replace(const std::string& path, const std::string& text) {
  const std::string target = FollowLinks(path);
  struct stat status;
  const bool isThere = ::stat(target.c_str(), &status) == 0;
  if (isThere && (!S_ISREG(status.st_mode) || IsOpenAlready(target))) return WriteInPlace(target, text);
  NewFile file(target);
  file.Write(text);
  file.TakePlace();
}

}  // namespace

void KeepApart(const NamedFile& written, const std::vector<NamedFile>& others) {
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::file_status status = fs::status(written.path, error);
  if (written.path.empty() || (fs::exists(status) && !fs::is_regular_file(status))) return;
  for (const NamedFile& other : others) {
    const std::string path = other.path == "-" ? "/dev/stdin" : other.path;
    if (path.empty() || !AreOne(written.path, path)) continue;
    throw UserError(fmt::format("{} and {} name one file, {}; name another one for {}", written.option,
                                other.option, written.path, written.option));
  }
}

void WriteStandardOutput(const std::string& text) {
  try {
    sys::WriteAll(STDOUT_FILENO, text);
  } catch (const std::system_error& error) {
    throw UserError(fmt::format("cannot write standard output: {}; is the disk full, or the reader gone?",
                                error.code().message()));
  }
}

void WriteFile(const std::string& path, const std::string& text) {
  try {
    Replace(path, text);
  } catch (const std::system_error& error) {
    throw UserError(
        fmt::format("cannot write {}: {}; name a writable file with --output", path, error.code().message()));
  }
}

void WriteOutput(const std::string& path, const std::string& text) {
  if (path.empty()) {
    WriteStandardOutput(text);
  } else {
    WriteFile(path, text);
  }
}

}  // namespace cli
