#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "archives/archive.h"
#include "archives/archive_name.h"
#include "archives/game_files.h"
#include "core/file_source.h"

namespace tarnwick::archives {

/// Files by every name that a user may give (`ReadContentName`): on the disk, in an archive, through the search paths
/// of a game. Archives that were opened stay open. Several threads may ask at once.
class ContentFiles : public core::FileSource {
 public:
  /// `gameDirectory` has the gameinfo.txt by which `game:` names and companions are found; "" for none. It is read when
  /// it is first needed; what is wrong with the places that it tells goes to `sink`, which outlives this object.
  ContentFiles(std::string gameDirectory, core::TroubleSink& sink)
      : m_gameDirectory(std::move(gameDirectory)), m_sink(sink) {}

  std::optional<core::FileImage> Read(const std::string& name, std::string* reason) const override;

  /// A companion of a file in an archive is looked for in the same archive first, then through the search paths; that
  /// of a file on the disk beside it.
  std::optional<std::string> FindCompanion(const std::string& name) const override;

  /// The names of all files with `extension` (".mdl", in any case; "" for all) in the folder `name` of an archive or a
  /// game and, with `below`, under it, sorted. Nothing if `name` is a path, a file, or cannot be had; `reason` is then
  /// empty for the first two.
  std::optional<std::vector<std::string>> FilesIn(const std::string& name, std::string_view extension, bool below,
                                                  std::string& reason) const;

  /// The archive at `path`, opened once. Null, with `reason`, if it cannot be.
  std::shared_ptr<const Archive> OpenArchive(const std::string& path, std::string& reason) const;
  /// The game's places. Null, with `reason`, if there is no game directory or its gameinfo.txt cannot be read.
  const GameFiles* Game(std::string& reason) const;

 private:
  const std::string m_gameDirectory;
  core::TroubleSink& m_sink;
  mutable std::mutex m_lock;
  mutable std::map<std::string, std::shared_ptr<const Archive>> m_archives;  // by path
  mutable std::unique_ptr<GameFiles> m_game;
  mutable bool m_gameTried = false;
  mutable std::string m_gameReason;  // why there is none
};

}  // namespace tarnwick::archives
