#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "archives/content_files.h"
#include "core/trouble.h"

namespace tarnwick::jobs {

/// Where jobs find and read their inputs, by every name that a user may give (`archives::ReadContentName`): paths,
/// files and folders in archives, and `game:` names. A door may keep one and hand it to job after job, so that archives
/// stay open; several jobs may use it at once.
class InputContent : private core::TroubleSink {
 public:
  /// `gameDirectory` has the gameinfo.txt of `game:` names and of companions; "" for none.
  explicit InputContent(std::string gameDirectory = {}) : m_files(std::move(gameDirectory), *this) {}

  const archives::ContentFiles& Files() const { return m_files; }

  /// What was found wrong with the places of the game, each told once.
  std::vector<core::Trouble> TakeTroubles();

 private:
  void Tell(const core::Trouble& trouble) override;

  std::mutex m_lock;
  std::vector<core::Trouble> m_troubles;
  const archives::ContentFiles m_files;
};

/// Whether `name` is a path, and no name in an archive or a game.
bool IsOnDisk(const std::string& name);

/// What the job was given, or a content without a game.
template <typename Job>
std::shared_ptr<InputContent> ContentOf(const Job& job) {
  return job.Content != nullptr ? job.Content : std::make_shared<InputContent>();
}

}  // namespace tarnwick::jobs
