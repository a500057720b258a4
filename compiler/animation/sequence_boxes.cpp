#include "compiler/animation/sequence_boxes.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>
#include <span>
#include <utility>

#include "compiler/animation/pose_math.h"
#include "compiler/parallel.h"

namespace tarnwick::compiler {

using model::RigidTransform;
using model::Vec3;

namespace {

constexpr float CollisionMargin = 0.25f;

/// In fewer frames than these, posing a vertex that stands there twice costs less than finding it.
constexpr int64_t FramesWorthSorting = 16;

struct Box {
  float Least[3] = {std::numeric_limits<float>::max(), std::numeric_limits<float>::max(),
                    std::numeric_limits<float>::max()};
  float Most[3] = {-Least[0], -Least[1], -Least[2]};

  void Take(const float (&p)[3]) {
    for (int i = 0; i < 3; ++i) {
      Least[i] = std::min(Least[i], p[i]);
      Most[i] = std::max(Most[i], p[i]);
    }
  }
  void Take(const Vec3& v) {
    const float p[3] = {v.x, v.y, v.z};
    Take(p);
  }
  void Take(const Box& other) {
    Take(other.Least);
    Take(other.Most);
  }
  bool Empty() const { return Least[0] > Most[0]; }
  std::array<Vec3, 2> Corners() const {
    if (Empty()) return {Vec3{0, 0, 0}, Vec3{0, 0, 0}};
    return {Vec3{Least[0], Least[1], Least[2]}, Vec3{Most[0], Most[1], Most[2]}};
  }
};

/// A vertex as it is posed.
struct Point {
  float Place[3];
  float Weights[3];
  uint8_t Bones[3];
  uint8_t Count;
};

bool HasMinusZero(const Point& point) {
  return std::any_of(std::begin(point.Place), std::end(point.Place), [](float v) { return v == 0 && std::signbit(v); });
}

/// A transform in floats.
struct FloatTransform {
  float M[12];
};
FloatTransform FloatOf(const RigidTransform& t) {
  FloatTransform f;
  for (size_t row = 0; row < 3; ++row) {
    for (size_t column = 0; column < 3; ++column) f.M[4 * row + column] = static_cast<float>(t.Turn[row][column]);
    f.M[4 * row + 3] = static_cast<float>(t.Move[row]);
  }
  return f;
}

class BoxMeasurer {
 public:
  BoxMeasurer(const ModelBones& bones, const BuiltMeshes& meshes, const BuiltSkeleton& skeleton, bool verticesOnly,
              int64_t frames)
      : m_bones(bones), m_skeleton(skeleton), m_verticesOnly(verticesOnly) {
    for (const ModelBone& bone : bones.Bones) m_toBone.push_back(bone.ToModel.Inverse());
    m_points.reserve(meshes.Vertices.size());
    for (const model::VvdVertex& vertex : meshes.Vertices) {
      Point point = {};
      std::memcpy(point.Place, &vertex.Position, sizeof point.Place);
      std::memcpy(point.Weights, vertex.Weights, sizeof point.Weights);
      std::memcpy(point.Bones, vertex.Bones, sizeof point.Bones);
      point.Count = std::min<uint8_t>(vertex.WeightCount, 3);
      m_points.push_back(point);
    }
    // Of zeros the first one's sign stays in the box. None with a minus comes of posing.
    const bool orderTells = bones.Static && std::any_of(m_points.begin(), m_points.end(), HasMinusZero);
    if (!orderTells && frames < FramesWorthSorting) return;
    // Those of one place and the same weights stand once. By their bits: an order that every float takes part in, also
    // what is not a number.
    const auto bits = [](const Point& point) { return std::bit_cast<std::array<uint32_t, sizeof(Point) / 4>>(point); };
    std::sort(m_points.begin(), m_points.end(), [&](const Point& a, const Point& b) { return bits(a) < bits(b); });
    const auto same = [&](const Point& a, const Point& b) { return bits(a) == bits(b); };
    m_points.erase(std::unique(m_points.begin(), m_points.end(), same), m_points.end());
  }

