#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "core/trouble.h"

namespace tarnwick::core {

/// The caption of a box that has none of its own.
inline constexpr std::string_view DefaultCaption = "Tarnwick";

/// Where a logic room tells the user something: lines for the log, and troubles as values. A window shows a trouble
/// that has a caption in a message box with one OK button, and returns when the user has answered; the command line
/// prints it; a test records it. A trouble without a caption is shown by its line in the log alone. Nobody reads the
/// log to learn what happened.
///
/// Calls of one job come one after another; a sink that several threads share does its own locking.
class Report : public TroubleSink {
 public:
  /// Appends `text` to the log as it stands. Lines end in \r\n, which the caller puts into the text.
  virtual void Log(std::string_view text) = 0;

  /// A box with the stop icon: some work failed.
  void ErrorBox(TroubleKind kind, std::string_view text, std::string_view caption, std::string file = {}) {
    Tell({.Level = Severity::Error,
          .Kind = kind,
          .File = std::move(file),
          .Text = std::string(text),
          .Caption = std::string(caption)});
  }

  /// A box with the exclamation icon: the work goes on, the user should know.
  void WarningBox(TroubleKind kind, std::string_view text, std::string_view caption) {
    Tell({.Level = Severity::Warning, .Kind = kind, .Text = std::string(text), .Caption = std::string(caption)});
  }
};

}  // namespace tarnwick::core
