#include "cli/format/html/HtmlFormat.h"

#include <fmt/format.h>

#include "cli/format/RenderOptions.h"
#include "cli/format/html/HtmlControllers.h"
#include "cli/format/html/HtmlDeviceTable.h"
#include "cli/format/html/HtmlHeader.h"
#include "cli/format/html/HtmlIcons.h"
#include "cli/format/html/HtmlLines.h"
#include "cli/format/html/HtmlWriter.h"
#include "cli/format/html/PageAssets.h"

namespace cli {

namespace {

/// Nothing may be loaded or sent, and only the page's own style and script are applied.
std::string SecurityPolicy() {
  return fmt::format("default-src 'none'; style-src {}; script-src {}; base-uri 'none'; form-action 'none'",
                     kPageStyle.source, kPageScript.source);
}

void WriteHead(HtmlWriter& writer, const Inventory& inventory) {
  writer.Open("head");
  writer.Void("meta", {{"charset", "utf-8"}});
  writer.Void("meta", {{"http-equiv", "Content-Security-Policy"}, {"content", SecurityPolicy()}});
  writer.Void("meta", {{"name", "viewport"}, {"content", "width=device-width, initial-scale=1"}});
  writer.Void("meta", {{"name", "color-scheme"}, {"content", "light dark"}});
  writer.Element("title", {}, inventory.SystemName() + ": USB");
  writer.Asset("style", kPageStyle.text);
  writer.Close();
}

/// The filter needs the script, which therefore makes it visible.
void WriteFilter(HtmlWriter& writer) {
  writer.Open("div", {{"id", "filter"}, {"role", "search"}, {"hidden", ""}});
  writer.Element("label", {{"for", "words"}}, "Filter");
  writer.Void("input", {{"id", "words"},
                        {"type", "search"},
                        {"autocomplete", "off"},
                        {"spellcheck", "false"},
                        {"placeholder", "keyboard, 046d:, bus 2, free, 480"}});
  writer.Element("p", {{"id", "count"}, {"role", "status"}, {"aria-live", "polite"}}, "");
  writer.Close();
}

/// Like the filter, these need the script.
void WriteSwitches(HtmlWriter& writer, const char* noun) {
  writer.Open("div", {{"id", "switches"}, {"hidden", ""}});
  writer.Element("button", {{"id", "unfold"}, {"type", "button"}}, "All details");
  writer.Element("button", {{"id", "hide-free"}, {"type", "button"}, {"aria-pressed", "false"}},
                 fmt::format("Hide free {}", noun));
  writer.Close();
}

/// What the marks mean, of those that the page has.
void WriteLegend(HtmlWriter& writer, const SocketCounts& counts, const char* noun) {
  writer.Open("ul", {{"class", "legend"}, {"aria-label", fmt::format("Marks of the {}", noun)}});
  const bool hasUsed = counts.sockets > counts.free + counts.notUsed + counts.unknown;
  if (hasUsed) writer.Element("li", {{"class", "used"}}, "in use");
  if (counts.free != 0) writer.Element("li", {{"class", "free"}}, "free");
  if (counts.notUsed != 0) writer.Element("li", {{"class", "not-used"}}, "not used");
  if (counts.unknown != 0) writer.Element("li", {{"class", "unknown"}}, "unknown");
  writer.Close();
}

void WriteControllers(HtmlWriter& writer, const HtmlLines& lines, const UsbIds* names) {
  const char* const noun = lines.GetSockets().KnowsPeers() ? "sockets" : "ports";
  writer.Open("section", {{"id", "controllers"}, {"aria-labelledby", "controllers-title"}});
  writer.Open("div", {{"class", "heading"}});
  writer.Element("h2", {{"id", "controllers-title"}}, fmt::format("Controllers and {}", noun));
  const SocketCounts counts = lines.GetSockets().Counts();
  if (counts.sockets != 0) WriteLegend(writer, counts, noun);
  WriteSwitches(writer, noun);
  writer.Close();
  HtmlControllers(writer, lines, names).Write();
  writer.Close();
}

void WriteMain(HtmlWriter& writer, const Sockets& sockets, const RenderOptions& options) {
  writer.Open("main");
  if (sockets.Nodes().empty()) {
    writer.Element("p", {{"class", "nothing"}}, "No USB device found.");
  } else {
    const HtmlLines lines(sockets);
    WriteIcons(writer);
    WriteFilter(writer);
    HtmlDeviceTable(writer, lines, options).Write();
    WriteControllers(writer, lines, options.names);
  }
  writer.Close();
}

/// The hash distinguishes machines of the same name.
std::string MadeBy(const Inventory& inventory) {
  std::string text = "Made by usbinfo " USBINFO_VERSION;
  if (!inventory.GetOrigin()) return text;
  const Origin& origin = *inventory.GetOrigin();
  if (origin.program != "usbinfo " USBINFO_VERSION) text += " from an inventory by " + origin.program;
  if (origin.machine) text += ", machine " + *origin.machine;
  return text;
}

}  // namespace

std::string RenderHtml(const Inventory& inventory, const RenderOptions& options) {
  const Sockets sockets(inventory);
  HtmlWriter writer;
  writer.Open("html", {{"lang", "en"}});
  WriteHead(writer, inventory);
  writer.Open("body");
  WriteHeader(writer, sockets, options);
  WriteMain(writer, sockets, options);
  writer.Element("footer", {}, MadeBy(inventory));
  writer.Asset("script", kPageScript.text);
  writer.Close();
  writer.Close();
  return writer.Document() + "\n";
}

}  // namespace cli
