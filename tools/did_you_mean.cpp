#include "tools/did_you_mean.h"

#include <algorithm>

namespace tool {
namespace {

// Steps from one word to the other; a step adds, drops or changes a letter or exchanges two
// neighbours.
size_t distance(const std::string& a, const std::string& b) {
  const size_t columns = b.size() + 1;
  std::vector<size_t> steps((a.size() + 1) * columns);
  const auto at = [&](size_t i, size_t j) -> size_t& { return steps[i * columns + j]; };
  for (size_t i = 0; i <= a.size(); ++i) {
    for (size_t j = 0; j <= b.size(); ++j) {
      if (i == 0 || j == 0) {
        at(i, j) = i + j;
        continue;
      }
      const size_t change = at(i - 1, j - 1) + (a[i - 1] == b[j - 1] ? 0 : 1);
      at(i, j) = std::min({at(i - 1, j) + 1, at(i, j - 1) + 1, change});
      const bool exchanged = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (exchanged) at(i, j) = std::min(at(i, j), at(i - 2, j - 2) + 1);
    }
  }
  return steps.back();
}

}  // namespace

std::string did_you_mean(const std::string& word, const std::vector<std::string>& known) {
  const std::string* nearest = nullptr;
  size_t least = std::max<size_t>(word.size() / 3, 1) + 1;
  for (const std::string& candidate : known) {
    const size_t steps = distance(word, candidate);
    if (steps >= least) continue;
    least = steps;
    nearest = &candidate;
  }
  return nearest == nullptr ? "" : "; did you mean " + *nearest + "?";
}

}  // namespace tool
