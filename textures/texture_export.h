#pragma once

#include <functional>
#include <string>

#include "textures/stored_image.h"
#include "textures/vtf_file.h"

namespace tarnwick::textures {

/// The file that an image of a texture goes to. The first frame, face and slice gets `path` itself; further frames get
/// the number of the frame (from 001, three digits or more) behind the stem, further faces "_face1" and on, further
/// slices "_slice1" and on:
///
///     water.tga, water001.tga, water002.tga      sky.tga, sky_face1.tga, ... sky_face5.tga
///
/// The numbers of the frames are those that the option file of vtex reads frames by.
std::string ExportPath(const std::string& path, const VtfImagePlace& place);

/// Writes mip level `mip` of each frame, face and slice of `vtf` as a TGA file; each file appears whole or not at all.
/// `written` is told of each file. False at the first file that cannot be written; then `reason` names it and tells
/// why.
bool ExportTexture(
    const VtfFile& vtf, int mip, const std::string& path,
    const std::function<void(const std::string& file, const StoredImage& image, PixelLayout layout)>& written,
    std::string& reason);

}  // namespace tarnwick::textures
