#include "cli/collect/ModulePath.h"

#include <fmt/format.h>

#include <filesystem>

#include "cli/collect/Hardening.h"
#include "cli/text/UserError.h"

namespace cli {

namespace fs = std::filesystem;

namespace {

/// The folder of the program. Never a relative path, since the caller chooses the current folder.
fs::path FolderOfProgram(const std::string& program) {
  std::error_code error;
  fs::path folder = fs::read_symlink(program, error).parent_path();
  if (folder.is_absolute()) return folder;
  throw UserError(
      fmt::format("cannot find the plug-in: {}: {}; mount /proc, or name the module with --plugin FILE",
                  program, error ? error.message() : "no absolute path"));
}

}  // namespace

std::string PluginModulePath(const std::string& named) {
  if (named.empty()) return FindPluginModule();
  if (HasRightsOfItsFile()) {
    throw UserError(
        "--plugin is refused to a program with set-user-ID, set-group-ID or capabilities; leave it out");
  }
  std::error_code error;
  const fs::path path = fs::absolute(named, error);
  if (!error) return path;
  throw UserError(
      fmt::format("cannot find the plug-in {}: the current folder: {}; name an absolute path with --plugin",
                  named, error.message()));
}

std::string FindPluginModule(const std::string& program) {
  const char* const name = "usbinfo-plugin.so";
  const fs::path folder = FolderOfProgram(program);
  // The installed folder relative to the command's.
  const fs::path installed = (folder / USBINFO_MODULE_DIR / name).lexically_normal();
  std::error_code error;
  for (const fs::path& candidate : {folder / name, installed}) {
    if (fs::exists(candidate, error)) return candidate;
  }
  throw UserError(fmt::format("no plug-in: {} is neither in {} nor in {}; name it with --plugin FILE", name,
                              folder.string(), installed.parent_path().string()));
}

}  // namespace cli
