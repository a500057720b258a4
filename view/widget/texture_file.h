#pragma once

#include <QImage>
#include <memory>
#include <optional>
#include <string>

#include "core/file_source.h"
#include "textures/vtf_file.h"

namespace tarnwick::view {

/// What of a texture's pixels is seen.
enum class TextureChannels { ColourAndAlpha, Colour, Red, Green, Blue, Alpha };

/// A texture file in memory, ready to decode any of its images.
class TextureFile {
 public:
  /// Reads and checks the file that `files` have under that name. Null if it cannot be read or is no texture; then
  /// `reason` tells why.
  static std::shared_ptr<const TextureFile> Read(const std::string& path, std::string& reason,
                                                 const core::FileSource& files = core::DiskFiles());

  const textures::VtfInfo& Info() const { return m_vtf->Info(); }
  uint64_t FileBytes() const { return m_file.Bytes().size(); }

  /// The image at `place`, which must lie inside the numbers of Info; null where memory lacks. One channel alone is
  /// grey.
  QImage Decode(const textures::VtfImagePlace& place, TextureChannels channels) const;

 private:
  explicit TextureFile(core::FileImage file) : m_file(std::move(file)) {}

  core::FileImage m_file;
  std::optional<textures::VtfFile> m_vtf;  // over the bytes of m_file
};

}  // namespace tarnwick::view
