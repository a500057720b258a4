#pragma once

#include <string>
#include <vector>

namespace tarnwick::cli {

/// One texture to be written as images.
struct PlannedTexture {
  std::string Input;
  std::string Folder;     // of the images
  std::string Stem;       // of their names: "<Stem>.<Extension>", further frames and faces "<Stem>001.<Extension>" ...
  std::string Extension;  // tells the format
};

/// What a command line asks for, and what of it cannot be done.
struct VtfPlan {
  std::vector<PlannedTexture> Textures;
  std::vector<std::string> Problems;
};

/// Finds the textures that `inputs` name: files, and the .vtf files in (with `recursive`: below) folders. One file goes
/// to `output` itself if that has an extension and is no folder; otherwise `output` is a folder, in which each texture
/// becomes "<its name>.<format>", those of a folder with their paths below it. `format` is an extension without its
/// dot; empty for "tga", or where `output` is a file for its own.
VtfPlan PlanVtf(const std::vector<std::string>& inputs, const std::string& output, const std::string& format,
                bool recursive);

}  // namespace tarnwick::cli
