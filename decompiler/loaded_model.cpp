#include "decompiler/loaded_model.h"

#include "decompiler/job_context.h"

namespace tarnwick::decompiler {

std::optional<std::string_view> LoadedModel::Name(int64_t offset) const {
  const auto name = View().Text(offset);
  if (!name || name->size() > LongestName) return std::nullopt;
  return name;
}

std::optional<core::FileImage> LoadModelFile(const std::string& path, std::string* reason) {
  return core::FileImage::Read(path, reason);
}

std::optional<core::FileImage> LoadVtxFile(const std::string& path, std::string* reason) {
  return core::FileImage::Read(path, reason);
}

const Skeleton* GetSkeleton(JobContext& job) {
  LoadedModel& model = job.Model;
  if (!model.BonesSought) {
    model.BonesSought = true;
    const auto header = model.Header();
    const auto bones = job.Table<StudioBone>("bone table", header->BoneOffset, header->BoneCount);
    if (!bones) return nullptr;
    Skeleton skeleton{*bones, {}};
    skeleton.Names.reserve(static_cast<size_t>(bones->Count()));
    for (const auto bone : *bones) {
      const auto name = job.NameOf("bone name", bone, bone->NameOffset);
      if (!name) return nullptr;
      skeleton.Names.push_back(*name);
    }
    model.Bones = std::move(skeleton);
  }
  return model.Bones ? &*model.Bones : nullptr;
}

std::optional<std::string_view> TextureName(const LoadedModel& model, int64_t index) {
  const auto texture =
      model.View().At<StudioTexture>(model.Header()->TextureOffset + index * int64_t{sizeof(StudioTexture)});
  if (!texture) return std::nullopt;
  return model.NameOf(*texture, (*texture)->NameOffset);
}

}  // namespace tarnwick::decompiler
