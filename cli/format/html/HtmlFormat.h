// The inventory as a page for a browser: one file that loads nothing else and works with or without scripts
// and in print.
#pragma once

#include <string>

namespace cli {

class Inventory;
struct RenderOptions;

/// A document in UTF-8, HTML and well-formed XML at once. An empty inventory gives a page that says so.
std::string RenderHtml(const Inventory& inventory, const RenderOptions& options);

}  // namespace cli
