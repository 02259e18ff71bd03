#include "cli/format/html/HtmlFormat.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/format/RenderOptions.h"
#include "cli/format/html/HtmlTree.h"
#include "cli/format/html/HtmlWriter.h"
#include "cli/format/html/PageAssets.h"
#include "cli/model/DeviceText.h"
#include "cli/model/UsbTree.h"

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

/// The singular name of a class in the figures.
struct Figure {
  ClassId classId;
  const char* noun;
};
constexpr Figure kFigures[] = {{ClassId::kController, "Controller"},
                               {ClassId::kHub, "Hub"},
                               {ClassId::kPort, "Port"},
                               {ClassId::kDevice, "Device"}};

bool IsLeftOut(const ItemsOfClass& ofClass) {
  return ofClass.items.empty() && ofClass.total != 0;
}

std::string NoteOnPorts(const Inventory& inventory) {
  const std::vector<Item>& ports = inventory.Ports();
  const auto used = std::count_if(ports.begin(), ports.end(), [&](const Item& port) {
    return inventory.StateOf(port) == PortState::kUsed;
  });
  const auto others = static_cast<std::ptrdiff_t>(ports.size()) - used;
  if (inventory.KnowsConnections()) return fmt::format("{} used, {} free", used, others);
  return used == 0 ? fmt::format("{} unknown", others) : fmt::format("{} used, {} unknown", used, others);
}

/// For a selection, the note gives the total.
void WriteFigure(HtmlWriter& writer, const Inventory& inventory, const Figure& figure) {
  const ItemsOfClass& ofClass = inventory.Of(figure.classId);
  const std::size_t number = ofClass.items.size();
  std::string note = figure.classId == ClassId::kPort ? NoteOnPorts(inventory) : std::string();
  if (number != ofClass.total) note = fmt::format("of {}", ofClass.total);
  writer.Open("div");
  writer.Element("dt", {}, fmt::format("{}{}", figure.noun, number == 1 ? "" : "s"));
  writer.Element("dd", {}, std::to_string(number));
  if (!note.empty()) writer.Element("dd", {{"class", "note"}}, note);
  writer.Close();
}

/// The classes that a selection left out completely.
void WriteLeftOut(HtmlWriter& writer, const Inventory& inventory) {
  std::vector<std::string> counts;
  for (const Figure& figure : kFigures) {
    const ItemsOfClass& ofClass = inventory.Of(figure.classId);
    std::string noun = figure.noun;
    noun.front() = static_cast<char>(noun.front() - 'A' + 'a');
    if (IsLeftOut(ofClass)) counts.push_back(Count(ofClass.total, noun));
  }
  if (counts.empty()) return;
  writer.Element("p", {{"class", "left-out"}},
                 fmt::format("Left out by the selection: {}", fmt::join(counts, ", ")));
}

void WriteHeader(HtmlWriter& writer, const Inventory& inventory) {
  writer.Open("header");
  writer.Open("div", {{"class", "title"}});
  writer.Element("p", {}, "USB inventory");
  writer.Element("h1", {}, inventory.SystemName());
  writer.Close();
  writer.Open("dl", {{"class", "figures"}});
  for (const Figure& figure : kFigures) {
    if (!IsLeftOut(inventory.Of(figure.classId))) WriteFigure(writer, inventory, figure);
  }
  writer.Close();
  WriteLeftOut(writer, inventory);
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
                        {"placeholder", "Name, ID, serial number, manufacturer"}});
  writer.Element("button", {{"id", "unfold"}, {"type", "button"}, {"aria-pressed", "false"}}, "All details");
  writer.Element("p", {{"id", "count"}, {"role", "status"}, {"aria-live", "polite"}}, "");
  writer.Close();
}

void WriteLegend(HtmlWriter& writer) {
  constexpr std::pair<const char*, const char*> kClasses[] = {
      {"low", "1.5 Mbit/s"}, {"full", "12 Mbit/s"}, {"high", "480 Mbit/s"}, {"super", "5 Gbit/s and above"}};
  writer.Open("ul", {{"class", "legend"}, {"aria-label", "Colours of the ports"}});
  for (const auto& [name, text] : kClasses) writer.Element("li", {{"class", name}}, text);
  writer.Element("li", {{"class", "used"}}, "used");
  writer.Element("li", {{"class", "free"}}, "free");
  writer.Close();
}

void WriteMain(HtmlWriter& writer, const Inventory& inventory, const UsbIds* names) {
  writer.Open("main");
  const UsbTree tree(inventory);
  if (tree.Nodes().empty()) {
    writer.Element("p", {{"class", "nothing"}}, "No USB device found.");
  } else {
    writer.Open("div", {{"class", "tools"}});
    WriteFilter(writer);
    WriteLegend(writer);
    writer.Close();
    writer.Open("div", {{"class", "buses"}});
    HtmlTree(writer, inventory, tree, names).Write();
    writer.Close();
  }
  writer.Close();
}

}  // namespace

std::string RenderHtml(const Inventory& inventory, const RenderOptions& options) {
  HtmlWriter writer;
  writer.Open("html", {{"lang", "en"}});
  WriteHead(writer, inventory);
  writer.Open("body");
  WriteHeader(writer, inventory);
  WriteMain(writer, inventory, options.names);
  writer.Element("footer", {}, "Made by usbinfo " USBINFO_VERSION);
  writer.Asset("script", kPageScript.text);
  writer.Close();
  writer.Close();
  return writer.Document() + "\n";
}

}  // namespace cli
