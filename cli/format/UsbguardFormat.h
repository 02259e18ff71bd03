// The policy that allows exactly the devices of an inventory, in USBGuard's rule language.
#pragma once

#include <string>

namespace cli {

class Inventory;
struct RenderOptions;

/// A rule for each hub and device, in ASCII. A device without a serial number is allowed in its port alone.
/// Throws UserError where serial numbers are masked or interfaces are not known, since the rules would not
/// hold.
std::string RenderUsbguard(const Inventory& inventory, const RenderOptions& options);

}  // namespace cli
