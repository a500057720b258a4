#pragma once

#include <cmath>
#include <string>

#include "model/bone_math_types.h"
#include "model/model_reader.h"
#include "view/scene/vector_math.h"

namespace tarnwick::view {

// Values of a compiled model as a scene has them: what is not finite becomes 0, or nothing.

inline float Finite(float value, float otherwise = 0) {
  return std::isfinite(value) ? value : otherwise;
}
inline Vec3 Finite(const model::Vec3& v) {
  return {Finite(v.x), Finite(v.y), Finite(v.z)};
}
/// Of unit length; no rotation where `q` is none.
Quat Finite(const model::Quat& q);
/// No turn and no move where `m` is not finite.
Matrix34 Finite(const model::Matrix3x4& m);
/// Empty unless the corners are finite and the right way round, and not both the origin.
Box BoxOf(const model::Vec3& minimum, const model::Vec3& maximum);

/// `bone` if the model has it, else -1.
inline int32_t BoneOrNone(int32_t bone, size_t count) {
  return bone >= 0 && static_cast<size_t>(bone) < count ? bone : -1;
}

/// A text, paid for by its length; empty if there is none.
std::string TextAt(model::ModelReader& reader, int64_t offset);
template <typename T>
std::string TextOf(model::ModelReader& reader, const core::Record<T>& record, int32_t offset) {
  return TextAt(reader, record.Offset() + offset);
}

}  // namespace tarnwick::view
