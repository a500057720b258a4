#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "core/file_image.h"

namespace tarnwick::core {

/// Where a job takes the files from that it is to read: the disk, or a place that knows archives too. A name is a path,
/// or whatever else the source understands (`pak01_dir.vpk:models/crate.mdl`); it stands in messages as it is. Several
/// threads may ask one source at once.
class FileSource {
 public:
  virtual ~FileSource() = default;

  /// The whole file of that name. Nothing if it cannot be had; then `reason`, if given, tells why.
  [[nodiscard]] virtual std::optional<FileImage> Read(const std::string& name, std::string* reason = nullptr) const = 0;

  /// The first bytes of that file, as many as `out` holds; false if it has fewer or cannot be had. What else the file
  /// holds is neither read nor checked.
  [[nodiscard]] virtual bool ReadStart(const std::string& name, std::span<std::byte> out) const = 0;

  /// `Read`, unless `wants` refuses the file's first `start` bytes: then nothing, `reason` is left alone, and the rest,
  /// however long, is not read. It is not asked of a shorter file.
  [[nodiscard]] virtual std::optional<FileImage> ReadIf(const std::string& name, size_t start, const WantsFile& wants,
                                                        std::string* reason = nullptr) const;

  /// Whether there is a file of that very name (in an archive in any case).
  [[nodiscard]] virtual bool Holds(const std::string& name) const = 0;

  /// The name under which to read a file that goes with another one (a model's .vvd) and lies in the same folder or
  /// archive: `name` itself, or the one file beside it whose name differs in case only. Nothing if there is none.
  [[nodiscard]] virtual std::optional<std::string> FindBeside(const std::string& name) const = 0;

  /// The same for one that is not beside it, where a game would find it. Nothing if there is none, or no other place.
  [[nodiscard]] virtual std::optional<std::string> FindElsewhere(const std::string& name) const = 0;

  /// The name under which to read `inside` ("models/shared.mdl") of the game that the file `owner` is of. Nothing if no
  /// place has it, or the source knows no places.
  [[nodiscard]] virtual std::optional<std::string> FindGameFile(const std::string& owner,
                                                                const std::string& inside) const;

  /// `FindBeside`, or else `FindElsewhere`.
  [[nodiscard]] std::optional<std::string> FindCompanion(const std::string& name) const;
};

/// The disk alone.
const FileSource& DiskFiles();

}  // namespace tarnwick::core
