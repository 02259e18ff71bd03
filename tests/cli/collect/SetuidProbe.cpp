// A program to be made set-user-ID: prints the search path that it leaves to its commands, and what it
// answers to the module named in its argument. Its exit status is 1 where it runs without rights of its file.
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
