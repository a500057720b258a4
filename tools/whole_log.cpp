#include "tools/whole_log.h"

#include <algorithm>

namespace tarnwick::tools {

void WholeLog::Append(std::string_view bytes) {
  m_size += bytes.size();
  const size_t toFirst = std::min(bytes.size(), m_half - m_first.size());
  m_first.append(bytes.substr(0, toFirst));
  bytes.remove_prefix(toFirst);
  const size_t toLast = std::min(bytes.size(), m_half - m_last.size());
  m_last.append(bytes.substr(0, toLast));
  bytes.remove_prefix(toLast);
  if (bytes.size() > m_half) bytes.remove_prefix(bytes.size() - m_half);  // only the last half can stay
  while (!bytes.empty()) {
    const size_t run = std::min(bytes.size(), m_half - m_lastStart);
    m_last.replace(m_lastStart, run, bytes.substr(0, run));
    m_lastStart = (m_lastStart + run) % m_half;
    bytes.remove_prefix(run);
  }
}

std::string WholeLog::Text() const {
  std::string text = m_first;
  if (Dropped() > 0) text += "\r\n[" + std::to_string(Dropped()) + " bytes of output are left out here]\r\n";
  text += std::string_view(m_last).substr(m_lastStart);
  text += std::string_view(m_last).substr(0, m_lastStart);
  return text;
}

}  // namespace tarnwick::tools
