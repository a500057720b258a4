#include "view/materials/material_files.h"

#include <filesystem>

#include "archives/folded_text.h"
#include "core/paths.h"

namespace tarnwick::view {

MaterialFile MaterialFiles::Read(const std::string& name) const {
  MaterialFile result;
  const std::string plain = archives::PlainName("materials/" + name);
  if (const auto found = m_content.FindGameFile(m_modelName, plain)) {
    result.Image = m_content.Read(*found, &result.Reason);
    if (!result.Image) result.Tried.push_back(*found);
    return result;
  }
  result.Tried = m_content.TriedFor(m_modelName, plain);
  result.Reason = "it was not found";
  return result;
}

void TellGameProblem(const archives::ContentFiles& content, core::TroubleSink& sink) {
  const std::string& directory = content.GameDirectory();
  std::string reason;
  if (directory.empty() || content.Game(reason) != nullptr) return;
  std::error_code error;
  const bool there = std::filesystem::is_directory(core::NativePath(directory), error);
  sink.Tell({.Level = core::Severity::Warning,
             .Kind = core::TroubleKind::Missing,
             .File = directory,
             .Text = there ? reason + "; the game's folder alone is searched for materials"
                           : "There is no game directory " + directory});
}

}  // namespace tarnwick::view
