#pragma once

#include <cstdint>

#include "core/file_source.h"
#include "core/trouble.h"
#include "model/model_reader.h"
#include "view/scene/scene.h"

namespace tarnwick::view {

/// Puts the sequences of the models that `reader`'s model includes, and of those that these include, behind the ones of
/// `scene`, which has all that is taken of the model itself. A bone is the scene's of the same name; bones that the
/// scene lacks are left out, bones that an included model lacks keep what lies below. A sequence whose name the scene
/// has already is passed over, unless the scene only declares it. Models are found by `files` as a game finds them; one
/// that is not there is told. Gives the bytes of the files that were read. Sets Scene::Frames and Scene::Included.
int64_t TakeIncludedModels(model::ModelReader& reader, const core::FileSource& files, core::TroubleSink& troubles,
                           Scene& scene);

}  // namespace tarnwick::view
