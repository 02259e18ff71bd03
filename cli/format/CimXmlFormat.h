// The inventory as a CIM-XML declaration (DSP0201 and DSP0203): typed properties and key bindings, references
// as local instance paths.
#pragma once

#include <string>

namespace cli {

class Inventory;
struct RenderOptions;

/// One CIM document with every instance as a VALUE.NAMEDOBJECT of the namespace.
std::string RenderCimXml(const Inventory& inventory, const RenderOptions& options);

}  // namespace cli
