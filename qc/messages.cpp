#include "qc/messages.h"

#include <algorithm>
#include <array>
#include <utility>

#include "core/paths.h"

namespace tarnwick::qc {

namespace {

/// Longer names are not compared: no one mistypes them.
constexpr size_t LongestNearName = 64;
constexpr size_t LongestShown = 80;

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

void Messages::Add(Message message) {
  if (message.Level == core::Severity::Error) ++m_errors;
  if (m_messages.size() < Most) {
    m_messages.push_back(std::move(message));
  } else if (m_messages.size() == Most) {
    m_messages.push_back({core::Severity::Error, core::TroubleKind::Limit, message.At, "no more messages are told"});
  }
}

void Messages::Error(core::TroubleKind kind, const Place& at, std::string text) {
  Add({core::Severity::Error, kind, at, std::move(text)});
}

void Messages::Warning(core::TroubleKind kind, const Place& at, std::string text) {
  Add({core::Severity::Warning, kind, at, std::move(text)});
}

void Messages::Note(core::TroubleKind kind, const Place& at, std::string text) {
  Add({core::Severity::Note, kind, at, std::move(text)});
}

std::string Shown(std::string_view text) {
  std::string shown = "\"";
  for (const char c : text.substr(0, LongestShown)) shown += static_cast<unsigned char>(c) < ' ' ? '?' : c;
  return shown + (text.size() > LongestShown ? "...\"" : "\"");
}

std::string DidYouMean(std::string_view near) {
  return near.empty() ? "" : "; did you mean " + Shown(near) + "?";
}

NearName::NearName(std::string_view wanted)
    : m_wanted(core::LowerAscii(wanted.substr(0, LongestNearName))),
      m_distance(wanted.size() > LongestNearName ? 0
                                                 : 1 + std::max<size_t>(1, std::min<size_t>(3, wanted.size() / 3))) {}

void NearName::Offer(std::string_view name) {
  if (m_distance == 0 || name.size() > LongestNearName) return;
  const size_t lengths = name.size() > m_wanted.size() ? name.size() - m_wanted.size() : m_wanted.size() - name.size();
  if (lengths >= m_distance || m_left == 0) return;
  --m_left;
  const size_t distance = LettersBetween(m_wanted, core::LowerAscii(name));
  if (distance >= m_distance || distance >= m_wanted.size()) return;
  m_distance = distance;
  m_best = name;
}

}  // namespace tarnwick::qc
