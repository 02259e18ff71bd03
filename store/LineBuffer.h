// Cuts what a program writes into lines, each as soon as it is complete.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace store {

class LineBuffer {
 public:
  /// Gets a line without its end; `isCut` where it was longer than the limit.
  using TakeLine = std::function<void(const std::string& line, bool isCut)>;

  LineBuffer(std::size_t longest, TakeLine take) : fLongest(longest), fTake(std::move(take)) {}

  /// The next part of what is written.
  void Take(std::string_view part) {
    for (std::size_t end = part.find('\n'); end != std::string_view::npos; end = part.find('\n')) {
      Append(part.substr(0, end));
      Finish();
      part.remove_prefix(end + 1);
    }
    Append(part);
  }

  /// Nothing more comes: what there is, is a line.
  void Finish() {
    const std::string line = std::exchange(fLine, {});
    fTake(line, std::exchange(fIsCut, false));
  }

  bool IsEmpty() const { return fLine.empty(); }

 private:
  void Append(std::string_view text) {
    const std::size_t room = fLongest - fLine.size();
    fIsCut = fIsCut || text.size() > room;
    fLine += text.substr(0, std::min(text.size(), room));
  }

  std::size_t fLongest;
  TakeLine fTake;
  std::string fLine;
  bool fIsCut = false;
};

}  // namespace store
