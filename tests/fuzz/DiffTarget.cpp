#include "tests/fuzz/DiffTarget.h"

#include <nlohmann/json.hpp>
#include <optional>

#include "cli/diff/DiffJson.h"
#include "cli/diff/DiffText.h"
#include "cli/diff/InventoryDiff.h"
#include "cli/model/FromJson.h"
#include "cli/text/UserError.h"
#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/SavedInventory.h"

using cli::Inventory;
using cli::InventoryDifference;

namespace usbinfo_test {

namespace {

/// None where the text is refused.
std::optional<Inventory> ReadInventory(const std::string& text) {
  try {
    return cli::FromJson(text, "input");
  } catch (const cli::UserError& error) {
    Require(std::string(error.what()).rfind("input ", 0) == 0, "the message names the input");
    return std::nullopt;
  }
}

/// Lines that begin as they must, without a command to the terminal: first the machines, then the items and
/// their properties, last the counts.
void CheckDiffText(const InventoryDifference& difference) {
  const std::string text = cli::RenderDiffText(difference, false);
  Require(text.empty() == difference.IsEmpty(), "a text where there is a difference");
  Require(text.empty() || text.back() == '\n', "a last line with an end");
  bool isLineStart = true;
  for (const char c : text) {
    if (isLineStart)
      Require(std::string("\"+->~ 0123456789").find(c) != std::string::npos, "how a line begins");
    isLineStart = c == '\n';
    Require(isLineStart || (static_cast<unsigned char>(c) >= 0x20 && c != 0x7F), "no control characters");
  }
}

void CheckJsonForm(const InventoryDifference& difference) {
  const auto document = nlohmann::json::parse(cli::RenderDiffJson(difference));
  RequireCount(document["added"].size(), difference.added.size(), "added items in the document");
  RequireCount(document["removed"].size(), difference.removed.size(), "removed items in the document");
  RequireCount(document["moved"].size(), difference.moved.size(), "moved items in the document");
  RequireCount(document["changed"].size(), difference.changed.size(), "changed items in the document");
}

std::size_t CountOf(const Inventory& inventory) {
  return inventory.Controllers().size() + inventory.Hubs().size() + inventory.Ports().size() +
         inventory.Devices().size();
}

void CheckAlone(const Inventory& inventory) {
  CheckSaved(inventory);
  Require(Compare(inventory, inventory).IsEmpty(), "no difference from itself");
  const Inventory nothing("");
  const InventoryDifference all = Compare(nothing, inventory);
  std::size_t reported = all.added.size();
  for (const cli::PlacedItem& item : all.added) reported += item.ports;
  RequireCount(reported, CountOf(inventory), "items that differ from nothing");
  CheckDiffText(all);
  CheckJsonForm(all);
}

void CheckTogether(const Inventory& before, const Inventory& after) {
  const InventoryDifference difference = Compare(before, after);
  const InventoryDifference mirrored = Compare(after, before);
  RequireCount(mirrored.removed.size(), difference.added.size(), "items removed the other way round");
  RequireCount(mirrored.added.size(), difference.removed.size(), "items added the other way round");
  RequireCount(mirrored.moved.size(), difference.moved.size(), "items moved the other way round");
  RequireCount(mirrored.changed.size(), difference.changed.size(), "items changed the other way round");
  CheckDiffText(difference);
  CheckJsonForm(difference);
}

}  // namespace

void CheckDiff(const std::string& text) {
  const std::size_t border = text.find('\0');
  const auto before = ReadInventory(text.substr(0, border));
  if (before) CheckAlone(*before);
  if (border == std::string::npos) return;
  const auto after = ReadInventory(text.substr(border + 1));
  if (after) CheckAlone(*after);
  if (before && after) CheckTogether(*before, *after);
}

}  // namespace usbinfo_test
