#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "archives/content_files.h"
#include "archives/game_files.h"
#include "archives/loose_folder.h"
#include "core/file_image.h"

namespace tarnwick::view {

/// What came of looking for a file.
struct MaterialFile {
  std::optional<core::FileImage> Image = {};
  std::string Reason = {};              // without an image: "it was not found", or why the file cannot be read
  std::vector<std::string> Tried = {};  // without an image: the paths at which it was looked for, in order
};

/// Where the materials and textures of a game are looked for, whoever asks: kept for many models. Several threads may
/// look at once.
class GameMaterials {
 public:
  /// The places of the game in `gameDirectory` (through its gameinfo.txt, archives too; without one that folder
  /// alone); "" for no game. What is wrong with a place goes to `sink`.
  GameMaterials(const std::string& gameDirectory, core::TroubleSink& sink);

  /// The places; null for no game.
  const archives::GameFiles* Files() const { return m_files.get(); }
  /// The folder of that path, whose listings are kept for the next one that asks.
  std::shared_ptr<const archives::LooseFolder> Folder(const std::string& path) const;
  /// Lets files be found that were written since.
  void Refresh();

 private:
  std::unique_ptr<archives::GameFiles> m_files;
  mutable std::mutex m_lock;
  mutable std::map<std::string, std::shared_ptr<archives::LooseFolder>> m_folders;  // by path
};

/// Where the materials of one model are looked for: in the game's places, then in the folder `materials` beside the
/// `models` folder that the model lies in, then in one beside the model itself.
class MaterialFiles {
 public:
  /// `game` outlives this object. `modelPath` is a path on the disk, or "" for none.
  MaterialFiles(const GameMaterials& game, const std::string& modelPath);

  /// The same for a model that `content` gives under that name, a path or one in an archive or a game: what the game's
  /// places lack is then looked for in the model's archive. `content` outlives this object.
  MaterialFiles(const GameMaterials& game, const archives::ContentFiles& content, std::string modelName);

  /// The file of that name below `materials` ("models/props/crate.vmt"), in any case, with either slash.
  MaterialFile Read(const std::string& name) const;

 private:
  const GameMaterials& m_game;
  std::vector<std::shared_ptr<const archives::LooseFolder>> m_folders;  // above `materials`
  const archives::ContentFiles* m_content = nullptr;                    // of a model that is not on the disk
  std::string m_modelName = {};
};

}  // namespace tarnwick::view
