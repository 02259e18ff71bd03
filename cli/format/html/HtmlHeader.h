// The top of the page: the machine, when and from where the inventory was collected, and what was left out,
// masked, repaired or looks forged.
#pragma once

namespace cli {

class HtmlWriter;
class Sockets;
struct RenderOptions;

void WriteHeader(HtmlWriter& writer, const Sockets& sockets, const RenderOptions& options);

}  // namespace cli
