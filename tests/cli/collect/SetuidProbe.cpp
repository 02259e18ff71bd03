// A program to be made set-user-ID: prints the search path for its commands, and its message about the module
// named in its argument. Its exit status is 1 when it runs without the rights of its file.
#include <cstdlib>
#include <iostream>

#include "cli/collect/Hardening.h"
#include "cli/collect/ModulePath.h"
#include "cli/text/UserError.h"

int main(int, char** argv) {
  if (!cli::HasRightsOfItsFile()) return EXIT_FAILURE;
  cli::ProtectSearchPath();
  std::cout << "PATH=" << std::getenv("PATH") << "\n";
  try {
    std::cout << cli::PluginModulePath(argv[1]) << "\n";
  } catch (const cli::UserError& error) {
    std::cout << error.what() << "\n";
  }
  return EXIT_SUCCESS;
}
