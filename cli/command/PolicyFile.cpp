#include "cli/command/PolicyFile.h"

#include "cli/collect/Input.h"
#include "cli/policy/PolicyParser.h"

namespace cli {

Policy ReadPolicy(const std::string& path) {
  return ParsePolicy(ReadInput(path, "name a file that holds a policy"), NameOfList(path));
}

}  // namespace cli
