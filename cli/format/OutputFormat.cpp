#include "cli/format/OutputFormat.h"

#include <algorithm>

#include "cli/format/CimXmlFormat.h"
#include "cli/format/CsvFormat.h"
#include "cli/format/DotFormat.h"
#include "cli/format/JsonFormat.h"
#include "cli/format/JsonLinesFormat.h"
#include "cli/format/ListFormat.h"
#include "cli/format/MofFormat.h"
#include "cli/format/PrometheusFormat.h"
#include "cli/format/TableFormat.h"
#include "cli/format/TreeFormat.h"
#include "cli/format/UsbguardFormat.h"
#include "cli/format/html/HtmlFormat.h"

namespace cli {

const std::vector<OutputFormat>& OutputFormats() {
  static const std::vector<OutputFormat> formats = {
      {"tree", "a tree of controllers, hubs, ports and devices", false, RenderTree, true, true, true},
      {"table", "a table of devices; with --class, of instances", false, RenderTable, false, true, true},
      {"json", "one JSON object with all classes", true, RenderJson, false, false, false, true},
      {"jsonl", "JSON Lines, one object per instance", true, RenderJsonLines},
      {"csv", "comma-separated values, one line per device", true, RenderCsv, false, false, true},
      {"cimxml", "a CIM-XML declaration", true, RenderCimXml},
      {"mof", "class declarations and instances in the Managed Object Format", true, RenderMof},
      {"dot", "a graph for dot(1)", true, RenderDot, true, false, true},
      {"html", "an HTML page in one file", true, RenderHtml, true, true, true, true},
      {"list", "the device list itself", true, RenderList, false, false, false, false,
       "the whole device list"},
      {"usbguard", "a policy that allows these devices, for check and USBGuard", true, RenderUsbguard, true,
       false, false, true},
      {"prometheus", "metrics for Prometheus' node exporter", true, RenderPrometheus, false, false, false,
       true, "the counts of a whole machine"},
  };
  return formats;
}

const OutputFormat& FindOutputFormat(const std::string& name) {
  const auto& formats = OutputFormats();
  return *std::find_if(formats.begin(), formats.end(),
                       [&name](const OutputFormat& format) { return format.name == name; });
}

}  // namespace cli
