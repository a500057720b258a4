#pragma once

#include <string_view>

namespace tarnwick::core {

/// The icon of a message box: a failure, a warning, plain information, or none.
enum class BoxIcon { Stop, Exclamation, Information, None };

/// The caption of a box that has none of its own.
inline constexpr std::string_view DefaultCaption = "Tarnwick";

/// Where a logic room tells the user something. A window shows boxes and appends to its log, the command line prints
/// lines, a test records; all of them get the same words.
///
/// Calls of one job come one after another; a sink that several threads share does its own locking.
class Report {
 public:
  virtual ~Report() = default;

  /// Appends `text` to the log as it stands. Lines end in \r\n, which the caller puts into the text.
  virtual void Log(std::string_view text) = 0;

  /// Shows a message box with one OK button and returns when the user has answered.
  virtual void Box(BoxIcon icon, std::string_view text, std::string_view caption) = 0;

  /// A box with the stop icon: some work failed.
  void ErrorBox(std::string_view text, std::string_view caption) { Box(BoxIcon::Stop, text, caption); }

  /// A box with the exclamation icon: the work goes on, the user should know.
  void WarningBox(std::string_view text, std::string_view caption) { Box(BoxIcon::Exclamation, text, caption); }

  /// A box without an icon.
  void PlainBox(std::string_view text, std::string_view caption) { Box(BoxIcon::None, text, caption); }
};

}  // namespace tarnwick::core
