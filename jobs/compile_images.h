#pragma once

#include <optional>
#include <stop_token>
#include <string>

#include "jobs/host.h"
#include "jobs/item_run.h"
#include "tools/material_compile.h"

namespace tarnwick::jobs {

/// Images to the textures and materials of a game, each image of the form an item.
struct CompileImages {
  tools::MaterialCompile Form = {};
  std::string SdkDirectory = {};  // whose vtex runs; the program's own where it is empty
  std::string GameDirectory = {};
  tools::StartSettings Start = {};
  bool UseDamaged = false;      // images that are cut off or damaged, without a question
  bool UncommonFormats = true;  // read every format that the image library knows
};

/// What keeps the job from starting: no game directory is named, or it is none. Nothing if it can start.
[[nodiscard]] std::optional<core::Trouble> ObstacleOf(const CompileImages& job);

/// The image's texture is the target of its item.
[[nodiscard]] JobPlan Plan(const CompileImages& job);

/// Converts each image with its maps to TGA files below the game's materialsrc and runs vtex on them, one image after
/// the other. Asks before it puts materials into no directory of their own, before two images become one texture, for
/// directories that are missing, and about damaged images. An item has succeeded when everything was converted, vtex
/// ended well and the texture is there, newer than before.
JobResult Run(const CompileImages& job, Host& host, const std::stop_token& stop);

}  // namespace tarnwick::jobs
