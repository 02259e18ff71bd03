#include "cli/policy/PolicyFile.h"

#include "cli/policy/PolicyParser.h"
#include "cli/text/Input.h"

namespace cli {

Policy ReadPolicy(const std::string& path, const std::string& defaultTarget) {
  Policy policy = ParsePolicy(ReadInput(path, "name a file that holds a policy"), NameOfList(path));
  policy.defaultTarget =
      defaultTarget == NameOf(PolicyTarget::kAllow) ? PolicyTarget::kAllow : PolicyTarget::kBlock;
  return policy;
}

}  // namespace cli
