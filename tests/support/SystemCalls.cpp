#include "tests/support/SystemCalls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <utility>

namespace usbinfo_test {

namespace {

SystemCallHook::OnCall& Hook() {
  static SystemCallHook::OnCall hook;
  return hook;
}

thread_local bool isInHook = false;

/// True when the call is to fail, with errno set.
bool Fails(const SystemCall& call) {
  if (!Hook() || isInHook) return false;
  isInHook = true;
  const int error = Hook()(call);
  isInHook = false;
  errno = error;
  return error != 0;
}

/// The C library's own function of that name.
template <typename Function>
Function* Original(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

SystemCallHook::SystemCallHook(OnCall onCall) {
  Hook() = std::move(onCall);
}

SystemCallHook::~SystemCallHook() {
  Hook() = nullptr;
}

}  // namespace usbinfo_test

using usbinfo_test::Fails;
using usbinfo_test::Original;

extern "C" int openat(int folder, const char* path, int flags, ...) {
  mode_t mode = 0;
  if ((flags & O_CREAT) != 0) {
    va_list rest;
    va_start(rest, flags);
    mode = va_arg(rest, mode_t);
    va_end(rest);
    if (Fails({"openat", path})) return -1;
  }
  return Original<int(int, const char*, int, ...)>("openat")(folder, path, flags, mode);
}

extern "C" ssize_t write(int fd, const void* data, size_t size) {
  static auto* const original = Original<ssize_t(int, const void*, size_t)>("write");
  return Fails({"write", ""}) ? -1 : original(fd, data, size);
}

extern "C" int fchown(int fd, uid_t owner, gid_t group) noexcept {
  return Fails({"fchown", ""}) ? -1 : Original<int(int, uid_t, gid_t)>("fchown")(fd, owner, group);
}

extern "C" int fchmod(int fd, mode_t mode) noexcept {
  return Fails({"fchmod", ""}) ? -1 : Original<int(int, mode_t)>("fchmod")(fd, mode);
}

extern "C" int fsync(int fd) {
  return Fails({"fsync", ""}) ? -1 : Original<int(int)>("fsync")(fd);
}

extern "C" int renameat(int oldFolder, const char* oldPath, int newFolder, const char* newPath) noexcept {
  if (Fails({"renameat", oldPath})) return -1;
  return Original<int(int, const char*, int, const char*)>("renameat")(oldFolder, oldPath, newFolder,
                                                                       newPath);
}

extern "C" int posix_spawnp(pid_t* pid, const char* file, const posix_spawn_file_actions_t* actions,
                            const posix_spawnattr_t* attributes, char* const arguments[],
                            char* const environment[]) {
  const int error = Original<decltype(posix_spawnp)>("posix_spawnp")(pid, file, actions, attributes,
                                                                     arguments, environment);
  if (error == 0) Fails({"posix_spawnp", "", *pid});
  return error;
}

extern "C" int nanosleep(const timespec* time, timespec* left) {
  return Fails({"nanosleep", ""}) ? -1 : Original<int(const timespec*, timespec*)>("nanosleep")(time, left);
}
