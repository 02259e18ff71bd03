// An inventory read back from its JSON form, schema "usbinfo.inventory/1": what compares inventories reads
// this and nothing else. The document may have been cut, edited or made up, so all of it is checked first.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace cli {

enum class ItemKind { kController, kHub, kPort, kDevice };

/// A controller, hub, port or device with the properties that its document has.
struct SavedItem {
  ItemKind kind;
  /// An object: name to text, number or list of texts.
  nlohmann::json properties;

  /// The text of that name; empty when the item lacks it.
  std::string Text(const std::string& name) const;
  /// The number of that name; 0 when the item lacks it.
  std::uint64_t Number(const std::string& name) const;
};

/// The class that items of the kind are instances of.
std::string ClassOf(ItemKind kind);

/// The object path of the item, as links name it.
std::string PathOf(const SavedItem& item);

/// An association: both ends as the text of an object path.
struct SavedLink {
  std::string antecedent;
  std::string dependent;
};

struct SavedInventory {
  std::string systemName;
  /// Controllers, hubs, ports, devices, each in the document's order.
  std::vector<SavedItem> items;
  /// Of ports on hubs, then of what is plugged in.
  std::vector<SavedLink> links;
};

/// True when `text` is to be taken for JSON: its first byte that is no blank opens an object.
bool LooksLikeJson(const std::string& text);

/// The inventory that `text` holds; `name` is what messages call it. Throws UserError when it is no inventory
/// of that schema: a member missing, unknown, named twice or of another type or range.
SavedInventory ReadSavedInventory(const std::string& text, const std::string& name);

}  // namespace cli
