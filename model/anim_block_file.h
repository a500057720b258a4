#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "model/model_reader.h"

namespace tarnwick::model {

/// A place in the .mdl file or in the animation block file.
struct AnimData {
  const core::FileImage* File = nullptr;  // owned by the model
  int64_t Offset = 0;                     // possibly outside the file, until something is read there

  core::ImageView View() const { return File->View(); }
  bool operator==(const AnimData&) const = default;
};

/// Reads the animation block file that a model calls `name` (its folder is ignored) from the model's folder, under a
/// name that differs in case only if there is none of that very name, and upgrades it. Nothing, with one line in the
/// log, if there is no such file or if it calls itself a model file.
[[nodiscard]] std::optional<core::FileImage> LoadAnimBlockFile(ModelReader& reader, std::string_view name);

/// Brings a block file of any version to version 48: clears what older versions mean differently. False, with nothing
/// changed, if the header or the animation table does not lie inside the image.
[[nodiscard]] bool UpgradeAnimBlockHeader(std::span<std::byte> image);

/// Takes `file`, which was had elsewhere, as the model's block file, upgraded; nothing for none. To be called ahead of
/// GetAnimBlockBase, which then looks for none.
void UseAnimBlockFile(ModelReader& reader, std::optional<core::FileImage> file);

/// The first byte of block number `block`. The block file is loaded at the first call (on the reader's own thread).
/// Nothing if there is no block file, or if the model's table has no such block inside the .mdl file.
[[nodiscard]] std::optional<AnimData> GetAnimBlockBase(ModelReader& reader, int32_t block);

}  // namespace tarnwick::model
