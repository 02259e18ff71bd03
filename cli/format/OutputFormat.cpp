#include "cli/format/OutputFormat.h"

#include <algorithm>

#include "cli/format/CimXmlFormat.h"
#include "cli/format/DotFormat.h"
#include "cli/format/JsonFormat.h"
#include "cli/format/JsonLinesFormat.h"
#include "cli/format/MofFormat.h"
#include "cli/format/TableFormat.h"
#include "cli/format/TreeFormat.h"
#include "cli/format/html/HtmlFormat.h"

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
