#include "model/anim_block_file.h"

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "core/paths.h"
#include "model/animation_records.h"
#include "model/studio_records.h"

namespace tarnwick::model {

namespace {

constexpr int32_t CurrentVersion = 48;

/// The record at `offset` of `image`; nothing if it does not fit. For writing, where ImageView is for reading.
template <core::PackedRecord T>
std::span<T> MutableArray(std::span<std::byte> image, int64_t offset, int64_t count) {
  if (count <= 0 || !core::ImageView(image).Fits(offset, count, int64_t{sizeof(T)})) return {};
  return {reinterpret_cast<T*>(image.data() + offset), static_cast<size_t>(count)};
}

void ClearZeroFrames(StudioAnimDesc& animation) {
  animation.ZeroFrameOffset = 0;
  animation.ZeroFrameSpan = 0;
}

/// Clears the fields from FrameCount to ZeroFrameOffset and says that the animation has one frame and no data.
void ClearData(StudioAnimDesc& animation) {
  constexpr size_t First = offsetof(StudioAnimDesc, FrameCount);
  constexpr size_t Behind = offsetof(StudioAnimDesc, Unread60) + sizeof animation.Unread60;
  static_assert(First == 0x10 && Behind == 0x64);
  std::memset(reinterpret_cast<std::byte*>(&animation) + First, 0, Behind - First);
  animation.FrameCount = 1;
  animation.Block = -1;
}

/// Tells of a block file that cannot be had, in the words in which a vertex file is missed.
std::optional<core::FileImage> Missing(ModelReader& reader, core::TroubleKind kind, const std::string& path,
                                       const std::string& what, std::string alike) {
  reader.Tell({.Kind = kind,
               .File = path,
               .Text = what + "; animations that lie in it keep the default pose",
               .Alike = std::move(alike)});
  return std::nullopt;
}

/// `image` brought to the version that the other functions read.
core::FileImage Upgraded(core::FileImage image) {
  const auto version = image.View().Value<int32_t>(offsetof(StudioHeader, Version));
  if (version == CurrentVersion) return image;
  std::vector<std::byte> bytes(image.Bytes().begin(), image.Bytes().end());
  // Only blocks are read from the file, so tables of its own that are beyond an upgrade do no harm.
  if (!UpgradeAnimBlockHeader(bytes)) return image;
  return core::FileImage::FromBytes(image.Path(), bytes);
}

std::optional<core::FileImage> NotNamed(ModelReader& reader, const std::string& name, const std::string& why) {
  return Missing(reader, core::TroubleKind::Missing, name, "No animation block file: " + why,
                 "No animation block file");
}

}  // namespace

bool UpgradeAnimBlockHeader(std::span<std::byte> image) {
  const auto headers = MutableArray<StudioHeader>(image, 0, 1);
  if (headers.empty()) return false;
  StudioHeader& header = headers[0];
  const int32_t version = header.Version;
  if (version == CurrentVersion) return true;
  const auto animations = MutableArray<StudioAnimDesc>(image, header.AnimOffset, header.AnimCount);
  if (animations.empty() && version < CurrentVersion && header.AnimCount != 0) return false;
  for (StudioAnimDesc& animation : animations) {
    if (version < 46 && animation.SectionFrames != 0) ClearData(animation);
    if (version < 47 || (version == 47 && animation.ZeroFrameOffset != 0)) ClearZeroFrames(animation);
  }
  if (version < 47) header.ZeroFrameCacheIndex = 0;
  header.Version = CurrentVersion;
  return true;
}

std::optional<core::FileImage> LoadAnimBlockFile(ModelReader& reader, std::string_view name) {
  const std::string& mdl = reader.Model.Mdl.Path();
  const std::string folder(core::DirectoryWithSeparator(mdl));
  const std::string file(core::LastComponent(name));
  if (file.empty()) return NotNamed(reader, {}, mdl + " gives it no name");
  std::string path = folder + file;
  if (name.size() >= 3 && core::EqualIgnoringCase(name.substr(name.size() - 3), "mdl")) {
    return NotNamed(reader, path, path + " cannot be one, since it is a model");
  }
  if (!reader.Files().Holds(path)) {
    auto found = reader.Files().FindCompanion(path);
    if (!found) return NotNamed(reader, path, path);
    reader.Note(*found, "Using " + *found + " for " + file);
    path = std::move(*found);
  }
  std::string reason;
  auto image = reader.Files().Read(path, &reason);
  if (!image) {
    return Missing(reader, core::TroubleKind::Unreadable, path, "Unable to read " + path + ": " + reason,
                   "Unable to read the animation block file");
  }

  return Upgraded(std::move(*image));
}

void UseAnimBlockFile(ModelReader& reader, std::optional<core::FileImage> file) {
  reader.Model.AnimBlocksSought = true;
  if (file) reader.Model.AnimBlocks = AnimBlockImage{Upgraded(std::move(*file))};
}

std::optional<AnimData> GetAnimBlockBase(ModelReader& reader, int32_t block) {
  LoadedModel& model = reader.Model;
  const auto header = model.Header();
  if (!model.AnimBlocksSought) {
    model.AnimBlocksSought = true;
    if (const auto name = reader.NameOf("animation block file name", header, header->AnimBlockNameOffset)) {
      if (auto image = LoadAnimBlockFile(reader, *name)) model.AnimBlocks = AnimBlockImage{std::move(*image)};
    }
  }
  if (!model.AnimBlocks) return std::nullopt;
  const auto record =
      model.View().At<StudioAnimBlock>(header->AnimBlockOffset + int64_t{block} * int64_t{sizeof(StudioAnimBlock)});
  if (!record) return std::nullopt;
  return AnimData{&model.AnimBlocks->File, (*record)->Start};
}

}  // namespace tarnwick::model
