#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "core/file_source.h"
#include "core/output_file.h"

namespace tarnwick::core {

/// Where a job puts the files that it makes. Paths are the program's own, with either slash.
class FileMaker {
 public:
  virtual ~FileMaker() = default;
  /// Begins a file, as `OutputFile::Create` does: in a folder that is there.
  [[nodiscard]] virtual std::optional<OutputFile> Create(std::string path, std::string* reason = nullptr) = 0;
};

/// Where a job puts the files that it makes, and takes them from again: the disk, or memory (`MemoryStore`). Several
/// threads may use one store at once.
class FileStore : public FileSource, public FileMaker {
 public:
  /// Makes a folder with those above it. Why it is not there now, or nothing.
  [[nodiscard]] virtual std::string MakeFolder(const std::string& path) = 0;

  /// Removes a file. Why it is still there, or nothing.
  virtual std::string Remove(const std::string& path) = 0;

  [[nodiscard]] virtual bool HoldsFolder(const std::string& path) const = 0;

  /// The names of the files and folders in a folder ("" is the current one), sorted; no more than `most` of them.
  [[nodiscard]] virtual std::vector<std::string> NamesIn(const std::string& folder, size_t most) const = 0;

  /// The files in a folder and below it, by their paths from it with slashes, sorted.
  [[nodiscard]] virtual std::vector<std::string> FilesBelow(const std::string& folder) const = 0;

  /// Whether what stands or would stand at `path` lies in `folder`, wherever links lead.
  [[nodiscard]] virtual bool LiesIn(const std::string& path, const std::string& folder) const = 0;

  /// Nothing: a store knows no other place.
  std::optional<std::string> FindElsewhere(const std::string& name) const override;
  /// Beside the last folder "models" of the owner's path.
  std::optional<std::string> FindGameFile(const std::string& owner, const std::string& inside) const override;
};

/// The disk as a store.
FileStore& DiskStore();

}  // namespace tarnwick::core
