// `usbinfo-store find`: where devices are, or were.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/model/Selection.h"
#include "cli/option/CommandSpec.h"
#include "store/Clock.h"
#include "store/CommonOptions.h"

namespace store {

struct FindOptions {
  std::string database;
  ListOptions list;
  std::vector<cli::VendorProduct> ids;
  std::string serial;
  std::string kind;
  /// A part of the names of manufacturer and product.
  std::string name;
  std::optional<Moment> at;
  /// The file with the key that serial numbers are masked with; empty for none.
  std::string maskKey;
};

std::vector<cli::Option> FindOptionTable(FindOptions& options);

/// Gives the exit status. Throws UserError and DatabaseError.
int RunFind(const FindOptions& options, const Clock& clock);

}  // namespace store
