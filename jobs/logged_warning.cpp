#include "jobs/logged_warning.h"

namespace tarnwick::jobs {

std::string TellLoggedWarning(ItemRun& run, std::string_view warning) {
  constexpr std::string_view Word = "Warning: ";
  if (warning.starts_with(Word)) warning.remove_prefix(Word.size());
  std::string line = std::string(Word) + std::string(warning) + "\r\n";
  run.Log(line);
  run.Tell({.Level = core::Severity::Warning, .Kind = core::TroubleKind::Missing, .Text = std::string(warning)});
  return line;
}

}  // namespace tarnwick::jobs
