#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "core/file_store.h"
#include "jobs/made_folder.h"

namespace tarnwick::jobs {

/// A folder for the files of one job. A new one has a temporary name beside its place until the job is done, and then
/// appears with all of them: no file in it needs a name of its own until it is whole, and a program that is ended
/// leaves no folder that looks complete. One that was there is filled file by file.
class StagedFolder : public core::FileMaker {
 public:
  StagedFolder() = default;
  StagedFolder(const StagedFolder&) = delete;
  StagedFolder& operator=(const StagedFolder&) = delete;
  /// Without a commit the folder goes if it is empty, and gets its name if something in it was finished.
  ~StagedFolder() override;

  /// Prepares the folder at `path`, with all that lead to it. Says why that failed; "" if files can be made in it.
  [[nodiscard]] std::string Make(const std::string& path);

  /// Begins a file by the path that it will have: straight in the folder, or anywhere else.
  std::optional<core::OutputFile> Create(std::string path, std::string* reason = nullptr) override;

  /// Gives the folder its name, to be called when there is something in it and every file is finished. Where another
  /// folder has got that name meanwhile, the files move into it. Why not all of them stand there, or nothing.
  [[nodiscard]] std::string Commit();

 private:
  [[nodiscard]] std::string MoveFiles();

  std::string m_path;
  std::string m_staged;                            // the temporary name; empty where the folder was there
  std::filesystem::path m_native, m_nativeStaged;  // the same as the system has them
  MadeFolder m_made;                               // what leads to it, or the folder itself
};

}  // namespace tarnwick::jobs
