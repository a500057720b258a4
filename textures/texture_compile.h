#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "textures/material_place.h"
#include "textures/texture_options.h"
#include "textures/vtf_writer.h"

namespace tarnwick::textures {

/// The files of one texture: the TGA and, beside it, the option file.
struct TextureInput {
  std::string Tga;      // as the disk spells it; it may be missing where the options name frames
  std::string Options;  // empty: there is none
};

/// Finds the files of the texture that the user calls `name`: a TGA file, with or without ".tga", or an option file
/// (".txt"). The case of the file names does not count where only one fits.
TextureInput FindTextureInput(const std::string& name);

/// Reads the TGA files that `input` and `options` name and makes the texture: colours reduced as the options say, all
/// mip levels, the format by content (DXT1 without alpha, DXT5 with it; of a normal map BGR888 or BGRA8888) unless the
/// options ask for another, and the flags. `isNormalMap` as if the options said so.
///
/// Nothing, with a `reason` that names the file, if a file cannot be read, if a side is no power of two, or if frames
/// differ in size.
std::optional<VtfSource> MakeTexture(const TextureInput& input, const TextureOptions& options, bool isNormalMap,
                                     std::string& reason);

/// Writes `source` to `path` and makes the folders that are missing; the file appears whole or not at all. False, with
/// the `reason`, if it cannot be written. `bytes` gets the file's size.
bool WriteTexture(const VtfSource& source, const std::string& path, uint64_t& bytes, std::string& reason);

}  // namespace tarnwick::textures
