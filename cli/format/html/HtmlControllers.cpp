#include "cli/format/html/HtmlControllers.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <string_view>

#include "cli/format/html/HtmlIcons.h"
#include "cli/format/html/HtmlWriter.h"
#include "cli/model/DeviceText.h"
#include "cli/model/Identifier.h"
#include "cli/model/NodeFacts.h"
#include "cli/model/SocketText.h"

namespace cli {

namespace {

const char* StyleOf(ClassId classId) {
  constexpr const char* kStyles[] = {"controller", "hub", "port", "device"};
  return kStyles[static_cast<std::size_t>(classId)];
}

const char* StyleOf(SocketState state) {
  constexpr const char* kStyles[] = {"unknown", "free", "used", "not-used"};
  return kStyles[static_cast<std::size_t>(state)];
}

/// "480M" for "480 Mbit/s", short enough for a socket.
std::string ShortSpeed(const std::string& speed) {
  const std::size_t blank = speed.find(' ');
  return blank == std::string::npos ? speed : speed.substr(0, blank) + speed[blank + 1];
}

/// The number of a socket on its hub: the end of the kernel's name, else as the device list counts.
std::string NumberOf(const SocketNode& socket) {
  const std::size_t end = socket.name.find_last_of("-.");
  if (end != std::string::npos) return socket.name.substr(end + 1);
  return std::string(PortOf(socket.GetItem().String(PropertyId::kDeviceID)));
}

/// Facts that nobody looks a device up by.
bool IsSearched(std::string_view label) {
  static const std::set<std::string_view> others = {
      "Configurations", "USB version", "Revision", "Ports", "Sockets", "DeviceID", "Power", "Other half"};
  return others.count(label) == 0;
}

/// Facts that are read character by character.
bool IsCode(std::string_view label) {
  static const std::set<std::string_view> codes = {"Identifier", "Serial number", "Place", "Device files",
                                                   "DeviceID"};
  return codes.count(label) != 0;
}

HtmlWriter::Attributes StyleOf(const NodeFact& fact) {
  HtmlWriter::Attributes attributes;
  if (IsCode(fact.label)) attributes.emplace_back("class", "code");
  if (IsSearched(fact.label)) attributes.emplace_back("data-find", "");
  return attributes;
}

}  // namespace

HtmlControllers::HtmlControllers(HtmlWriter& writer, const HtmlLines& lines, const UsbIds* names)
    : fWriter(writer), fLines(lines), fSockets(lines.GetSockets()), fNames(names) {}

void HtmlControllers::Write() {
  RowNumbers cards;
  RowNumbers empty;
  std::size_t row = 0;
  const std::size_t end = fLines.Rows().size();
  for (; row < end && fLines.NodeAt(row).Class() == ClassId::kController; row = fLines.EndOf(row)) {
    (fLines.IsEmptyController(row) ? empty : cards).push_back(row);
  }
  WriteColumns(cards);
  if (!empty.empty()) WriteEmpty(empty);
  if (row < end) WriteUnlinked(row);
}

void HtmlControllers::WriteColumns(const RowNumbers& cards) {
  if (cards.empty()) return;
  std::size_t total = 0;
  for (const std::size_t card : cards) total += HeightOf(card);
  std::size_t before = 0;
  bool isFirstColumn = true;
  fWriter.Open("div", {{"class", "columns"}});
  fWriter.Open("div", {{"class", "column"}});
  for (const std::size_t card : cards) {
    const std::size_t height = HeightOf(card);
    // The middle of the first card of the second column is below that of the whole.
    if (isFirstColumn && before != 0 && 2 * before + height > total) {
      isFirstColumn = false;
      fWriter.Close();
      fWriter.Open("div", {{"class", "column"}});
    }
    before += height;
    WriteCard(card);
  }
  fWriter.Close();
  fWriter.Close();
}

void HtmlControllers::WriteEmpty(const RowNumbers& cards) {
  fWriter.Open("details", {{"class", "empty"}});
  fWriter.Element("summary", {}, DescribeEmpty(cards));
  WriteColumns(cards);
  fWriter.Close();
}

std::string HtmlControllers::DescribeEmpty(const RowNumbers& cards) const {
  std::vector<std::string> places;
  std::size_t free = 0;
  for (const std::size_t card : cards) {
    places.push_back(PlaceOf(fLines.NodeAt(card), true));
    const std::size_t end = fLines.EndOf(card);
    for (std::size_t row = card + 1; row < end; ++row) {
      if (fLines.NodeAt(row).state == SocketState::kFree) ++free;
    }
  }
  return fmt::format("{} with nothing plugged in: {} ({})", Count(cards.size(), "controller"),
                     fmt::join(places, ", "),
                     Count(free, fSockets.KnowsPeers() ? "free socket" : "free port"));
}

std::size_t HtmlControllers::HeightOf(std::size_t card) const {
  constexpr std::size_t kFrame = 3;
  std::size_t height = kFrame;
  const std::size_t end = fLines.EndOf(card);
  for (std::size_t row = card + 1; row < end; ++row) {
    if (fLines.IsMark(row)) continue;
    height += fLines.Shown(fLines.NodeAt(row)).Class() == ClassId::kHub ? 2U : 1U;
  }
  return height;
}

void HtmlControllers::WriteCard(std::size_t row) {
  const SocketNode& node = fLines.NodeAt(row);
  const std::string anchor = fLines.AnchorOf(node);
  fWriter.Open("section", {{"class", "bus item"},
                           {"id", anchor},
                           {"aria-labelledby", anchor + "h"},
                           {"data-bus", BusesOf(node)}});
  WriteDetails(row);
  WriteBelow(row);
  fWriter.Close();
}

void HtmlControllers::WriteUnlinked(std::size_t first) {
  fWriter.Open("section", {{"class", "bus unlinked"}, {"aria-labelledby", "unlinked"}});
  fWriter.Element("h3", {{"id", "unlinked"}},
                  fSockets.GetInventory().IsPartial() ? "Selected" : "Linked to no controller");
  WriteList(first, fLines.Rows().size());
  fWriter.Close();
}

void HtmlControllers::WriteList(std::size_t first, std::size_t end) {
  fWriter.Open("ul", {{"class", "items"}});
  for (std::size_t row = first; row < end; row = fLines.EndOf(row)) {
    if (!fLines.IsMark(row)) WriteItem(row);
  }
  fWriter.Close();
}

void HtmlControllers::WriteItem(std::size_t row) {
  const SocketNode& node = fLines.NodeAt(row);
  fWriter.Open("li", {{"class", fmt::format("item {}", StyleOf(fLines.Shown(node).Class()))},
                      {"id", fLines.AnchorOf(node)},
                      {"data-bus", BusesOf(fLines.Shown(node))}});
  WriteDetails(row);
  WriteBelow(row);
  fWriter.Close();
}

void HtmlControllers::WriteBelow(std::size_t row) {
  WriteSockets(fLines.Shown(fLines.NodeAt(row)));
  const std::size_t end = fLines.EndOf(row);
  bool hasItems = false;
  for (std::size_t below = row + 1; below < end && !hasItems; ++below) hasItems = !fLines.IsMark(below);
  if (hasItems) WriteList(row + 1, end);
}

void HtmlControllers::WriteDetails(std::size_t row) {
  fWriter.Open("details");
  WriteSummary(row);
  WriteFacts(row);
  fWriter.Close();
}

void HtmlControllers::WriteSummary(std::size_t row) {
  const SocketNode& node = fLines.NodeAt(row);
  const SocketNode& shown = fLines.Shown(node);
  const bool isController = node.Class() == ClassId::kController;
  const std::string place = PlaceOf(node, fLines.Rows()[row].depth == 0);
  fWriter.Open("summary");
  if (isController) {
    fWriter.Open("h3", {{"id", fLines.AnchorOf(node) + "h"}});
  } else {
    WriteIcon(fWriter, KindOf(shown));
  }
  fWriter.Element("span", {{"class", "place"}, {"data-find", ""}}, place);
  fWriter.Text(" ");
  WriteName(row);
  if (isController) fWriter.Close();
  const std::string id = FormatId(shown.GetItem());
  if (!id.empty()) fWriter.Element("span", {{"class", "identifier"}, {"data-find", ""}}, id);
  const std::string speed = SpeedOf(fSockets, shown);
  if (!speed.empty()) fWriter.Element("span", {{"class", "speed"}, {"data-find", ""}}, speed);
  fWriter.Close();
}

void HtmlControllers::WriteName(std::size_t row) {
  const SocketNode& node = fLines.NodeAt(row);
  const SocketNode& shown = fLines.Shown(node);
  const bool isDescribed = shown.Class() == ClassId::kHub || shown.Class() == ClassId::kDevice;
  fWriter.Open("span", {{"class", "name"}});
  fWriter.Element("span", {{"data-find", ""}}, NameOf(shown));
  const std::string known = isDescribed && ProductOf(shown).empty() ? KnownAs(shown.GetItem(), fNames) : "";
  if (!known.empty()) {
    fWriter.Text(" ");
    fWriter.Element("span", {{"class", "known"}, {"data-find", ""}}, known);
  }
  if (shown.Class() == ClassId::kHub) {
    fWriter.Text(" ");
    fWriter.Element("span", {{"class", "hub-sockets"}}, SocketsOf(fSockets, shown));
  }
  if (node.isHardwired) {
    fWriter.Text(" ");
    fWriter.Element("span", {{"class", "hardwired"}, {"data-find", ""}}, "hard-wired");
  }
  fWriter.Close();
}

void HtmlControllers::WriteFacts(std::size_t row) {
  fWriter.Open("dl", {{"class", "facts"}});
  for (const NodeFact& fact : FactsOf(fSockets, fLines.Shown(fLines.NodeAt(row)), fNames)) {
    fWriter.Open("div");
    fWriter.Element("dt", {}, fact.label);
    fWriter.Element("dd", StyleOf(fact), fact.value);
    fWriter.Close();
  }
  fWriter.Close();
}

void HtmlControllers::WriteSockets(const SocketNode& hub) {
  const auto isSocket = [this](std::size_t node) { return fSockets.Nodes()[node].Class() == ClassId::kPort; };
  if (std::none_of(hub.children.begin(), hub.children.end(), isSocket)) return;
  const std::string name = hub.IsRootHub() ? PlaceOf(hub, false) : NameOf(hub);
  const char* const noun = fSockets.KnowsPeers() ? "Sockets" : "Ports";
  fWriter.Open("ul", {{"class", "sockets"}, {"aria-label", fmt::format("{} of {}", noun, name)}});
  const std::string speed = SpeedOf(fSockets, hub);
  for (const std::size_t child : hub.children) {
    if (isSocket(child)) WriteSocket(fSockets.Nodes()[child], speed);
  }
  fWriter.Close();
}

void HtmlControllers::WriteSocket(const SocketNode& socket, const std::string& hubSpeed) {
  const bool isUsed = socket.state == SocketState::kUsed || !socket.children.empty();
  const std::string speed = SpeedOf(fSockets, socket);
  std::string text = fmt::format("{}: {}", PlaceOf(socket, false), NameOf(fLines.Shown(socket)));
  if (!speed.empty()) text += ", " + speed;
  if (socket.isHardwired) text += ", hard-wired";
  HtmlWriter::Attributes attributes = {
      {"class", fmt::format("socket {}", isUsed ? "used" : StyleOf(socket.state))}};
  if (!isUsed)
    attributes.insert(attributes.end(), {{"id", fLines.AnchorOf(socket)}, {"data-bus", BusesOf(socket)}});
  fWriter.Open("li", attributes);
  if (isUsed) {
    fWriter.Open("a", {{"title", text}, {"href", "#" + fLines.AnchorOf(socket)}});
  } else {
    fWriter.Open("span", {{"title", text}});
  }
  WriteMark(socket, text, speed == hubSpeed ? std::string() : ShortSpeed(speed));
  fWriter.Close();
  fWriter.Close();
}

void HtmlControllers::WriteMark(const SocketNode& socket, const std::string& text, const std::string& rate) {
  fWriter.Element("span", {{"class", "number"}, {"aria-hidden", "true"}}, NumberOf(socket));
  if (!rate.empty()) fWriter.Element("span", {{"class", "rate"}, {"aria-hidden", "true"}}, rate);
  fWriter.Element("span", {{"class", "unseen"}}, text);
}

}  // namespace cli
