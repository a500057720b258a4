#pragma once

#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "jobs/host.h"
#include "jobs/input_content.h"
#include "jobs/item_run.h"

namespace tarnwick::jobs {

/// The largest side of a picture, in pixels.
inline constexpr int LargestPicture = 8192;

/// From where a model is looked at, in degrees: yaw 0 faces it, a rising yaw goes round to its left, a rising pitch
/// above it.
struct PictureAngle {
  float Yaw = 30;
  float Pitch = 15;
};

/// Compiled models to pictures (PNG), drawn without a display.
struct DrawPictures {
  std::vector<std::string> Inputs = {};        // models, and folders that are searched for them
  std::shared_ptr<InputContent> Content = {};  // by which inputs and materials are had; null: no game is known
  /// The file of the one named model if it ends in .png; else a folder, made if missing.
  std::string Output = ".";
  bool Recursive = false;  // also the folders below a folder
  int Width = 512;
  int Height = 512;
  std::optional<std::string> Sequence = {};  // nothing: the first one that is no layer
  int Frame = 0;
  int Skin = 0;
  PictureAngle Angle = {};
  bool Wireframe = false;
  bool Transparent = false;
  int Threads = 1;
};

/// The models that the job finds, and the picture of each: in the folder, of the model's name, or of its path below the
/// folder in which it was found. No two models share a picture.
[[nodiscard]] JobPlan Plan(const DrawPictures& job);

/// Draws every model, whole in its picture. Materials are looked for as the game finds what belongs to the
/// model (`archives::ContentFiles::FindGameFile`); those that are missing are told as warnings, stand in the item's
/// result, and are drawn as a pattern. A model without a mesh is drawn as its bones. Nothing is begun where no renderer
/// can be had.
JobResult Run(const DrawPictures& job, Host& host, const std::stop_token& stop);

}  // namespace tarnwick::jobs
