#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "core/file_image.h"
#include "textures/vtf_file.h"

namespace tarnwick::jobs {

/// What the program itself can tell of a texture that a tool exports.
class TextureImages {
 public:
  /// Reads the texture at `path`; one that is not understood has no images.
  explicit TextureImages(const std::string& path);

  /// The files that all its images go to, the first of which goes to `path` (see textures::ExportPath); `path` alone
  /// where the texture is not understood.
  std::vector<std::string> PathsFor(const std::string& path) const;

  /// Writes the image that goes to the file `name` where the first goes to the file `first` as a DDS file at
  /// `destination`: the blocks or pixels as they are, with all smaller levels. False if that cannot be; `reason` is
  /// empty where there is no such image or DDS files do not hold its format.
  bool WriteDds(const std::string& name, const std::string& first, const std::string& destination,
                std::string& reason) const;

 private:
  std::vector<textures::VtfImagePlace> Places() const;

  std::optional<core::FileImage> m_file;
  std::optional<textures::VtfFile> m_texture;
};

}  // namespace tarnwick::jobs
