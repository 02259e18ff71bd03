#include "cli/command/Findings.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/model/Inventory.h"
#include "cli/model/OriginText.h"
#include "cli/text/Message.h"
#include "cli/text/UserError.h"

namespace cli {

namespace {

std::vector<Finding> FindingsOf(const Inventory& inventory) {
  return inventory.GetOrigin() ? inventory.GetOrigin()->findings : std::vector<Finding>();
}

}  // namespace

void WarnOfFindings(const Inventory& inventory) {
  constexpr std::size_t kMostShown = 10;
  const std::vector<Finding> findings = FindingsOf(inventory);
  const std::size_t shown = std::min(findings.size(), kMostShown);
  for (std::size_t index = 0; index < shown; ++index) {
    PrintMessage(DescribeForgery(findings[index]));
  }
  if (findings.size() > shown) {
    PrintMessage(fmt::format("the device list has {} more such places", findings.size() - shown));
  }
}

void RefuseFindings(const Inventory& inventory, const std::string& name, const std::string& verb) {
  const std::vector<Finding> findings = FindingsOf(inventory);
  if (findings.empty()) return;
  throw UserError(fmt::format("{}: {}; to {} anyway, use --allow-suspect", name,
                              DescribeForgery(findings.front()), verb));
}

}  // namespace cli
