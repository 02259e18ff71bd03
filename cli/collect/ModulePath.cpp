// Finding the module; see the header. USBINFO_MODULE_DIR is the installed folder relative to the command's.
#include "cli/collect/ModulePath.h"

#include <fmt/format.h>

#include <filesystem>

#include "cli/text/UserError.h"

namespace cli {

std::string FindPluginModule() {
  namespace fs = std::filesystem;
  const char* const name = "usbinfo-plugin.so";
  std::error_code error;
  const fs::path folder = fs::read_symlink("/proc/self/exe", error).parent_path();
  const fs::path installed = (folder / USBINFO_MODULE_DIR / name).lexically_normal();
  for (const fs::path& candidate : {folder / name, installed}) {
    if (fs::exists(candidate, error)) return candidate;
  }
  throw UserError(fmt::format("no plug-in: {} is neither in {} nor in {}; name it with --plugin FILE", name,
                              folder.string(), installed.parent_path().string()));
}

}  // namespace cli