  Box Measure(const BuiltAnimation& animation) const {
    Box box;
    if (m_bones.Static) {
      for (const Point& point : m_points) box.Take(point.Place);
      if (!m_verticesOnly) box.Take(Vec3{0, 0, 0});
      std::vector<RigidTransform> world(1);
      TakeHitboxes(world, box);
      return box;
    }
    const size_t count = m_bones.Bones.size();
    std::vector<RigidTransform> world(count);
    std::vector<FloatTransform> skin(count);
    for (int32_t frame = 0; frame < animation.FrameCount; ++frame) {
      if (frame > 0 && SameFrame(animation, frame)) continue;
      for (size_t i = 0; i < count; ++i) {
        const ModelBone& bone = m_bones.Bones[i];
        RigidTransform local = TransformOf(animation.Pose(frame, i, count));
        if (animation.Delta) local = RigidTransform::Of(bone.Angles, bone.Position) * local;
        world[i] = bone.Parent < 0 ? local : world[static_cast<size_t>(bone.Parent)] * local;
        skin[i] = FloatOf(world[i] * m_toBone[i]);
        if (!m_verticesOnly) box.Take(MoveOf(world[i]));
      }
      TakePoints(skin, box);
      TakeHitboxes(world, box);
    }
    return box;
  }

 private:
  bool SameFrame(const BuiltAnimation& animation, int32_t frame) const {
    const size_t count = m_bones.Bones.size();
    const std::span now(&animation.Pose(frame, 0, count), count), before(&animation.Pose(frame - 1, 0, count), count);
    return std::memcmp(std::as_bytes(now).data(), std::as_bytes(before).data(), now.size_bytes()) == 0;
  }
  void TakePoints(const std::vector<FloatTransform>& skin, Box& box) const {
    for (const Point& point : m_points) {
      float posed[3] = {0, 0, 0};
      for (int i = 0; i < point.Count; ++i) {
        if (point.Bones[i] >= skin.size()) continue;
        const float* m = skin[point.Bones[i]].M;
        for (int row = 0; row < 3; ++row) {
          const float* r = m + static_cast<ptrdiff_t>(4) * row;
          posed[row] +=
              point.Weights[i] * (r[0] * point.Place[0] + r[1] * point.Place[1] + r[2] * point.Place[2] + r[3]);
        }
      }
      box.Take(posed);
    }
  }
  void TakeHitboxes(const std::vector<RigidTransform>& world, Box& box) const {
    if (m_verticesOnly) return;
    for (const BuiltHitboxSet& set : m_skeleton.HitboxSets) {
      for (const BuiltHitbox& hitbox : set.Boxes) {
        for (int corner = 0; corner < 8; ++corner) {
          const Vec3 p = {(corner & 1) != 0 ? hitbox.Maximum.x : hitbox.Minimum.x,
                          (corner & 2) != 0 ? hitbox.Maximum.y : hitbox.Minimum.y,
                          (corner & 4) != 0 ? hitbox.Maximum.z : hitbox.Minimum.z};
          box.Take(world[static_cast<size_t>(hitbox.Bone)].Apply(p));
        }
      }
    }
  }

  const ModelBones& m_bones;
  const BuiltSkeleton& m_skeleton;
  bool m_verticesOnly;
  std::vector<RigidTransform> m_toBone;
  std::vector<Point> m_points;
};

}  // namespace

Vec3 MeasureSequences(const CompileContext& context, const ModelBones& bones, const BuiltMeshes& meshes,
                      const BuiltSkeleton& skeleton, const std::optional<std::array<Vec3, 2>>& collision,
                      BuiltMotion& motion) {
  int64_t frames = 0;
  for (const BuiltAnimation& animation : motion.Animations) frames += animation.FrameCount;
  const BoxMeasurer measurer(bones, meshes, skeleton, context.Plan.BoxOnlyVertices, frames);
  std::vector<Box> boxes(motion.Animations.size());
  ForEachInParallel(context.Options, boxes.size(),
                    [&](size_t i) { boxes[i] = measurer.Measure(motion.Animations[i]); });
  Vec3 middle = {0, 0, 0};
  bool first = true;
  for (BuiltSequence& sequence : motion.Sequences) {
    const bool isFirst = std::exchange(first, false);
    if ((sequence.Flags & model::SequenceFlagDeclared) != 0) continue;
    Box box;
    for (const int32_t animation : sequence.Animations) box.Take(boxes[static_cast<size_t>(animation)]);
    if (isFirst) {
      const auto plain = box.Corners();
      middle = {(plain[0].x + plain[1].x) / 2, (plain[0].y + plain[1].y) / 2, (plain[0].z + plain[1].z) / 2};
      if (collision) {
        const Vec3 &least = (*collision)[0], &most = (*collision)[1];
        box.Take(Vec3{least.x - CollisionMargin, least.y - CollisionMargin, least.z - CollisionMargin});
        box.Take(Vec3{most.x + CollisionMargin, most.y + CollisionMargin, most.z + CollisionMargin});
      }
    }
    sequence.Box = box.Corners();
  }
  return middle;
}

}  // namespace tarnwick::compiler
