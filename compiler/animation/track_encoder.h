#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "compiler/animation/built_motion.h"
#include "compiler/skeleton/model_bones.h"

namespace tarnwick::compiler {

/// What one step of a run value is worth, for the six axes of a bone: places X, Y, Z, then angles.
using BoneScales = std::array<float, 6>;

/// Chooses of all angles that mean the same turn those nearest to the rest pose (for a delta: to no turn), so that
/// changes are small.
void ChooseAngles(const ModelBones& bones, BuiltAnimation& animation);

/// The scales of each bone over all animations: the default, larger where a change needs it. Where the changes lie on a
/// finer-known grid of their own, as they do when they were decoded from a model, the grid's.
std::vector<BoneScales> MeasureScales(const ModelBones& bones, const std::vector<BuiltAnimation>& animations);

/// The chain of a run of frames: a record for each bone that does not stay at rest, and the zero bytes behind them.
/// Nothing if a record is too long for the format. `packed64`: single rotations take 64 bits, not 48.
std::optional<std::string> EncodeChain(const ModelBones& bones, const std::vector<BoneScales>& scales,
                                       const BuiltAnimation& animation, int32_t first, int32_t count, bool packed64);

/// The error streams of a rule, with their record ahead; offsets count from it.
std::optional<std::string> EncodeErrors(const std::vector<std::array<float, 6>>& errors);

/// The nearest half-float.
uint16_t EncodeHalfFloat(float value);

}  // namespace tarnwick::compiler
