#include "jobs/texture_images.h"

#include "core/output_file.h"
#include "textures/dds_writer.h"
#include "textures/texture_export.h"
#include "textures/vtf_info_text.h"

namespace tarnwick::jobs {

TextureImages::TextureImages(const std::string& name, const core::FileSource& files)
    : m_file(files.Read(name, &m_problem)) {
  if (m_file) m_texture = textures::VtfFile::Open(m_file->View(), m_problem);
}

std::vector<textures::VtfImagePlace> TextureImages::Places() const {
  std::vector<textures::VtfImagePlace> places;
  if (!m_texture) return places;
  const textures::VtfInfo& info = m_texture->Info();
  for (int frame = 0; frame < info.Frames; ++frame) {
    for (int face = 0; face < info.Faces; ++face) {
      for (int slice = 0; slice < info.Depth; ++slice) places.push_back({0, frame, face, slice});
    }
  }
  return places;
}

std::vector<std::string> TextureImages::PathsFor(const std::string& path) const {
  if (!m_texture) return {path};
  std::vector<std::string> paths;
  for (const textures::VtfImagePlace& place : Places()) paths.push_back(textures::ExportPath(path, place));
  return paths;
}

bool TextureImages::WriteDds(const std::string& name, const std::string& first, const std::string& destination,
                             std::string& reason) const {
  reason.clear();
  if (!m_texture || !textures::DdsHolds(m_texture->Info().Format)) return false;
  const textures::VtfInfo& info = m_texture->Info();
  for (textures::VtfImagePlace place : Places()) {
    if (textures::ExportPath(first, place) != name) continue;
    std::vector<textures::StoredImage> levels;
    const int count = info.Depth > 1 ? 1 : info.MipLevels;  // the levels of a slice of many are not its own
    for (place.Mip = 0; place.Mip < count; ++place.Mip) {
      levels.push_back({info.Format, textures::MipSize(info.Width, place.Mip),
                        textures::MipSize(info.Height, place.Mip), m_texture->Image(place)});
    }
    auto file = core::OutputFile::Create(destination, &reason);
    if (!file) return false;
    textures::WriteDds(levels, [&](std::string_view bytes) { return file->Write(bytes); });
    if (file->Commit()) return true;
    reason = file->Error();
    return false;
  }
  return false;
}

std::optional<std::string> TextureFacts(const std::string& name, const core::FileSource& files, bool json,
                                        std::string& reason) {
  const TextureImages texture(name, files);
  reason = texture.Problem();
  if (texture.Texture() == nullptr) return std::nullopt;
  const textures::VtfInfo& info = texture.Texture()->Info();
  return json ? textures::VtfInfoJson(name, info) : textures::VtfInfoText(name, info);
}

}  // namespace tarnwick::jobs
