// An inventory as the store takes it: one machine at one time, cut into items.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/model/Inventory.h"
#include "store/Database.h"
#include "store/Section.h"
#include "store/TimeText.h"
#include "store/TimelessText.h"

namespace store {

/// An item as the store holds it.
struct StoredItem {
  Section section;
  /// Its JSON, on one line.
  std::string content;
  /// As ItemColumns gives them.
  Parameters columns;
  /// Of all of these.
  std::string hash;
};

class Report {
 public:
  /// `collected` is the time of an inventory that does not say it; `text` is what the inventory was read
  /// from. Throws Refusal where there is no time, or where the inventory is not that of a whole machine with
  /// a name.
  Report(cli::Inventory inventory, std::optional<Seconds> collected, const std::optional<TimelessText>& text);
  // Its contents point into its inventory.
  Report(const Report&) = delete;
  Report& operator=(const Report&) = delete;

  const cli::Inventory& GetInventory() const { return fInventory; }
  const std::string& HostName() const { return fInventory.SystemName(); }
  Seconds Collected() const { return fCollected; }
  /// Whether the inventory itself says when it was collected.
  bool SaysCollected() const { return fSaysCollected; }
  /// The hash of the machine's id; nothing where it is not known.
  Text Machine() const;
  /// "none", "random" or "key:" and a fingerprint; nothing where the inventory does not say.
  Text Mask() const;
  std::size_t Findings() const;
  /// The origin as JSON on one line, without the time; nothing where the inventory has none.
  const Text& OriginText() const { return fOrigin; }
  /// Of all that it says, but for the time.
  const std::string& Hash() const { return fHash; }
  /// Any other text with this hash is the same report at another time; nothing where that is not sure, or
  /// where the same report may be refused at another time.
  const Text& TextHash() const { return fTextHash; }

  /// In the order of the document.
  std::vector<StoredItem> Items() const;
  /// The document with the time, as usbinfo prints it.
  std::string Document() const;

 private:
  struct Content {
    Section section;
    std::string json;
    /// Null for what the kernel knows.
    const cli::Item* item;
  };

  void AddContents();
  std::string HashOfAll() const;

  cli::Inventory fInventory;
  Seconds fCollected = 0;
  bool fSaysCollected = false;
  Text fOrigin;
  /// Points into the inventory.
  std::vector<Content> fContents;
  std::string fHash;
  Text fTextHash;
};

}  // namespace store
