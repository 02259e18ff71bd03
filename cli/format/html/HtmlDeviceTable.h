// The page's table: a row for each hub and device, or for each free socket where these are asked for.
#pragma once

#include <vector>

#include "cli/format/html/HtmlLines.h"

namespace cli {

class HtmlWriter;
struct RenderOptions;

class HtmlDeviceTable {
 public:
  /// All must outlive this.
  HtmlDeviceTable(HtmlWriter& writer, const HtmlLines& lines, const RenderOptions& options);

  /// A section with the table; nothing where there is no row.
  void Write();

 private:
  struct Column;

  static const std::vector<Column>& Columns();
  bool HasColumn(const Column& column) const;
  const char* Title() const;
  void WriteHead();
  void WriteRow(const SocketNode& node);
  void WriteCell(const SocketNode& node, const Column& column);
  void WriteName(const SocketNode& node, const std::string& name);

  HtmlWriter& fWriter;
  const HtmlLines& fLines;
  const RenderOptions& fOptions;
};

}  // namespace cli
