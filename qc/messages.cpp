#include "qc/messages.h"

#include <utility>

namespace tarnwick::qc {

namespace {

constexpr size_t LongestShown = 80;

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

}  // namespace tarnwick::qc
