#include "compiler/animation/track_encoder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <span>

#include "compiler/animation/pose_math.h"
#include "model/animation_records.h"
#include "model/bone_math.h"
#include "model/rotation_packing.h"

namespace tarnwick::compiler {

namespace {

constexpr float PositionScale = std::bit_cast<float>(0x3B800100U);  // 128 / 32767
constexpr float RotationScale = std::bit_cast<float>(0x3749116DU);  // (pi / 8) / 32767
constexpr double LargestStep = 32767;
/// A change of an angle that the texts of sources do not show.
constexpr double StillAngle = 1.5e-6;
/// The same of a whole rotation: there the way from a quaternion to angles and back loses more.
constexpr double StillRotation = 4e-6;
constexpr double StillPlace = 1e-6;

float DefaultScale(size_t axis) {
  return axis < 3 ? PositionScale : RotationScale;
}

float AxisOf(const BonePose& pose, size_t axis) {
  return axis < 3 ? pose.Position[axis] : pose.Angles[axis - 3];
}
float RestOf(const ModelBone& bone, size_t axis) {
  const float values[6] = {bone.Position.x, bone.Position.y, bone.Position.z,
                           bone.Angles.x,   bone.Angles.y,   bone.Angles.z};
  return values[axis];
}

template <typename T>
void Append(std::string& bytes, const T& value) {
  bytes.append(reinterpret_cast<const char*>(&value), sizeof(T));
}

int16_t StepOf(double change, float scale) {
  if (!std::isfinite(change)) return 0;
  return static_cast<int16_t>(std::clamp(std::round(change / double{scale}), -LargestStep, LargestStep));
}

/// Runs at the smallest size: a held value costs nothing, a new run as much as one more value.
void AppendRuns(std::string& bytes, std::span<const int16_t> values) {
  constexpr size_t MostFrames = 255;
  size_t at = 0;
  while (at < values.size()) {
    size_t valid = 1, total = 1;
    while (total < MostFrames && at + total < values.size()) {
      size_t held = 0;  // frames that repeat the last value
      while (total + held < MostFrames && at + total + held < values.size() &&
             values[at + total + held] == values[at + total - 1]) {
        ++held;
      }
      const bool end = at + total + held == values.size() || total + held == MostFrames;
      if (held >= 2 || (held > 0 && end)) {
        total += held;
        break;
      }
      ++total;
      valid = total;
    }
    bytes.push_back(static_cast<char>(valid));
    bytes.push_back(static_cast<char>(total));
    for (size_t i = 0; i < valid; ++i) Append(bytes, values[at + i]);
    at += total;
  }
}

/// A bone over the frames of a chain.
class BoneChain {
 public:
  BoneChain(const ModelBones& bones, const BoneScales& scales, const BuiltAnimation& animation, size_t bone,
            int32_t first, int32_t count)
      : m_animation(animation), m_bone(bone), m_bones(bones.Bones.size()), m_first(first) {
    for (size_t axis = 0; axis < 6; ++axis) {
      m_rest[axis] = animation.Delta ? 0.0 : double{RestOf(bones.Bones[bone], axis)};
      m_steps[axis].resize(static_cast<size_t>(count));
      for (int32_t i = 0; i < count; ++i) {
        const double change = double{AxisOf(PoseAt(i), axis)} - m_rest[axis];
        const int16_t step = StepOf(change, scales[axis]);
        m_steps[axis][static_cast<size_t>(i)] = step;
        m_moves[axis] = m_moves[axis] || step != m_steps[axis][0];
        m_away[axis] = m_away[axis] || step != 0;
      }
    }
  }

  bool RotationChanges() const { return m_moves[3] || m_moves[4] || m_moves[5]; }
  bool PositionChanges() const { return m_moves[0] || m_moves[1] || m_moves[2]; }

  /// The record without its head; the flags too. Nothing if the bone stays at rest.
  std::string Payload(uint8_t& flags, bool packed64, bool& fits) const {
    std::string bytes;
    if (RotationChanges() || PositionChanges()) {
      flags = model::AnimRunRotation;
      if (m_away[0] || m_away[1] || m_away[2]) flags |= model::AnimRunPosition;
      AppendStreams(bytes, (flags & model::AnimRunPosition) != 0, fits);
      return bytes;
    }
    const BonePose& pose = PoseAt(0);
    if (RotatedFromRest(pose)) {
      const model::EulerAngles angles = {pose.Angles[0], pose.Angles[1], pose.Angles[2]};
      flags |= packed64 ? model::AnimRawRotation64 : model::AnimRawRotation48;
      if (packed64) {
        Append(bytes, model::PackQuat64(angles));
      } else {
        Append(bytes, model::PackQuat48(angles));
      }
    }
    if (MovedFromRest(pose)) {
      flags |= model::AnimRawPosition;
      for (const float axis : pose.Position) Append(bytes, EncodeHalfFloat(axis));
    }
    return bytes;
  }

