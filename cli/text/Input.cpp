#include "cli/text/Input.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "cli/text/UserError.h"
#include "system/FileDescriptor.h"

namespace cli {

std::string NameOfList(const std::string& path) {
  return path == "-" ? "standard input" : path;
}

std::string ReadInput(const std::string& path, const std::string& advice) {
  constexpr std::size_t kMostBytes = std::size_t{64} << 20;
  try {
    if (path == "-") return sys::ReadAll(STDIN_FILENO, kMostBytes);
    return sys::ReadAll(sys::OpenFile(path, O_RDONLY).Get(), kMostBytes);
  } catch (const std::system_error& error) {
    if (error.code().value() == EFBIG) {
      throw UserError(fmt::format("cannot read {}: it has more than 64 MiB; {}", NameOfList(path), advice));
    }
    throw UserError(fmt::format("cannot read {}: {}; {}", NameOfList(path), error.code().message(), advice));
  }
}

}  // namespace cli
