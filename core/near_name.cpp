#include "core/near_name.h"

#include <algorithm>
#include <array>

#include "core/paths.h"

namespace tarnwick::core {

namespace {

/// Longer names are not compared: no one mistypes them.
constexpr size_t LongestNearName = 64;

/// Inserted, dropped, changed and swapped letters between two names of at most LongestNearName letters.
size_t LettersBetween(std::string_view a, std::string_view b) {
  std::array<std::array<size_t, LongestNearName + 1>, 3> rows;  // the row before last, the last, this one
  for (size_t j = 0; j <= b.size(); ++j) rows[1][j] = j;
  for (size_t i = 1; i <= a.size(); ++i) {
    rows[2][0] = i;
    for (size_t j = 1; j <= b.size(); ++j) {
      size_t best = rows[1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      best = std::min({best, rows[1][j] + 1, rows[2][j - 1] + 1});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) best = std::min(best, rows[0][j - 2] + 1);
      rows[2][j] = best;
    }
    std::rotate(rows.begin(), rows.begin() + 1, rows.end());
  }
  return rows[1][b.size()];
}

}  // namespace

NearName::NearName(std::string_view wanted)
    : m_wanted(LowerAscii(wanted.substr(0, LongestNearName))),
      m_distance(wanted.size() > LongestNearName ? 0
                                                 : 1 + std::max<size_t>(1, std::min<size_t>(3, wanted.size() / 3))) {}

void NearName::Offer(std::string_view name) {
  if (m_distance == 0 || name.size() > LongestNearName) return;
  const size_t lengths = name.size() > m_wanted.size() ? name.size() - m_wanted.size() : m_wanted.size() - name.size();
  if (lengths >= m_distance || m_left == 0) return;
  --m_left;
  const size_t distance = LettersBetween(m_wanted, LowerAscii(name));
  if (distance >= m_distance || distance >= m_wanted.size()) return;
  m_distance = distance;
  m_best = name;
}

}  // namespace tarnwick::core
