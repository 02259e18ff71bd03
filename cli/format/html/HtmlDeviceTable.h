// The page's table: a row for each hub and device, or for each free socket where these are asked for.
#pragma once

#include <string>
#include <vector>

#include "cli/format/html/HtmlLines.h"

namespace cli {

class HtmlWriter;
struct RenderOptions;

class HtmlDeviceTable {
 public:
  /// All must outlive this.
  HtmlDeviceTable(HtmlWriter& writer, const HtmlLines& lines, const RenderOptions& options);
  HtmlDeviceTable(const HtmlDeviceTable&) = delete;
  HtmlDeviceTable& operator=(const HtmlDeviceTable&) = delete;
  ~HtmlDeviceTable();

  /// A section with the table; nothing where there is no row.
  void Write();

 private:
  struct Column;

  std::vector<Column> Columns() const;
  const char* Title() const;
  void WriteHead();
  void WriteRow(const SocketNode& node);
  void WriteContent(const SocketNode& node, const std::string& column, const std::string& text);

  HtmlWriter& fWriter;
  const HtmlLines& fLines;
  const RenderOptions& fOptions;
  std::vector<Column> fColumns;
};

}  // namespace cli
