#pragma once

#include "core/trouble.h"
#include "model/model_reader.h"
#include "view/scene/scene.h"

namespace tarnwick::view {

// The parts of a scene that are taken from a loaded model, in this order. Each tells what is damaged and leaves it out.

/// Bones, attachments, hit boxes, the model's boxes.
void TakeSkeleton(model::ModelReader& reader, Scene& scene);
/// Materials and skins.
void TakeMaterials(model::ModelReader& reader, Scene& scene);
/// Sequences, animations and pose parameters.
void TakeSequences(model::ModelReader& reader, Scene& scene);
/// Vertices, triangles, body parts, levels of detail, and the shapes of flexes.
void TakeMesh(model::ModelReader& reader, Scene& scene);
/// Flexes, controllers and rules.
void TakeFace(model::ModelReader& reader, Scene& scene);
/// The hulls of the .phy file `file`. Needs what the others have taken, and Scene::Frames.
void TakeHulls(model::ModelReader& reader, const core::FileImage& file, Scene& scene);

}  // namespace tarnwick::view
