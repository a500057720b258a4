#include "cli/likely_word.h"

#include <algorithm>

namespace tarnwick::cli {

namespace {

constexpr size_t LettersAMistake = 3;  // one mistake in as many letters is a slip

/// How many letters must be left out, added, changed or swapped with their neighbour to make `b` of `a`.
size_t Distance(const std::string& a, const std::string& b) {
  std::vector<std::vector<size_t>> cost(a.size() + 1, std::vector<size_t>(b.size() + 1));
  for (size_t i = 0; i <= a.size(); ++i) {
    for (size_t j = 0; j <= b.size(); ++j) {
      if (i == 0 || j == 0) {
        cost[i][j] = i + j;
        continue;
      }
      const size_t change = a[i - 1] == b[j - 1] ? 0 : 1;
      cost[i][j] = std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1, cost[i - 1][j - 1] + change});
      const bool isSwapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (isSwapped) cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
    }
  }
  return cost[a.size()][b.size()];
}

}  // namespace

std::string LikelyWord(const std::string& typed, const std::vector<std::string>& words) {
  constexpr size_t LongestTyped = 64;  // what is longer is a path
  if (typed.size() > LongestTyped) return {};
  std::string likely;
  size_t least = typed.size() / LettersAMistake + 1;  // one more than is taken
  for (const std::string& word : words) {
    const size_t distance = Distance(typed, word);
    if (distance >= least) continue;
    least = distance;
    likely = word;
  }
  return likely;
}

}  // namespace tarnwick::cli
