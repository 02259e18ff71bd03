#include "cli/option/Suggestion.h"

#include <algorithm>
#include <numeric>

namespace cli {

namespace {

constexpr std::size_t kFewestLettersOfABeginning = 3;

bool IsBeginning(const std::string& word, const std::string& whole) {
  return word.size() >= kFewestLettersOfABeginning && whole.compare(0, word.size(), word) == 0;
}

}  // namespace

std::size_t EditDistance(const std::string& from, const std::string& to) {
  // The distances from the processed prefix of `from` to each prefix of `to`.
  std::vector<std::size_t> distances(to.size() + 1);
  std::iota(distances.begin(), distances.end(), std::size_t{0});
  for (const char letter : from) {
    std::size_t diagonal = distances[0]++;
    for (std::size_t at = 0; at < to.size(); ++at) {
      const std::size_t replaced = diagonal + (letter == to[at] ? 0 : 1);
      diagonal = distances[at + 1];
      distances[at + 1] = std::min({replaced, diagonal + 1, distances[at] + 1});
    }
  }
  return distances.back();
}

std::string Nearest(const std::string& word, const std::vector<std::string>& words) {
  std::string nearest;
  std::size_t least = word.size() / 3 + 1;
  for (const std::string& candidate : words) {
    // Words that differ this much in length are not near, so their distance need not be computed.
    const bool mayBeNear = word.size() < candidate.size() + least;
    const std::size_t distance = IsBeginning(word, candidate) ? 0
                                 : mayBeNear                  ? EditDistance(word, candidate)
                                                              : least;
    if (distance >= least) continue;
    least = distance;
    nearest = candidate;
  }
  return nearest;
}

}  // namespace cli
