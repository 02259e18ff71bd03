// The real operating-system services; see the header.
#include "standin/Machine.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>

#include "standin/StatusCode.h"
#include "system/ChildProcess.h"
#include "system/FileDescriptor.h"

namespace standin {

namespace {

StatusCode StatusOf(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return StatusCode::kNotFound;
    case EACCES:
    case EPERM:
      return StatusCode::kAccessDenied;
    default:
      return StatusCode::kFailed;
  }
}

}  // namespace

bool Machine::FileExists(const std::string& path) {
  struct stat status;
  return ::stat(path.c_str(), &status) == 0;
}

std::string Machine::CaptureFile(const std::string& path) {
  try {
    return sys::ReadAll(sys::OpenFile(path, O_RDONLY).Get());
  } catch (const std::system_error& error) {
    Throw(StatusOf(error.code().value()));
  }
}

std::string Machine::SpawnProcess(const std::string& command, int seconds) {
  try {
    sys::ChildProcess child(command);
    return child.Collect(std::chrono::seconds(seconds), kMaxOutput);
  } catch (const std::system_error&) {
    Throw(StatusCode::kFailed);
  }
}

}  // namespace standin
