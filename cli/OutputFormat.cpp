// The list of output formats; see the header.
#include "cli/OutputFormat.h"

#include <algorithm>

#include "cli/CimXmlFormat.h"
#include "cli/DotFormat.h"
#include "cli/HtmlFormat.h"
#include "cli/JsonFormat.h"
#include "cli/JsonLinesFormat.h"
#include "cli/MofFormat.h"
#include "cli/TableFormat.h"
#include "cli/TreeFormat.h"

namespace cli {

const std::vector<OutputFormat>& OutputFormats() {
  static const std::vector<OutputFormat> formats = {
      {"tree", false, RenderTree, true, true},
      {"table", false, RenderTable, false, true},
      {"json", true, RenderJson},
      {"jsonl", true, RenderJsonLines},
      {"cimxml", true, RenderCimXml},
      {"mof", true, RenderMof},
      {"dot", true, RenderDot, true},
      {"html", true, RenderHtml, true, true},
  };
  return formats;
}

const OutputFormat& FindOutputFormat(const std::string& name) {
  const auto& formats = OutputFormats();
  return *std::find_if(formats.begin(), formats.end(),
                       [&name](const OutputFormat& format) { return format.name == name; });
}

}  // namespace cli
