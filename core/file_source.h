#pragma once

#include <optional>
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
  virtual std::optional<FileImage> Read(const std::string& name, std::string* reason = nullptr) const = 0;

  /// The name under which to read a file that goes with another one (a model's .vvd): `name` itself, or the one file
  /// beside it whose name differs in case only, or where else the source finds it. Nothing if there is none.
  virtual std::optional<std::string> FindCompanion(const std::string& name) const = 0;
};

/// The disk alone.
const FileSource& DiskFiles();

}  // namespace tarnwick::core
