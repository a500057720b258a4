#pragma once

#include <string>

#include "textures/vtf_file.h"

namespace tarnwick::textures {

/// The facts of a texture as lines "key: value\n", always the same keys in the same order:
///
///     file: exhaust.vtf
///     version: 7.2
///     width: 128
///     height: 128
///     depth: 1
///     format: DXT1
///     flags: 0x00000300 (no mips, no LOD)
///     frames: 1
///     first frame: 0
///     faces: 1
///     mip levels: 1
///     reflectivity: 0.040173 0.041681 0.042912
///     bump scale: 1
///     low resolution image: DXT1 16 x 16
///
/// The words in the brackets of `flags` are missing where no bit has a name; the last value is "none" where there is
/// no such image.
std::string VtfInfoText(const std::string& file, const VtfInfo& info);

/// The same as a JSON object, ended by "\n". Its keys are file, version (text), width, height, depth, format,
/// flags (number), flagNames (array of texts), frames, firstFrame, faces, mipLevels, reflectivity (array of 3),
/// bumpScale, lowResolutionImage (null, or an object of format, width, height). A number that JSON cannot hold
/// (infinite, not a number) is null.
std::string VtfInfoJson(const std::string& file, const VtfInfo& info);

}  // namespace tarnwick::textures
