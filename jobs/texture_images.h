#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/file_source.h"
#include "textures/vtf_file.h"

namespace tarnwick::jobs {

/// What the program itself can tell of a texture that a tool exports.
class TextureImages {
 public:
  /// Reads the texture of that name from `files`; one that is not understood has no images.
  TextureImages(const std::string& name, const core::FileSource& files);

  /// Null if it is not understood; `Problem` tells why.
  const textures::VtfFile* Texture() const { return m_texture ? &*m_texture : nullptr; }
  const std::string& Problem() const { return m_problem; }
  /// The bytes of the file; empty if it cannot be read.
  std::span<const std::byte> Bytes() const { return m_file ? m_file->Bytes() : std::span<const std::byte>(); }
  bool IsRead() const { return m_file.has_value(); }

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

  std::string m_problem;
  std::optional<core::FileImage> m_file;
  std::optional<textures::VtfFile> m_texture;
};

/// The facts of the texture of that name, as lines or as a JSON object (`textures::VtfInfoText`, `VtfInfoJson`);
/// nothing, with `reason`, if it cannot be read.
std::optional<std::string> TextureFacts(const std::string& name, const core::FileSource& files, bool json,
                                        std::string& reason);

}  // namespace tarnwick::jobs
