#include "cli/format/html/HtmlIcons.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <string_view>

#include "cli/format/html/HtmlWriter.h"

namespace cli {

namespace {

struct Drawing {
  std::string_view kind;
  /// Lines on a square of 24 units.
  const char* path;
};

constexpr Drawing kDrawings[] = {
    {"hub",
     "M9.5 3h5v5h-5zM3 16h4.5v4.5H3zM9.75 16h4.5v4.5h-4.5zM16.5 16H21v4.5h-4.5z"
     "M12 8v8M5.25 16v-4h13.5v4"},
    {"keyboard", "M2.5 6.5h19v11h-19zM6 10h.01M9 10h.01M12 10h.01M15 10h.01M18 10h.01M7.5 14h9"},
    {"mouse", "M6.5 9.5a5.5 5.5 0 0 1 11 0v5a5.5 5.5 0 0 1-11 0zM12 4v6"},
    {"input", "M5 3.5 19.5 11l-6.3 1.9L10.5 19z"},
    {"mass storage", "M3 14 6.5 5h11L21 14v5H3zM3 14h18M17 16.5h.01M14 16.5h.01"},
    {"audio", "M3.5 15v-3a8.5 8.5 0 0 1 17 0v3M3.5 14H7v6.5H3.5zM17 14h3.5v6.5H17z"},
    {"video", "M2.5 7H15v10H2.5zM15 11.5 21.5 8v8L15 12.5"},
    {"printer", "M7 8.5v-5h10v5M7 17H3V8.5h18V17h-4M7 13.5h10v7H7z"},
    {"scanner/camera", "M2.5 7.5h5L9 4.5h6l1.5 3h5v12h-19zM15.5 13a3.5 3.5 0 1 1-7 0 3.5 3.5 0 0 1 7 0z"},
    {"network", "M3 3.5h18v17H3zM6.5 16.5v-6H9v-3h6v3h2.5v6zM10 16.5v-2M14 16.5v-2"},
    {"serial",
     "M2.5 7.5h19l-2.5 9H5zM7.5 10.5h.01M10.5 10.5h.01M13.5 10.5h.01M16.5 10.5h.01M9 13.5h.01"
     "M12 13.5h.01M15 13.5h.01"},
    {"modem", "M2.5 13h19v6.5h-19zM6 16.25h.01M9 16.25h.01M17.5 13V4M14.5 7l3-3 3 3"},
    {"smart card", "M2.5 5.5h19v13h-19zM6 9.5h4.5v5H6zM14.5 14.5h3.5"},
    {"wireless", "M12 18.5h.01M8.3 14.8a5.2 5.2 0 0 1 7.4 0M5 11.5a9.9 9.9 0 0 1 14 0"},
    {"bluetooth", "M6.5 7.5 17 16.5l-5 4v-17l5 4-10.5 9"},
    {"vendor-specific",
     "M7 7h10v10H7zM10 7V3.5M14 7V3.5M10 20.5V17M14 20.5V17M7 10H3.5M7 14H3.5M20.5 10H17"
     "M20.5 14H17"},
    {"other", "M9 3v5M15 3v5M6 8h12v3.5a6 6 0 0 1-12 0zM12 17.5V21"}};

/// "kind-mass-storage".
std::string IdOf(const Drawing& drawing) {
  std::string name = "kind-" + std::string(drawing.kind);
  const auto isNoLetter = [](unsigned char c) { return std::isalpha(c) == 0; };
  std::replace_if(name.begin(), name.end(), isNoLetter, '-');
  return name;
}

}  // namespace

void WriteIcons(HtmlWriter& writer) {
  writer.Open("svg", {{"class", "unseen"}, {"aria-hidden", "true"}});
  for (const Drawing& drawing : kDrawings) {
    writer.Open("symbol", {{"id", IdOf(drawing)}, {"viewBox", "0 0 24 24"}});
    writer.Void("path", {{"d", drawing.path}});
    writer.Close();
  }
  writer.Close();
}

void WriteIcon(HtmlWriter& writer, const std::string& kinds) {
  const std::string_view first = std::string_view(kinds).substr(0, kinds.find(", "));
  const auto* const drawing = std::find_if(std::begin(kDrawings), std::end(kDrawings),
                                           [first](const Drawing& each) { return each.kind == first; });
  if (drawing == std::end(kDrawings)) return;
  writer.Open("svg", {{"class", "icon"}, {"aria-hidden", "true"}});
  writer.Void("use", {{"href", "#" + IdOf(*drawing)}});
  writer.Close();
}

}  // namespace cli
