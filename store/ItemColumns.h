// What SQL can search an item by: its own properties, and what the kernel knows of it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "cli/model/FactsByItem.h"
#include "cli/model/Inventory.h"
#include "cli/model/UsbTree.h"
#include "store/Database.h"

namespace store {

class ItemColumns {
 public:
  /// The columns of the table item that these are for, in their order.
  static const std::vector<std::string>& Names();

  /// `inventory` must outlive this.
  explicit ItemColumns(const cli::Inventory& inventory);

  /// A value for each of the names. `item` must be one of the inventory's own.
  Parameters Of(const cli::Item& item) const;
  /// The values of an item that is searched by nothing.
  static Parameters None();

 private:
  const cli::Inventory& fInventory;
  cli::FactsByItem fFacts;
  cli::UsbTree fTree;
  /// The nodes of the tree.
  std::map<const cli::Item*, const cli::UsbTreeNode*> fNodes;
};

}  // namespace store
