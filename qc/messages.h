#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "core/near_name.h"
#include "core/trouble.h"
#include "qc/words.h"

namespace tarnwick::qc {

/// One thing that a script's author should know, at a place of the script.
struct Message {
  core::Severity Level = core::Severity::Error;
  core::TroubleKind Kind = core::TroubleKind::Unknown;
  Place At;
  std::string Text;  // one sentence, without place, line end or full stop
};

/// The messages of a reading, in the order in which they were found: names that are declared nowhere come last. A
/// script of rubbish does not tell without end: after `Most` messages one says that no more are told.
class Messages {
 public:
  static constexpr size_t Most = 1000;

  void Error(core::TroubleKind kind, const Place& at, std::string text);
  void Warning(core::TroubleKind kind, const Place& at, std::string text);
  void Note(core::TroubleKind kind, const Place& at, std::string text);

  const std::vector<Message>& All() const { return m_messages; }
  /// Errors so far, also those beyond the last that was kept.
  size_t ErrorCount() const { return m_errors; }
  bool Full() const { return m_messages.size() > Most; }

 private:
  void Add(Message message);

  std::vector<Message> m_messages;
  size_t m_errors = 0;
};

/// `text` in double quotes as a message shows it: of one line, and cut if it is long.
std::string Shown(std::string_view text);

/// `; did you mean "near"?`, or nothing if `near` is empty.
std::string DidYouMean(std::string_view near);

using core::NearName;

}  // namespace tarnwick::qc
