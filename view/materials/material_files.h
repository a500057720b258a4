#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "archives/content_files.h"
#include "core/file_image.h"
#include "core/trouble.h"

namespace tarnwick::view {

/// What came of looking for a file.
struct MaterialFile {
  std::optional<core::FileImage> Image = {};
  std::string Reason = {};              // without an image: "it was not found", or why the file cannot be read
  std::vector<std::string> Tried = {};  // without an image: the paths at which it was looked for, in order
};

/// Where the materials of one model are looked for: as the game finds what belongs to the model
/// (`archives::ContentFiles::FindGameFile`).
class MaterialFiles {
 public:
  /// Of the model that `content` gives under that name, a path or one in an archive or a game; "" for what belongs to
  /// the game alone. `content` outlives this object.
  MaterialFiles(const archives::ContentFiles& content, std::string modelName)
      : m_content(content), m_modelName(std::move(modelName)) {}

  /// The file of that name below `materials` ("models/props/crate.vmt"), in any case, with either slash.
  MaterialFile Read(const std::string& name) const;

 private:
  const archives::ContentFiles& m_content;
  const std::string m_modelName;
};

/// Warns if the game's places cannot be had, so that its folder alone is searched.
void TellGameProblem(const archives::ContentFiles& content, core::TroubleSink& sink);

}  // namespace tarnwick::view
