#include "cli/format/html/HtmlHeader.h"

#include <fmt/format.h>

#include "cli/format/RenderOptions.h"
#include "cli/format/html/HtmlWriter.h"
#include "cli/model/OriginText.h"
#include "cli/model/SocketText.h"

namespace cli {

namespace {

void WriteFact(HtmlWriter& writer, const char* label, const std::string& value) {
  writer.Open("div");
  writer.Element("dt", {}, label);
  writer.Element("dd", {}, value);
  writer.Close();
}

/// "everything", or the options by which the rest was left out.
std::string ShownPart(const Inventory& inventory, const RenderOptions& options) {
  std::vector<std::string> given;
  if (inventory.GetOrigin() && inventory.GetOrigin()->selection) {
    given = OptionsOf(*inventory.GetOrigin()->selection);
  }
  if (options.isOccupiedOnly) given.emplace_back("--occupied");
  if (options.listsFreeSockets) given.emplace_back("--free");
  if (!given.empty()) return fmt::format("only what is selected by {}", fmt::join(given, " "));
  return inventory.IsPartial() ? "a part" : "everything";
}

void WriteFindings(HtmlWriter& writer, const std::vector<Finding>& findings) {
  if (findings.empty()) return;
  writer.Open("ul", {{"class", "findings"}, {"aria-label", "Warnings"}});
  for (const Finding& finding : findings) {
    writer.Element(
        "li", {},
        fmt::format("The kernel does not write {}. A device may have forged this.", Describe(finding)));
  }
  writer.Close();
}

void WriteOrigin(HtmlWriter& writer, const Inventory& inventory, const RenderOptions& options) {
  const std::optional<Origin>& origin = inventory.GetOrigin();
  writer.Open("dl", {{"class", "facts"}});
  WriteFact(writer, "Collected", origin ? TimeOf(*origin) : "not known");
  WriteFact(writer, "From", origin ? SourceOf(*origin) : "not known");
  WriteFact(writer, "Serial numbers", origin ? MaskingOf(*origin) : "not known whether masked");
  WriteFact(writer, "Shown", ShownPart(inventory, options));
  if (origin) {
    for (const Repair& repair : origin->repairs) WriteFact(writer, "Repaired", Describe(repair));
  }
  writer.Close();
}

}  // namespace

void WriteHeader(HtmlWriter& writer, const Sockets& sockets, const RenderOptions& options) {
  const Inventory& inventory = sockets.GetInventory();
  writer.Open("header");
  writer.Element("p", {{"class", "title"}}, "USB inventory");
  writer.Element("h1", {}, inventory.SystemName());
  writer.Element("p", {{"class", "counts"}}, CountsOf(sockets));
  WriteOrigin(writer, inventory, options);
  if (inventory.GetOrigin()) WriteFindings(writer, inventory.GetOrigin()->findings);
  writer.Close();
}

}  // namespace cli
