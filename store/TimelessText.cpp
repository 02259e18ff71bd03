#include "store/TimelessText.h"

#include <string_view>

#include "store/ContentHash.h"

namespace store {

std::optional<TimelessText> WithoutTime(const std::string& text) {
  constexpr std::string_view kMember = R"("collected":")";
  constexpr std::size_t kTimeBytes = std::string_view("0000-00-00T00:00:00Z").size();
  const std::size_t member = text.find(kMember);
  if (member == std::string::npos) return std::nullopt;
  const std::size_t begin = member + kMember.size();
  if (text.find(kMember, begin) != std::string::npos) return std::nullopt;
  const std::optional<Seconds> time = ParseTime(text.substr(begin, kTimeBytes));
  if (!time) return std::nullopt;
  ContentHash hash;
  hash.Add(std::string_view(text).substr(0, begin));
  hash.Add(std::string_view(text).substr(begin + kTimeBytes));
  return TimelessText{hash.Text(), *time};
}

}  // namespace store
