#pragma once

#include "view/scene/scene.h"

namespace tarnwick::view {

/// Fills in what follows from the rest, for whoever makes a scene: a first level and skin where there are none,
/// tangents that are missing, the timing of sequences, MeshBox.
void CompleteScene(Scene& scene);

}  // namespace tarnwick::view
