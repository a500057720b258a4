#include "view/scene/model_values.h"

#include <algorithm>

#include "core/same_bytes.h"

namespace tarnwick::view {

Quat Finite(const model::Quat& q) {
  const Quat value{q.x, q.y, q.z, q.w};
  const float square = value.X * value.X + value.Y * value.Y + value.Z * value.Z + value.W * value.W;
  if (!std::isfinite(square) || !(square > 0)) return {};
  const float scale = 1 / std::sqrt(square);
  if (!std::isfinite(scale)) return {};
  return {value.X * scale, value.Y * scale, value.Z * scale, value.W * scale};
}

Matrix34 Finite(const model::Matrix3x4& m) {
  Matrix34 matrix;
  for (size_t i = 0; i < matrix.M.size(); ++i) {
    const float value = m.m[i];
    if (!std::isfinite(value)) return {};
    matrix.M[i] = value;
  }
  return matrix;
}

Box BoxOf(const model::Vec3& minimum, const model::Vec3& maximum) {
  const model::Vec3 zeros{0, 0, 0};
  if (core::HasSameBytes(minimum, zeros) && core::HasSameBytes(maximum, zeros)) return {};
  const Box box{{minimum.x, minimum.y, minimum.z}, {maximum.x, maximum.y, maximum.z}};
  const bool isFinite = std::isfinite(Dot(box.Minimum, box.Minimum)) && std::isfinite(Dot(box.Maximum, box.Maximum));
  return isFinite && !box.IsEmpty() ? box : Box{};
}

std::string TextAt(model::ModelReader& reader, int64_t offset) {
  const auto text = reader.Model.Name(offset);
  if (!text || !reader.Spend(model::RecordCost + static_cast<int64_t>(text->size()))) return {};
  return std::string(*text);
}

}  // namespace tarnwick::view
