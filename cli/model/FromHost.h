// An inventory read from the stand-in host, after a plug-in has served it.
#pragma once

#include <string>
#include <vector>

#include "cli/model/Inventory.h"

namespace standin {
class Host;
}

namespace cli {

/// What `host` holds now. `requested` names the classes that the plug-in was asked for, in order: a port's
/// state is known only when the connections were requested after the classes that they link.
Inventory FromHost(const standin::Host& host, const std::vector<std::string>& requested);

}  // namespace cli
