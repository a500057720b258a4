#include "support/plain_scene_pose.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "model/animation_records.h"
#include "view/scene/frame_source.h"
#include "view/scene/sequence_place.h"

namespace tarnwick::tests {

namespace {

using namespace view;

struct Turn {
  double X = 0, Y = 0, Z = 0, W = 1;
};

struct Local {
  Turn Rotation;
  std::array<double, 3> Position = {0, 0, 0};
};

double Dot(const Turn& a, const Turn& b) {
  return a.X * b.X + a.Y * b.Y + a.Z * b.Z + a.W * b.W;
}

Turn Sum(const Turn& a, double toA, const Turn& b, double toB) {
  return {a.X * toA + b.X * toB, a.Y * toA + b.Y * toB, a.Z * toA + b.Z * toB, a.W * toA + b.W * toB};
}

Turn Slerp(const Turn& a, const Turn& b, double part) {
  const double dot = Dot(a, b);
  const double sign = dot < 0 ? -1 : 1;
  const double angle = std::acos(std::min(1.0, std::abs(dot)));
  if (angle < 1e-9) return part < 0.5 ? a : b;
  return Sum(a, std::sin((1 - part) * angle) / std::sin(angle), b, sign * std::sin(part * angle) / std::sin(angle));
}

Turn Product(const Turn& a, const Turn& b) {
  return {a.W * b.X + a.X * b.W + a.Y * b.Z - a.Z * b.Y, a.W * b.Y - a.X * b.Z + a.Y * b.W + a.Z * b.X,
          a.W * b.Z + a.X * b.Y - a.Y * b.X + a.Z * b.W, a.W * b.W - a.X * b.X - a.Y * b.Y - a.Z * b.Z};
}

Local LocalOf(const Quat& q, const Vec3& p) {
  return {{q.X, q.Y, q.Z, q.W}, {p.X, p.Y, p.Z}};
}

Local Between(const Local& a, const Local& b, double part) {
  Local result{Slerp(a.Rotation, b.Rotation, part), {}};
  for (size_t i = 0; i < 3; ++i) result.Position[i] = a.Position[i] + (b.Position[i] - a.Position[i]) * part;
  return result;
}

using Locals = std::vector<Local>;

Locals FrameOf(const Scene& scene, int32_t animation, int32_t frame) {
  std::vector<BonePose> poses(scene.Bones.size());
  scene.Frames->Read(animation, frame, poses);
  Locals locals;
  for (const BonePose& pose : poses) locals.push_back(LocalOf(pose.Rotation, pose.Position));
  return locals;
}

Locals MixAll(const Locals& a, const Locals& b, double part) {
  Locals mixed;
  for (size_t i = 0; i < a.size(); ++i) mixed.push_back(Between(a[i], b[i], part));
  return mixed;
}

Locals AnimationAt(const Scene& scene, int32_t animation, double cycle) {
  const int32_t last = scene.Animations[static_cast<size_t>(animation)].FrameCount - 1;
  const double frame = cycle * last;
  const auto first = static_cast<int32_t>(std::floor(frame));
  if (first >= last) return FrameOf(scene, animation, last);
  return MixAll(FrameOf(scene, animation, first), FrameOf(scene, animation, first + 1), frame - first);
}

/// The two entries of an axis round `value`, and how far it is from the one to the other.
struct Between2 {
  int32_t First, Second;
  double Part;
};

Between2 OnAxis(const SceneSequence& sequence, size_t axis, int32_t count, double value) {
  if (count == 1) return {0, 0, 0};
  std::vector<double> keys(sequence.PoseKeys[axis].begin(), sequence.PoseKeys[axis].end());
  for (int32_t i = 0; static_cast<int32_t>(keys.size()) < count; ++i) {
    keys.push_back(sequence.PoseStart[axis] +
                   (double{sequence.PoseEnd[axis]} - sequence.PoseStart[axis]) * i / (count - 1));
  }
  int32_t i = 0;
  while (i < count - 2 && value >= keys[static_cast<size_t>(i) + 1]) ++i;
  const double low = keys[static_cast<size_t>(i)];
  const double high = keys[static_cast<size_t>(i) + 1];
  return {i, i + 1, std::clamp((value - low) / (high - low), 0.0, 1.0)};
}

double ValueOf(const PoseRequest& request, int32_t parameter) {
  const bool has = parameter >= 0 && static_cast<size_t>(parameter) < request.PoseParameters.size();
  return has ? double{request.PoseParameters[static_cast<size_t>(parameter)]} : 0;
}

Locals SequenceAt(const Scene& scene, const SceneSequence& sequence, double cycle, const PoseRequest& request) {
  const Between2 x = OnAxis(sequence, 0, sequence.Columns, ValueOf(request, sequence.PoseParameters[0]));
  const Between2 y = OnAxis(sequence, 1, sequence.Rows, ValueOf(request, sequence.PoseParameters[1]));
  const auto at = [&](int32_t column, int32_t row) {
    return AnimationAt(scene, sequence.Animations[static_cast<size_t>(row * sequence.Columns + column)], cycle);
  };
  return MixAll(MixAll(at(x.First, y.First), at(x.Second, y.First), x.Part),
                MixAll(at(x.First, y.Second), at(x.Second, y.Second), x.Part), y.Part);
}

void Add(const Scene& scene, int32_t number, double cycle, double weight, const PoseRequest& request, Locals& poses) {
  const SceneSequence& sequence = scene.Sequences[static_cast<size_t>(number)];
  const Locals own = SequenceAt(scene, sequence, cycle, request);
  for (size_t b = 0; b < poses.size(); ++b) {
    const double part = weight * (sequence.BoneWeights.empty() ? 1.0 : double{sequence.BoneWeights[b]});
    if (part <= 0) continue;
    if (!sequence.IsDelta()) {
      poses[b] = Between(poses[b], own[b], part);
      continue;
    }
    const Turn turn = Slerp({}, own[b].Rotation, part);
    const bool isBehind = (sequence.Flags & model::SequenceFlagLayered) != 0;
    poses[b].Rotation = isBehind ? Product(poses[b].Rotation, turn) : Product(turn, poses[b].Rotation);
    for (size_t i = 0; i < 3; ++i) poses[b].Position[i] += own[b].Position[i] * part;
  }
  for (const SceneAutoLayer& layer : sequence.Layers) {
    const bool isPart = layer.Start != layer.End;
    const double there = double{layer.End} - layer.Start;
    Add(scene, layer.Sequence, isPart ? std::clamp((cycle - layer.Start) / there, 0.0, 1.0) : cycle,
        weight * RampOf(layer, static_cast<float>(cycle)), request, poses);
  }
}

}  // namespace

std::vector<Matrix34> PlainScenePose(const Scene& scene, const PoseRequest& request) {
  Locals poses;
  for (const SceneBone& bone : scene.Bones) poses.push_back(LocalOf(bone.Rotation, bone.Position));
  Add(scene, request.Sequence, request.Cycle, 1, request, poses);
  for (const PoseLayer& layer : request.Layers) Add(scene, layer.Sequence, layer.Cycle, layer.Weight, request, poses);
  std::vector<Matrix34> placed;
  for (size_t b = 0; b < poses.size(); ++b) {
    const auto& [q, p] = poses[b];
    Quat rotation{static_cast<float>(q.X), static_cast<float>(q.Y), static_cast<float>(q.Z), static_cast<float>(q.W)};
    const Matrix34 local =
        MatrixOf(rotation, {static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2])});
    const int32_t parent = scene.Bones[b].Parent;
    placed.push_back(parent < 0 ? local : placed[static_cast<size_t>(parent)] * local);
  }
  return placed;
}

}  // namespace tarnwick::tests
