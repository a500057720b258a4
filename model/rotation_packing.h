#pragma once

#include <cstdint>
#include <optional>

#include "model/bone_math_types.h"

namespace tarnwick::model {

/// Packs the rotation with `angles`, in radians. Angles that were read out of a packed rotation, to within half of what
/// six decimals show, give that one back. Any other rotation has its parts cut towards zero, as the games' own tools
/// cut them, but for what that would turn visibly, near half turns: measured on the single rotations of 13 published
/// models, 26 of 27 that the bones' rest angles explain.
[[nodiscard]] PackedQuat64 PackQuat64(const EulerAngles& angles);
[[nodiscard]] PackedQuat48 PackQuat48(const EulerAngles& angles);

/// Angles with six decimals, as sources are typed, that pack into the very rotation `packed`, which was read out of 48
/// or 64 bits. `angles` are those of `packed` and `usual` ones that it may well have, such as the bone's rest angles,
/// both less the turn `turnZ` about Z which the rotation has before it is packed. Nothing if none of those tried does.
[[nodiscard]] std::optional<EulerAngles> TypedAngles(const Quat& packed, const EulerAngles& angles,
                                                     const EulerAngles& usual, float turnZ);

/// The angle between two rotations of unit length, in radians, for small ones; 4 where one is not a number. Angles
/// about axes would not tell it: where the pitch is upright one rotation has many of them.
[[nodiscard]] double AngleBetween(const Quat& p, const Quat& q);

}  // namespace tarnwick::model
