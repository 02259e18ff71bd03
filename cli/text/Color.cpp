#include "cli/text/Color.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace cli {

namespace {

/// Empty when it is not set.
std::string Variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

}  // namespace

const std::vector<std::string>& ColorNames() {
  static const std::vector<std::string> names = {"auto", "always", "never"};
  return names;
}

Color ColorOf(const std::string& name) {
  const auto& names = ColorNames();
  return static_cast<Color>(std::find(names.begin(), names.end(), name) - names.begin());
}

bool UsesColor(Color color, bool isStandardOutput) {
  if (color != Color::kAuto) return color == Color::kAlways;
  if (!isStandardOutput || ::isatty(STDOUT_FILENO) == 0) return false;
  const std::string terminal = Variable("TERM");
  return !terminal.empty() && terminal != "dumb" && Variable("NO_COLOR").empty();
}

}  // namespace cli
