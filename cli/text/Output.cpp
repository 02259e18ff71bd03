#include "cli/text/Output.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "cli/text/UserError.h"
#include "system/FileDescriptor.h"
#include "system/OutputLocation.h"
#include "system/TemporaryFile.h"

using sys::OutputLocation;

namespace cli {

namespace {

void Check(int result) {
  if (result != 0) sys::ThrowSystemError(errno);
}

/// The mode of a new file under the user's umask.
mode_t ModeOfNewFile() {
  constexpr mode_t kForAll = 0666;
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return kForAll & ~mask;
}

/// Gives the new file the old one's owner, which takes root, or only its group. Returns the mode for the new
/// file.
mode_t TakeOverOwner(const std::string& path, int file, const struct stat& old) {
  constexpr mode_t kRights = S_IRWXU | S_IRWXG | S_IRWXO;
  struct stat status {};
  Check(::fstat(file, &status));
  const bool isRoot = ::geteuid() == 0;
  const uid_t owner = isRoot ? old.st_uid : status.st_uid;
  const mode_t mode = old.st_mode & kRights;
  if (status.st_uid == owner && status.st_gid == old.st_gid) return mode;
  if (::fchown(file, owner, old.st_gid) == 0) return mode;
  if (isRoot) {
    throw UserError(fmt::format(
        "cannot write {}: cannot keep the owner of the old file: {}; name a new file with --output", path,
        std::strerror(errno)));
  }
  // The old group's rights must not go to another group.
  return mode & ~static_cast<mode_t>(S_IRWXG);
}

void Replace(const std::string& path, const OutputLocation& location, const std::string& text) {
  sys::TemporaryFile file(location.Folder());
  sys::WriteAll(file.Get(), text);
  const auto& old = location.Existing();
  Check(::fchmod(file.Get(), old ? TakeOverOwner(path, file.Get(), *old) : ModeOfNewFile()));
  Check(::fsync(file.Get()));
  file.Rename(location.Name());
}

UserError WriteError(const std::string& what, const std::string& reason, const std::string& advice) {
  return UserError(fmt::format("cannot write {}: {}; {}", what, reason, advice));
}

bool AreOneFile(const std::string& left, const std::string& right) {
  namespace fs = std::filesystem;
  std::error_code error;
  // The folder may be one that is still to be made.
  if (left == right) return true;
  if (fs::exists(left, error)) return fs::equivalent(left, right, error);
  try {
    return OutputLocation(left).IsSameAs(OutputLocation(right));
  } catch (const std::runtime_error&) {
    // A path that leads nowhere cannot be written or read, either.
    return false;
  }
}

}  // namespace

void RequireDistinctFiles(const NamedFile& written, const std::vector<NamedFile>& others) {
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::file_status status = fs::status(written.path, error);
  if (IsStandardOutput(written.path) || (fs::exists(status) && !fs::is_regular_file(status))) return;
  for (const NamedFile& other : others) {
    const std::string path = other.path == "-" ? "/dev/stdin" : other.path;
    if (path.empty() || !AreOneFile(written.path, path)) continue;
    throw UserError(fmt::format("{} and {} name one file, {}; name another one for {}", written.option,
                                other.option, written.path, written.option));
  }
}

bool IsStandardOutput(const std::string& path) {
  return path.empty() || path == "-";
}

void WriteStandardOutput(const std::string& text) {
  const int error = sys::TryWriteAll(STDOUT_FILENO, text);
  if (error == EPIPE) throw ClosedPipe();
  if (error != 0) throw WriteError("standard output", std::strerror(error), "is the disk full?");
}

void WriteFile(const std::string& path, const std::string& text) {
  try {
    const OutputLocation location(path);
    if (location.IsReplaceable()) return Replace(path, location, text);
    sys::WriteAll(location.Open().Get(), text);
  } catch (const sys::UntrustedPath& error) {
    throw WriteError(path, error.what(), "name a file in a folder of your own with --output");
  } catch (const std::system_error& error) {
    if (error.code().value() == EPIPE) throw ClosedPipe();
    throw WriteError(path, error.code().message(), "name a writable file with --output");
  }
}

void WriteOutput(const std::string& path, const std::string& text) {
  if (IsStandardOutput(path)) {
    WriteStandardOutput(text);
  } else {
    WriteFile(path, text);
  }
}

}  // namespace cli