 private:
  const BonePose& PoseAt(int32_t frame) const { return m_animation.Pose(m_first + frame, m_bone, m_bones); }
  bool RotatedFromRest(const BonePose& pose) const {
    bool changed = false;
    for (size_t axis = 3; axis < 6; ++axis) {
      changed = changed || std::abs(double{AxisOf(pose, axis)} - m_rest[axis]) > StillAngle;
    }
    if (!changed) return false;
    // Where the pitch is nearly upright, other angles are the same rotation.
    model::Quat is, rest;
    model::EulerToQuat({pose.Angles[0], pose.Angles[1], pose.Angles[2]}, is);
    model::EulerToQuat({static_cast<float>(m_rest[3]), static_cast<float>(m_rest[4]), static_cast<float>(m_rest[5])},
                       rest);
    return model::AngleBetween(is, rest) > StillRotation;
  }
  /// Half-floats are coarser than run values: a place that is none of them and hardly moved stays at rest.
  bool MovedFromRest(const BonePose& pose) const {
    bool moved = false, halves = true;
    for (size_t axis = 0; axis < 3; ++axis) {
      const float value = pose.Position[axis];
      moved = moved || std::abs(double{value} - m_rest[axis]) > StillPlace;
      halves = halves && std::abs(model::DecodeHalfFloat(EncodeHalfFloat(value)) - value) <= 6e-7f;
    }
    return m_away[0] || m_away[1] || m_away[2] || (moved && halves);
  }
  void AppendStreams(std::string& bytes, bool position, bool& fits) const {
    constexpr size_t Triple = 6;
    std::string streams;
    const size_t heads = position ? 2 * Triple : Triple;
    const auto triple = [&](size_t firstAxis, size_t at) {
      for (size_t axis = firstAxis; axis < firstAxis + 3; ++axis) {
        size_t offset = 0;
        if (m_away[axis]) {
          offset = heads + streams.size() - at;
          AppendRuns(streams, m_steps[axis]);
        }
        fits = fits && offset <= static_cast<size_t>(std::numeric_limits<int16_t>::max());
        Append(bytes, static_cast<int16_t>(offset));
      }
    };
    triple(3, 0);
    if (position) triple(0, Triple);
    bytes += streams;
  }

