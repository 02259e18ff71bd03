#include "system/OutputLocation.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <system_error>
#include <utility>

namespace sys {

namespace {

struct stat StatusOf(int fd) {
  struct stat status {};
  if (::fstat(fd, &status) != 0) ThrowSystemError(errno);
  return status;
}

bool AreOneFile(const struct stat& left, const struct stat& right) {
  return left.st_dev == right.st_dev && left.st_ino == right.st_ino;
}

void RequireTrusted(const struct stat& entry, int folder, const std::string& name) {
  constexpr mode_t kShared = S_ISVTX | S_IWOTH;
  const struct stat around = StatusOf(folder);
  if ((around.st_mode & kShared) != kShared) return;
  if (entry.st_uid == ::geteuid() || entry.st_uid == around.st_uid) return;
  const std::string kind = S_ISLNK(entry.st_mode)    ? "symbolic link"
                           : S_ISFIFO(entry.st_mode) ? "FIFO"
                                                     : "file";
  throw UntrustedPath("the " + kind + " \"" + name +
                      "\" belongs to another user and is in a folder where everyone may create files");
}

FileDescriptor OpenFolder(int parent, const std::string& name) {
  FileDescriptor folder(::openat(parent, name.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!folder.IsOpen()) ThrowSystemError(errno);
  return folder;
}

/// The text of a link whose descriptor refers to the link itself.
std::string ReadLink(int link) {
  std::array<char, PATH_MAX> target{};
  const ssize_t length = ::readlinkat(link, "", target.data(), target.size());
  if (length < 0) ThrowSystemError(errno);
  return std::string(target.data(), static_cast<std::size_t>(length));
}

/// The kernel resolves links of /proc to their object, whatever their text says.
bool IsLinkOfProc(int link) {
  struct statfs system {};
  return ::fstatfs(link, &system) == 0 && system.f_type == PROC_SUPER_MAGIC;
}

/// The number of the descriptor that `name` in `folder` stands for, when the folder is /proc/self/fd; else
/// -1.
int OwnDescriptor(int folder, const std::string& name) {
  struct stat own {};
  if (::stat("/proc/self/fd", &own) != 0 || !AreOneFile(own, StatusOf(folder))) return -1;
  int number = -1;
  std::from_chars(name.data(), name.data() + name.size(), number);
  return number;
}

/// Follows a path, one component at a time.
class PathWalk {
 public:
  explicit PathWalk(const std::string& path) : folder(OpenFolder(AT_FDCWD, ".")) {
    if (path.empty()) ThrowSystemError(ENOENT);
    ContinueWith(path);
    while (!IsAtEnd()) {
    }
  }

  FileDescriptor folder;
  std::string name;
  std::optional<struct stat> existing;
  int descriptor = -1;

 private:
  /// Takes the next component; true when it is the path's last one.
  bool IsAtEnd() {
    TakeName();
    FileDescriptor entry(::openat(folder.Get(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!entry.IsOpen()) {
      if (errno == ENOENT && fRest.empty()) return true;
      ThrowSystemError(errno);
    }
    const struct stat status = StatusOf(entry.Get());
    if (S_ISLNK(status.st_mode)) return FollowLink(entry.Get(), status);
    if (fRest.empty()) return TakeAsEnd(status);
    if (!S_ISDIR(status.st_mode)) ThrowSystemError(ENOTDIR);
    folder = std::move(entry);
    return false;
  }

  /// Throws when none is left: a path that ends in a slash names a folder.
  void TakeName() {
    const std::size_t begin = fRest.find_first_not_of('/');
    if (begin == std::string::npos) ThrowSystemError(EISDIR);
    const std::size_t end = fRest.find('/', begin);
    name = fRest.substr(begin, end - begin);
    fRest.erase(0, end);
  }

  bool TakeAsEnd(const struct stat& status) {
    if (S_ISDIR(status.st_mode)) ThrowSystemError(EISDIR);
    RequireTrusted(status, folder.Get(), name);
    existing = status;
    return true;
  }

  /// True when the link is the path's end: a descriptor of this process.
  bool FollowLink(int link, const struct stat& status) {
    constexpr int kMostLinks = 40;  // as the kernel's own limit
    if (++fLinks > kMostLinks) ThrowSystemError(ELOOP);
    RequireTrusted(status, folder.Get(), name);
    if (IsLinkOfProc(link)) return FollowLinkOfProc();
    ContinueWith(ReadLink(link) + fRest);
    return false;
  }

  bool FollowLinkOfProc() {
    if (!fRest.empty()) {
      folder = OpenFolder(folder.Get(), name);
      return false;
    }
    descriptor = OwnDescriptor(folder.Get(), name);
    if (descriptor < 0)
      throw UntrustedPath("the link \"" + name +
                          "\" of /proc leads to something other than an open file of this process");
    existing = StatusOf(descriptor);
    return true;
  }

  void ContinueWith(std::string path) {
    if (path.front() == '/') folder = OpenFolder(AT_FDCWD, "/");
    fRest = std::move(path);
  }

  /// Empty, or begins with a slash once the first component is taken.
  std::string fRest;
  int fLinks = 0;
};

}  // namespace

OutputLocation::OutputLocation(const std::string& path) {
  PathWalk walk(path);
  fFolder = std::move(walk.folder);
  fName = std::move(walk.name);
  fExisting = walk.existing;
  fDescriptor = walk.descriptor;
}

bool OutputLocation::IsReplaceable() const {
  return !fExisting || (fDescriptor < 0 && S_ISREG(fExisting->st_mode));
}

bool OutputLocation::IsSameAs(const OutputLocation& other) const {
  return fName == other.fName && AreOneFile(StatusOf(Folder()), StatusOf(other.Folder()));
}

FileDescriptor OutputLocation::Open() const {
  FileDescriptor file(fDescriptor >= 0 ? ::fcntl(fDescriptor, F_DUPFD_CLOEXEC, 0)
                                       : ::openat(Folder(), fName.c_str(),
                                                  O_WRONLY | O_APPEND | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC));
  if (!file.IsOpen()) ThrowSystemError(errno);
  if (fDescriptor < 0) RequireTrusted(StatusOf(file.Get()), Folder(), fName);
  return file;
}

FileDescriptor OutputLocation::Create() const {
  constexpr mode_t kForAll = 0666;
  if (!fExisting) {
    FileDescriptor file(
        ::openat(Folder(), fName.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_EXCL | O_CLOEXEC, kForAll));
    if (!file.IsOpen()) ThrowSystemError(errno);
    return file;
  }
  FileDescriptor file = Open();
  if (IsReplaceable() && ::ftruncate(file.Get(), 0) != 0) ThrowSystemError(errno);
  return file;
}

}  // namespace sys
