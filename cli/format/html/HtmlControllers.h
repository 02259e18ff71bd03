// The page's picture of controllers: a card for each, its hubs as rows of sockets, and what is plugged in as
// nested lists. Cards of controllers with nothing plugged in are folded into one line.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/format/html/HtmlLines.h"

namespace cli {

class HtmlWriter;
class UsbIds;

class HtmlControllers {
 public:
  /// `names` holds the names of vendors and products and may be null. All must outlive this.
  HtmlControllers(HtmlWriter& writer, const HtmlLines& lines, const UsbIds* names);

  /// The cards, the folded ones last.
  void Write();

 private:
  using RowNumbers = std::vector<std::size_t>;

  /// Side by side where there is room, about equally high, in order down each column.
  void WriteColumns(const RowNumbers& cards);
  void WriteEmpty(const RowNumbers& cards);
  std::string DescribeEmpty(const RowNumbers& cards) const;
  void WriteCard(std::size_t row);
  void WriteUnlinked(std::size_t first);
  /// How high a card is, in lines.
  std::size_t HeightOf(std::size_t card) const;

  /// The rows from `first` to before `end` that stand at the depth of the first one, with all below them.
  void WriteList(std::size_t first, std::size_t end);
  void WriteItem(std::size_t row);
  void WriteBelow(std::size_t row);
  void WriteDetails(std::size_t row);
  void WriteSummary(std::size_t row);
  void WriteName(std::size_t row);
  void WriteFacts(std::size_t row);
  void WriteSockets(const SocketNode& hub);
  void WriteSocket(const SocketNode& socket, const std::string& hubSpeed);
  void WriteMark(const SocketNode& socket, const std::string& text, const std::string& rate);

  HtmlWriter& fWriter;
  const HtmlLines& fLines;
  const Sockets& fSockets;
  const UsbIds* fNames;
};

}  // namespace cli
