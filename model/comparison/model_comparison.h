#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/file_source.h"
#include "core/trouble.h"
#include "model/comparison/difference.h"

namespace tarnwick::model {

/// Compares two compiled models with the files beside them, table by table: what the game sees of them, not where it
/// lies in the files. Triangles are compared by what stands at their corners, animations by where the bones stand in
/// each frame, physics pieces by their points. Checksums, the order of vertices and what only the file's layout needs
/// do not count. `firstFiles` has the first model and its files, `secondFiles` those of the second.
///
/// The differences, none for models that are the same, in the order of the tables; nothing, told to `troubles`, if one
/// of the two cannot be read. Damage that costs a part of a model is told to `troubles` too. `stopped`, if there, is
/// asked now and then; after a yes the rest is left out.
[[nodiscard]] std::optional<std::vector<ModelDifference>> CompareModels(
    const std::string& firstMdl, const std::string& secondMdl, core::TroubleSink& troubles,
    const std::function<bool()>& stopped = {}, const core::FileSource& firstFiles = core::DiskFiles(),
    const core::FileSource& secondFiles = core::DiskFiles());

}  // namespace tarnwick::model
