#include "smd/source_text.h"

#include <algorithm>
#include <cmath>

#include "core/paths.h"

namespace tarnwick::smd {

std::string_view SourceText::Word() {
  if (AtEnd()) return {};
  const char* begin = m_at;
  while (m_at < m_end && !IsBlank(*m_at) && !IsLineEnd(*m_at)) ++m_at;
  return {begin, static_cast<size_t>(m_at - begin)};
}

bool SourceText::TakeEnd() {
  const char* begin = m_at;
  if (core::EqualIgnoringCase(Word(), "end")) return true;
  m_at = begin;
  return false;
}

std::string_view SourceText::Name() {
  if (AtEnd() || *m_at != '"') return Word();
  const char* begin = ++m_at;
  while (m_at < m_end && *m_at != '"' && !IsLineEnd(*m_at)) ++m_at;
  const std::string_view name(begin, static_cast<size_t>(m_at - begin));
  if (m_at < m_end && *m_at == '"') ++m_at;
  return name;
}

std::string_view SourceText::Rest() {
  const char* begin = m_at;
  while (m_at < m_end && !IsLineEnd(*m_at)) ++m_at;
  const char* end = m_at;
  while (end > begin && IsBlank(end[-1])) --end;
  return {begin, static_cast<size_t>(end - begin)};
}

bool SourceText::NextLineOfNumbers(int count) {
  const char* const begin = m_at;
  const int64_t line = m_line;
  bool numbers = NextLine();
  const char* at = m_at;
  for (int i = 0; i < count && numbers; ++i) {
    while (at < m_end && IsBlank(*at)) ++at;
    float value = 0;
    const char* after = ParseFloat(at, m_end, value);
    numbers = after != at && (after == m_end || IsBlank(*after) || IsLineEnd(*after));
    at = after;
  }
  if (numbers) return true;
  m_at = begin;
  m_line = line;
  return false;
}

bool SourceText::Int(int32_t& value) {
  if (AtEnd()) return false;
  const char* p = m_at;
  const bool minus = *p == '-';
  if (minus || *p == '+') ++p;
  int64_t number = 0;
  const char* digits = p;
  while (p < m_end && IsDigit(*p) && p - digits < 10) number = number * 10 + (*p++ - '0');
  if (p > digits && (p == m_end || IsBlank(*p) || IsLineEnd(*p))) {
    number = minus ? -number : number;
    value = static_cast<int32_t>(std::max<int64_t>(std::min<int64_t>(number, INT32_MAX), INT32_MIN));
    m_at = p;
    return true;
  }
  float wide = 0;
  if (!Float(wide)) return false;
  value = wide >= -2147483648.0f && wide < 2147483648.0f ? static_cast<int32_t>(wide) : -1;
  return true;
}

bool SourceText::Float(float& value) {
  SkipBlanks();
  const char* after = ParseFloat(m_at, m_end, value);
  if (after != m_at && (after == m_end || IsBlank(*after) || IsLineEnd(*after)) && std::isfinite(value)) {
    m_at = after;
    return true;
  }
  if (AtEnd()) return false;
  const std::string_view word = Word();
  const std::string shown = "\"" + std::string(word.substr(0, 40)) + "\"";
  // Some programs write what is no number as "-1.#IND" and its like.
  if (after == word.data() || !std::isfinite(value) || word.find(".#") != std::string_view::npos) {
    value = 0;
    Tell(false, shown + " is no finite number and counts as 0");
  } else if (after < word.data() + word.size()) {
    const auto rest = static_cast<size_t>(after - word.data());
    Tell(false, "the number " + shown + " is read up to \"" + std::string(word.substr(rest, 40)) + "\"");
  }
  return true;
}

bool SourceText::Floats(std::span<float> values) {
  // The quick way as far as it goes.
  const char* at = m_at;
  size_t i = 0;
  for (; i < values.size(); ++i) {
    while (at < m_end && *at == ' ') ++at;
    const char* after = ParseSixDecimals(at, m_end, values[i]);
    if (after == nullptr) break;
    at = after;
  }
  m_at = at;
  for (; i < values.size(); ++i) {
    if (!Float(values[i])) return false;
  }
  return true;
}

void SourceText::Tell(bool error, std::string text) {
  constexpr ptrdiff_t MostMessages = 50;
  // Errors are never hidden by warnings.
  const auto same = std::count_if(m_messages.begin(), m_messages.end(),
                                  [error](const SourceMessage& message) { return message.IsError == error; });
  if (same < MostMessages) m_messages.push_back({m_line, error, std::move(text)});
}

}  // namespace tarnwick::smd
