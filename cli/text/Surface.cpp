#include "cli/text/Surface.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <string_view>
#include <system_error>

#include "cli/text/Text.h"

namespace cli {

namespace {

/// 0 when the variable is not set or is not a positive number.
std::size_t WidthOfEnvironment() {
  const char* const value = std::getenv("COLUMNS");
  if (value == nullptr) return 0;
  const std::string_view text = value;
  const char* const end = text.data() + text.size();
  std::size_t width = 0;
  const auto [stop, error] = std::from_chars(text.data(), end, width);
  return stop == end && error == std::errc() ? width : 0;
}

/// 0 when the terminal does not know.
std::size_t WidthOfTerminal() {
  winsize size{};
  return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

std::size_t FirstNonZero(std::size_t a, std::size_t b) {
  return a != 0 ? a : b;
}

}  // namespace

Surface SurfaceOf(bool isStandardOutput, Color color) {
  constexpr std::size_t kUsualWidth = 80;
  Surface surface;
  if (isStandardOutput && ::isatty(STDOUT_FILENO) == 1) {
    surface.width = FirstNonZero(WidthOfEnvironment(), FirstNonZero(WidthOfTerminal(), kUsualWidth));
  }
  surface.isColored = UsesColor(color, isStandardOutput);
  surface.isUtf8 = IsLocaleUtf8();
  return surface;
}

}  // namespace cli