  const BuiltAnimation& m_animation;
  size_t m_bone, m_bones;
  int32_t m_first;
  double m_rest[6] = {};
  std::vector<int16_t> m_steps[6];
  bool m_moves[6] = {};  // the axis changes over the frames
  bool m_away[6] = {};   // it is away from rest in some frame
};

/// The scale of an axis whose largest change asks for `scale`: that of the grid on which all changes lie, if they do.
float GridScale(const ModelBones& bones, const std::vector<BuiltAnimation>& animations, size_t bone, size_t axis,
                float scale) {
  double products = 0, squares = 0, worst = 0;
  int64_t count = 0;
  const size_t boneCount = bones.Bones.size();
  for (const BuiltAnimation& animation : animations) {
    const double rest = animation.Delta ? 0.0 : double{RestOf(bones.Bones[bone], axis)};
    const float first = AxisOf(animation.Pose(0, bone, boneCount), axis);
    bool moves = false;
    for (int32_t f = 1; f < animation.FrameCount && !moves; ++f) {
      moves = AxisOf(animation.Pose(f, bone, boneCount), axis) != first;
    }
    for (int32_t f = 0; moves && f < animation.FrameCount; ++f) {
      const double change = double{AxisOf(animation.Pose(f, bone, boneCount), axis)} - rest;
      const double step = std::round(change / double{scale});
      worst = std::max(worst, std::abs(change - step * double{scale}));
      products += change * step;
      squares += step * step;
      ++count;
    }
  }
  constexpr int64_t Enough = 8;
  const bool onGrid = count >= Enough && worst < double{scale} / 8;
  if (!onGrid || !(squares > 0)) return scale;
  // A grid that is found from small changes alone may be too fine for the largest.
  const auto grid = static_cast<float>(products / squares);
  return double{grid} * (LargestStep + 1) < double{scale} * LargestStep ? scale : grid;
}

}  // namespace

uint16_t EncodeHalfFloat(float value) {
  const auto bits = std::bit_cast<uint32_t>(value);
  const auto sign = static_cast<uint16_t>(bits >> 16 & 0x8000);
  const float size = std::abs(value);
  if (!(size <= 65504.0f)) return static_cast<uint16_t>(sign | (std::isnan(value) ? 0 : 0x7BFF));
  if (size < 6.103515625e-05f) {  // denormal: steps of 2^-24
    return static_cast<uint16_t>(sign | static_cast<uint16_t>(std::nearbyint(size * 16777216.0f)));
  }
  uint32_t rounded = (bits & 0x7FFFFFFF) + 0xFFF + (bits >> 13 & 1);
  rounded = (rounded >> 13) - (112U << 10);
  return static_cast<uint16_t>(sign | std::min(rounded, 0x7BFFU));
}

void ChooseAngles(const ModelBones& bones, BuiltAnimation& animation) {
  for (size_t bone = 0; bone < bones.Bones.size(); ++bone) {
    const model::EulerAngles& angles = bones.Bones[bone].Angles;
    const BonePose rest = animation.Delta ? BonePose{} : BonePose{{0, 0, 0}, {angles.x, angles.y, angles.z}};
    for (int32_t frame = 0; frame < animation.FrameCount; ++frame) {
      BonePose& pose = animation.Pose(frame, bone, bones.Bones.size());
      // Half a right angle away no other set can be nearer.
      constexpr float Near = 0.75f;
      bool near = true;
      for (size_t axis = 0; axis < 3; ++axis) near = near && std::abs(pose.Angles[axis] - rest.Angles[axis]) < Near;
      if (!near) pose = Nearest(pose, rest);
    }
  }
}

std::vector<BoneScales> MeasureScales(const ModelBones& bones, const std::vector<BuiltAnimation>& animations) {
  const size_t count = bones.Bones.size();
  std::vector<std::array<double, 6>> largest(count, std::array<double, 6>{});
  for (const BuiltAnimation& animation : animations) {
    const BonePose* pose = animation.Poses.data();
    for (int32_t frame = 0; frame < animation.FrameCount; ++frame) {
      for (size_t bone = 0; bone < count; ++bone, ++pose) {
        for (size_t axis = 0; axis < 6; ++axis) {
          const double rest = animation.Delta ? 0.0 : double{RestOf(bones.Bones[bone], axis)};
          largest[bone][axis] = std::max(largest[bone][axis], std::abs(double{AxisOf(*pose, axis)} - rest));
        }
      }
    }
  }
  std::vector<BoneScales> scales(count);
  for (size_t bone = 0; bone < count; ++bone) {
    for (size_t axis = 0; axis < 6; ++axis) {
      const float usual = DefaultScale(axis);
      const auto needed = static_cast<float>(largest[bone][axis] / LargestStep);
      scales[bone][axis] = needed > usual ? GridScale(bones, animations, bone, axis, needed) : usual;
    }
  }
  return scales;
}

std::optional<std::string> EncodeChain(const ModelBones& bones, const std::vector<BoneScales>& scales,
                                       const BuiltAnimation& animation, int32_t first, int32_t count, bool packed64) {
  std::string bytes;
  size_t lastHead = std::string::npos;
  bool fits = true;
  for (size_t bone = 0; bone < bones.Bones.size(); ++bone) {
    uint8_t flags = 0;
    const BoneChain chain(bones, scales[bone], animation, bone, first, count);
    const std::string payload = chain.Payload(flags, packed64, fits);
    if (flags == 0) continue;
    if (animation.Delta) flags |= model::AnimIsDelta;
    if (lastHead != std::string::npos) {
      const size_t step = bytes.size() - lastHead;
      fits = fits && step <= static_cast<size_t>(std::numeric_limits<int16_t>::max());
      const auto next = static_cast<int16_t>(step);
      std::memcpy(bytes.data() + lastHead + 2, &next, sizeof next);
    }
    lastHead = bytes.size();
    bytes.push_back(static_cast<char>(bone));
    bytes.push_back(static_cast<char>(flags));
    bytes.append(2, '\0');
    bytes += payload;
  }
  if (!fits) return std::nullopt;
  if (lastHead == std::string::npos) return std::string("\xFF\0\0\0", 4);
  return bytes + std::string(4, '\0');
}

std::optional<std::string> EncodeErrors(const std::vector<std::array<float, 6>>& errors) {
  model::StudioIkErrors record = {};
  std::string streams;
  std::vector<int16_t> steps(errors.size());
  for (size_t axis = 0; axis < 6; ++axis) {
    double largest = 0;
    for (const auto& error : errors) largest = std::max(largest, std::abs(double{error[axis]}));
    const float scale = std::max(DefaultScale(axis), static_cast<float>(largest / LargestStep));
    for (size_t i = 0; i < errors.size(); ++i) steps[i] = StepOf(double{errors[i][axis]}, scale);
    const size_t offset = sizeof record + streams.size();
    if (offset > static_cast<size_t>(std::numeric_limits<int16_t>::max())) return std::nullopt;
    std::memcpy(reinterpret_cast<char*>(&record) + axis * sizeof(float), &scale, sizeof scale);
    const auto place = static_cast<int16_t>(offset);
    std::memcpy(reinterpret_cast<char*>(&record) + offsetof(model::StudioIkErrors, Offset) + axis * sizeof place,
                &place, sizeof place);
    AppendRuns(streams, steps);
  }
  return std::string(reinterpret_cast<const char*>(&record), sizeof record) + streams;
}

}  // namespace tarnwick::compiler
