#include "smd/text_replacer.h"

#include <algorithm>
#include <utility>

namespace tarnwick::smd {

TextReplacer::TextReplacer(std::string from, std::string to, Sink sink)
    : m_from(std::move(from)), m_to(std::move(to)), m_sink(std::move(sink)) {}

size_t TextReplacer::Replace(std::string_view text) {
  size_t done = 0;
  for (size_t found = text.find(m_from); found != std::string_view::npos; found = text.find(m_from, done)) {
    if (found > done) m_sink(text.substr(done, found - done));
    m_sink(m_to);
    ++m_count;
    done = found + m_from.size();
  }
  const size_t held = std::min(m_from.size() - 1, text.size() - done);
  if (done + held < text.size()) m_sink(text.substr(done, text.size() - done - held));
  return text.size() - held;
}

void TextReplacer::Feed(std::string_view bytes) {
  if (!m_held.empty()) {
    // Only the seam is copied: enough of the new bytes to complete whatever begins in the held ones.
    const size_t held = m_held.size();
    m_held.append(bytes.substr(0, m_from.size() - 1));
    const size_t done = Replace(m_held);
    if (m_held.size() - held == bytes.size()) {
      m_held.erase(0, done);
      return;
    }
    bytes.remove_prefix(done - held);  // never behind: what is held back is no longer than what was appended
  }
  const size_t done = Replace(bytes);
  m_held.assign(bytes.substr(done));
}

void TextReplacer::Finish() {
  if (!m_held.empty()) m_sink(m_held);
  m_held.clear();
}

}  // namespace tarnwick::smd
