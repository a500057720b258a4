#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/file_source.h"
#include "core/trouble.h"
#include "view/scene/scene.h"

namespace tarnwick::view {

/// What a scene is made for.
struct SceneWish {
  bool IncludedModels = true;  // also the sequences of the models that the model includes
};

/// Makes the scene of the compiled model at `path` (its .mdl file) and of the files beside it: .vtx, .vvd, .phy and
/// .ani, had from `files`. Nothing, told, if there is no such model. What else is missing or damaged is told and left
/// out: a model without a .phy file has no hulls, one without vertices no mesh, one whose included models are not found
/// only its own sequences. The scene keeps the files' bytes that
/// its animations are in. Time and memory grow with the files' sizes, whatever their numbers are.
[[nodiscard]] std::optional<Scene> MakeScene(const std::string& path, core::TroubleSink& troubles,
                                             const core::FileSource& files = core::DiskFiles(), SceneWish wish = {});

/// Makes the scene of an SMD file: its mesh if it has one, its skeleton, and its frames as one sequence named after the
/// file. It stands as a compiler would turn it. Nothing, told, if it cannot be read.
[[nodiscard]] std::optional<Scene> MakeSmdScene(const std::string& path, core::TroubleSink& troubles,
                                                const core::FileSource& files = core::DiskFiles());
/// The same of the text of an SMD file.
[[nodiscard]] Scene MakeSmdSceneOfText(std::string_view text, const std::string& path, core::TroubleSink& troubles);

}  // namespace tarnwick::view
