#include "model/loaded_model.h"

namespace tarnwick::model {

std::optional<std::string_view> LoadedModel::Name(int64_t offset) const {
  const auto name = View().Text(offset);
  if (!name || name->size() > LongestName) return std::nullopt;
  return name;
}

std::optional<core::FileImage> LoadModelFile(const std::string& path, std::string* reason,
                                             const core::FileSource& files) {
  return files.Read(path, reason);
}

std::optional<core::FileImage> LoadVtxFile(const std::string& path, std::string* reason,
                                           const core::FileSource& files) {
  return files.Read(path, reason);
}

std::optional<std::string_view> TextureName(const LoadedModel& model, int64_t index) {
  const auto texture =
      model.View().At<StudioTexture>(model.Header()->TextureOffset + index * int64_t{sizeof(StudioTexture)});
  if (!texture) return std::nullopt;
  return model.NameOf(*texture, (*texture)->NameOffset);
}

}  // namespace tarnwick::model
