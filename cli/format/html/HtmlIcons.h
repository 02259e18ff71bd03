// The page's icons: a drawing for each kind of device, defined once and shown by reference.
#pragma once

#include <string>

namespace cli {

class HtmlWriter;

/// Defines the drawings; needed once in a page with icons.
void WriteIcons(HtmlWriter& writer);

/// Shows the drawing for the first of `kinds`, "keyboard, mouse"; writes nothing where there is none.
void WriteIcon(HtmlWriter& writer, const std::string& kinds);

}  // namespace cli
