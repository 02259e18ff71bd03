#include "kernel/SysfsFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <memory>
#include <system_error>

#include "kernel/Number.h"

namespace kernel {
namespace {

[[noreturn]] void Fail(const std::string& path, int error) {
  throw SysfsError(path, std::generic_category().message(error));
}

[[noreturn]] void FailForNumber(const std::string& path, unsigned most) {
  throw SysfsError(path, "no number from 0 to " + std::to_string(most));
}

sys::FileDescriptor OpenAt(const sys::FileDescriptor& folder, const std::string& path, int flags) {
  return sys::FileDescriptor(::openat(folder.Get(), path.c_str(), flags | O_RDONLY | O_CLOEXEC | O_NONBLOCK));
}

/// All of a text file, which sysfs gives to a single call that has room for it.
std::string ReadText(const sys::FileDescriptor& file, const std::string& path) {
  std::array<char, kMostText + 1> text;
  const ssize_t got = ::read(file.Get(), text.data(), text.size());
  if (got < 0) Fail(path, errno);
  if (static_cast<std::size_t>(got) > kMostText) Fail(path, EFBIG);
  return {text.data(), static_cast<std::size_t>(got)};
}

struct CloseFolder {
  void operator()(DIR* folder) const { ::closedir(folder); }
};

}  // namespace

SysfsFolder SysfsFolder::Open(const std::string& path) const {
  sys::FileDescriptor folder = OpenAt(fFolder, path, O_DIRECTORY);
  if (!folder.IsOpen()) Fail(path, errno);
  return SysfsFolder(std::move(folder));
}

std::string SysfsFolder::Read(const std::string& path) const {
  const sys::FileDescriptor file = OpenAt(fFolder, path, 0);
  if (!file.IsOpen()) Fail(path, errno);
  return ReadText(file, path);
}

std::string SysfsFolder::ReadBytes(const std::string& path, std::size_t most) const {
  const sys::FileDescriptor file = OpenAt(fFolder, path, 0);
  if (!file.IsOpen()) Fail(path, errno);
  try {
    return sys::ReadAll(file.Get(), most);
  } catch (const std::system_error& error) {
    Fail(path, error.code().value());
  }
}

std::optional<std::string> SysfsFolder::ReadIfThere(const std::string& path) const {
  const sys::FileDescriptor file = OpenAt(fFolder, path, 0);
  if (!file.IsOpen() && errno == ENOENT) return std::nullopt;
  if (!file.IsOpen()) Fail(path, errno);
  return ReadText(file, path);
}

std::string SysfsFolder::ReadLine(const std::string& path) const {
  return std::string(WithoutLineBreak(Read(path)));
}

unsigned SysfsFolder::ReadNumber(const std::string& path, unsigned most) const {
  const std::optional<unsigned> number = ReadNumberIfAny(path, most);
  if (!number) FailForNumber(path, most);
  return *number;
}

std::optional<unsigned> SysfsFolder::ReadNumberIfAny(const std::string& path, unsigned most) const {
  const std::string line = ReadLine(path);
  if (line.empty()) return std::nullopt;
  const std::size_t begin = std::min(line.find_first_not_of(' '), line.size());
  const auto number = ParseNumber(std::string_view(line).substr(begin), most);
  if (!number) FailForNumber(path, most);
  return number;
}

std::string SysfsFolder::LinkTarget(const std::string& path) const {
  std::array<char, PATH_MAX> target;
  const ssize_t length = ::readlinkat(fFolder.Get(), path.c_str(), target.data(), target.size());
  if (length < 0) return {};
  return {target.data(), static_cast<std::size_t>(length)};
}

std::string SysfsFolder::LinkName(const std::string& path) const {
  const std::string target = LinkTarget(path);
  return target.substr(target.rfind('/') + 1);
}

bool SysfsFolder::Has(const std::string& path) const {
  return ::faccessat(fFolder.Get(), path.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
}

std::vector<SysfsFolder::Entry> SysfsFolder::Entries() const {
  sys::FileDescriptor again = OpenAt(fFolder, ".", O_DIRECTORY);
  if (!again.IsOpen()) Fail(".", errno);
  const std::unique_ptr<DIR, CloseFolder> folder(::fdopendir(again.Get()));
  if (folder == nullptr) Fail(".", errno);
  again.Take();

  std::vector<Entry> entries;
  errno = 0;
  while (const dirent* entry = ::readdir(folder.get())) {
    const std::string name = entry->d_name;
    if (name != "." && name != "..") entries.push_back({name, entry->d_type == DT_DIR});
    errno = 0;
  }
  if (errno != 0) Fail(".", errno);
  return entries;
}

std::string_view WithoutLineBreak(std::string_view text) {
  if (text.ends_with('\n')) text.remove_suffix(1);
  return text;
}

}  // namespace kernel
