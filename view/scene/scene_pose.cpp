#include "view/scene/scene_pose.h"

#include <algorithm>
#include <cmath>

#include "model/animation_records.h"
#include "view/scene/frame_cache.h"
#include "view/scene/ik_locks.h"
#include "view/scene/jiggle.h"
#include "view/scene/pose_mix.h"
#include "view/scene/sequence_place.h"

namespace tarnwick::view {

namespace {

/// Layers of layers: no sound model has more than one of the other's.
constexpr int DeepestLayer = 4;
/// Sequences that a pose is put together from at most, so that layers that name each other end.
constexpr int MostSequences = 256;
/// Below this sum of weights no trigger counts, and the first one is taken.
constexpr float LeastTriggerWeight = 0.001f;

using Poses = std::vector<BonePose>;

/// What is left of a delta's rotation at `part`.
Quat Share(const Quat& rotation, float part) {
  return part >= 1 ? rotation : Mix(Quat{}, rotation, part);
}

}  // namespace

class ScenePose::Worker {
 public:
  explicit Worker(const Scene& scene) : m_scene(scene), m_jiggle(scene) {
    const size_t count = scene.Bones.size();
    m_rest.resize(count);
    const Matrix34 turn = MatrixOf(scene.RestTurn, {});
    for (size_t b = 0; b < count; ++b) {
      const SceneBone& bone = scene.Bones[b];
      m_defaults.push_back({bone.Rotation, bone.Position});
      m_rest[b] = m_defaults[b];
      if (bone.Parent < 0) m_rest[b] = {scene.RestTurn * bone.Rotation, TransformPoint(turn, bone.Position)};
    }
    m_bones.resize(std::max<size_t>(count, 1));
    m_skin.resize(std::max<size_t>(count, 1));
    if (count == 0) m_skin.front() = m_bones.front() = turn;
    if (scene.Frames != nullptr && count > 0) m_cache = std::make_unique<FrameCache>(scene.Frames, count);
  }

  bool Set(const PoseRequest& request) {
    if (m_scene.Bones.empty()) return false;
    m_request = &request;
    m_left = MostSequences;
    const SceneSequence* main = SequenceAt(request.Sequence);
    // What is added to something has to have something: a delta shown alone is added to the rest pose.
    m_local = main == nullptr || main->IsDelta() ? m_rest : m_defaults;
    AddTo(request.Sequence, Clean(request.Cycle), 1, 0, m_local);
    for (const PoseLayer& layer : request.Layers) {
      Add(layer.Sequence, Clean(layer.Cycle), std::clamp(layer.Weight, 0.0f, 1.0f), 0, m_local);
    }
    if (request.Autoplay) {
      if (m_request->Ik && !m_scene.AutoplayLocks.empty()) {
        const IkLocks locks(m_scene, m_scene.AutoplayLocks, m_local);
        AddAutoplay();
        locks.Restore(m_local, 1);
      } else {
        AddAutoplay();
      }
    }
    for (const SceneDrivenBone& driven : m_scene.DrivenBones) Drive(driven);
    if (request.Swings && m_jiggle.HasBones()) {
      m_jiggle.Step(request.Seconds - m_swungAt);
      m_swungAt = request.Seconds;
    } else {
      m_jiggle.Rest();
    }
    return Place();
  }

  std::span<const Matrix34> Bones() const { return m_bones; }
  std::span<const Matrix34> Skin() const { return m_skin; }

 private:
  static float Clean(float cycle) { return std::isfinite(cycle) ? std::clamp(cycle, 0.0f, 1.0f) : 0; }

  /// A sequence that can be played.
  const SceneSequence* SequenceAt(int32_t number) const {
    if (m_cache == nullptr || number < 0 || static_cast<size_t>(number) >= m_scene.Sequences.size()) return nullptr;
    const SceneSequence& sequence = m_scene.Sequences[static_cast<size_t>(number)];
    return sequence.Animations.empty() ? nullptr : &sequence;
  }

  void AddAutoplay() {
    for (size_t i = 0; i < m_scene.Sequences.size(); ++i) {
      if (!m_scene.Sequences[i].IsAutoplay() || static_cast<int32_t>(i) == m_request->Sequence) continue;
      const SequenceTiming timing = TimingOf(m_scene, static_cast<int32_t>(i), m_request->PoseParameters);
      const float played = timing.LastFrame > 0 ? m_request->Seconds * timing.Fps / timing.LastFrame : 0;
      Add(static_cast<int32_t>(i), Clean(played - std::floor(played)), 1, 0, m_local);
    }
  }

  /// Puts a sequence, with its layers, on top of `poses`. The limbs that it locks end where they did.
  void Add(int32_t number, float cycle, float weight, int depth, Poses& poses) {
    const SceneSequence* sequence = SequenceAt(number);
    if (sequence == nullptr || !m_request->Ik || sequence->IkLocks.empty() || m_left <= 0) {
      return AddTo(number, cycle, weight, depth, poses);
    }
    const IkLocks locks(m_scene, sequence->IkLocks, poses);
    AddTo(number, cycle, weight, depth, poses);
    locks.Restore(poses, weight);
  }

  void AddTo(int32_t number, float cycle, float weight, int depth, Poses& poses) {
    const SceneSequence* sequence = SequenceAt(number);
    if (sequence == nullptr || !(weight > 0) || depth > DeepestLayer || --m_left < 0) return;
    Poses& own = OwnOf(depth);
    Blend(*sequence, cycle, own);
    const bool isLocal = std::any_of(sequence->Layers.begin(), sequence->Layers.end(),
                                     [](const SceneAutoLayer& layer) { return (layer.Flags & LayerFlagLocal) != 0; });
    if (isLocal) AddLayers(*sequence, cycle, 1, depth, true, own);
    Accumulate(*sequence, own, weight, poses);
    AddLayers(*sequence, cycle, weight, depth, false, poses);
  }

  void AddLayers(const SceneSequence& sequence, float cycle, float weight, int depth, bool local, Poses& poses) {
    for (const SceneAutoLayer& layer : sequence.Layers) {
      if (((layer.Flags & LayerFlagLocal) != 0) != local) continue;
      const bool byPose = layer.PoseParameter >= 0;
      const float at = byPose ? PoseValue(m_scene, layer.PoseParameter, m_request->PoseParameters) : cycle;
      const float ramp = RampOf(layer, at);
      float share = weight * ramp;
      if ((layer.Flags & LayerFlagCrossFade) != 0 && at > layer.Tail) {
        share = 1 - weight + share > 0 ? share / (1 - weight + share) : 0;
      } else if ((layer.Flags & LayerFlagNoBlend) != 0) {
        share = ramp;
      }
      // A layer that is there for a part of the cycle is played once in it.
      float played = cycle;
      if (!byPose && layer.Start != layer.End) played = Clean((cycle - layer.Start) / (layer.End - layer.Start));
      Add(layer.Sequence, played, share, depth + 1, poses);
    }
  }

  /// Room for the poses of a sequence at `depth` of layers.
  Poses& OwnOf(int depth) {
    Poses& own = m_own[static_cast<size_t>(depth)];
    own.resize(m_local.size());
    return own;
  }

  /// The poses of a sequence by itself.
  void Blend(const SceneSequence& sequence, float cycle, Poses& poses) {
    const SequencePlace place = PlaceOf(m_scene, sequence, m_request->PoseParameters);
    const auto row = [&](size_t first, Poses& target) {
      if (place.Across >= 1) return Sample(place.Animations[first + 1], cycle, target);
      Sample(place.Animations[first], cycle, target);
      if (place.Across > 0) Towards(place.Animations[first + 1], cycle, place.Across, target);
    };
    if (place.Down >= 1) return row(2, poses);
    row(0, poses);
    if (!(place.Down > 0)) return;
    m_row.resize(poses.size());
    row(2, m_row);
    for (size_t b = 0; b < poses.size(); ++b) poses[b] = Mix(poses[b], m_row[b], place.Down);
  }

  void Sample(int32_t animation, float cycle, Poses& target) {
    const FramePair frames = FramesAt(animation, cycle);
    if (frames.Part == 0) {
      std::copy_n(frames.First, target.size(), target.begin());
      return;
    }
    for (size_t b = 0; b < target.size(); ++b) target[b] = Mix(frames.First[b], frames.Second[b], frames.Part);
  }

  /// Goes `part` of the way from `target` to the animation.
  void Towards(int32_t animation, float cycle, float part, Poses& target) {
    const FramePair frames = FramesAt(animation, cycle);
    for (size_t b = 0; b < target.size(); ++b) {
      const BonePose pose = frames.Part == 0 ? frames.First[b] : Mix(frames.First[b], frames.Second[b], frames.Part);
      target[b] = Mix(target[b], pose, part);
    }
  }

  /// The frames on both sides of a moment.
  struct FramePair {
    const BonePose* First;
    const BonePose* Second;
    float Part;
  };

  FramePair FramesAt(int32_t number, float cycle) {
    const int32_t count = m_scene.Animations[static_cast<size_t>(number)].FrameCount;
    const float frame = cycle * static_cast<float>(count - 1);
    const int32_t first = std::min(static_cast<int32_t>(frame), count - 1);
    const float part = frame - static_cast<float>(first);
    const BonePose* poses = m_cache->Frame(number, first, count);
    if (!(part > 0) || first == count - 1) return {poses, poses, 0};
    return {poses, m_cache->Frame(number, first + 1, count), part};
  }

  /// Puts the poses of a sequence on top of others, bone by bone as much as the sequence weighs there.
  void Accumulate(const SceneSequence& sequence, const Poses& own, float weight, Poses& poses) {
    const std::vector<float>& weights = sequence.BoneWeights;
    if (sequence.IsDelta()) {
      const bool isBehind = (sequence.Flags & model::SequenceFlagLayered) != 0;
      for (size_t b = 0; b < poses.size(); ++b) {
        const float part = weights.empty() ? weight : weight * weights[b];
        if (!(part > 0)) continue;
        const Quat turn = Share(own[b].Rotation, part);
        poses[b].Rotation = UnitQuat(isBehind ? poses[b].Rotation * turn : turn * poses[b].Rotation);
        poses[b].Position = poses[b].Position + own[b].Position * part;
      }
      return;
    }
    if ((sequence.Flags & model::SequenceFlagWorldSpace) != 0) return AccumulateInWorld(sequence, own, weight, poses);
    for (size_t b = 0; b < poses.size(); ++b) {
      const float part = weights.empty() ? weight : weight * weights[b];
      if (part >= 1) {
        poses[b] = own[b];
      } else if (part > 0) {
        poses[b] = Mix(poses[b], own[b], part);
      }
    }
  }

  /// The same for a sequence that turns bones in the model's space, whatever their parents do.
  void AccumulateInWorld(const SceneSequence& sequence, const Poses& own, float weight, Poses& poses) {
    m_world.resize(poses.size());
    m_ownWorld.resize(poses.size());
    m_newWorld.resize(poses.size());
    for (size_t b = 0; b < poses.size(); ++b) {
      const int32_t parent = m_scene.Bones[b].Parent;
      const auto above = static_cast<size_t>(std::max(parent, 0));
      m_world[b] = parent < 0 ? poses[b].Rotation : m_world[above] * poses[b].Rotation;
      m_ownWorld[b] = parent < 0 ? own[b].Rotation : m_ownWorld[above] * own[b].Rotation;
      const float part = std::min(1.0f, sequence.BoneWeights.empty() ? weight : weight * sequence.BoneWeights[b]);
      const Quat parentTurn = parent < 0 ? Quat{} : m_newWorld[above];
      if (part > 0) {
        m_newWorld[b] = Mix(m_world[b], m_ownWorld[b], part);
        poses[b].Rotation = UnitQuat(Inverse(parentTurn) * m_newWorld[b]);
        poses[b].Position = Mix(poses[b].Position, own[b].Position, part);
      } else {
        m_newWorld[b] = parentTurn * poses[b].Rotation;
      }
    }
  }

  /// A driven bone stands between the poses of its triggers, each by how near the driver is to the trigger's.
  void Drive(const SceneDrivenBone& driven) {
    const Quat& turn = m_local[static_cast<size_t>(driven.Driver)].Rotation;
    float total = 0;
    BonePose sum{{0, 0, 0, 0}, {}};
    for (const SceneTrigger& trigger : driven.Triggers) {
      const Quat& at = trigger.DriverRotation;
      const float dot = std::fabs(turn.X * at.X + turn.Y * at.Y + turn.Z * at.Z + turn.W * at.W);
      const float weight = 1 - 2 * std::acos(std::min(dot, 1.0f)) * trigger.InverseTolerance;
      if (!(weight > 0) || !std::isfinite(weight)) continue;
      const Quat& to = trigger.Rotation;
      const float side =
          sum.Rotation.X * to.X + sum.Rotation.Y * to.Y + sum.Rotation.Z * to.Z + sum.Rotation.W * to.W < 0 ? -weight
                                                                                                            : weight;
      sum.Rotation = {sum.Rotation.X + to.X * side, sum.Rotation.Y + to.Y * side, sum.Rotation.Z + to.Z * side,
                      sum.Rotation.W + to.W * side};
      sum.Position = sum.Position + trigger.Position * weight;
      total += weight;
    }
    BonePose& pose = m_local[static_cast<size_t>(driven.Bone)];
    if (total <= LeastTriggerWeight) {
      pose = {driven.Triggers.front().Rotation, driven.Triggers.front().Position};
    } else {
      pose = {UnitQuat(sum.Rotation), sum.Position * (1 / total)};
    }
  }

  /// Whether any bone stands elsewhere than before.
  bool Place() {
    bool moved = false;
    for (size_t b = 0; b < m_local.size(); ++b) {
      const SceneBone& bone = m_scene.Bones[b];
      const Matrix34 local = MatrixOf(m_local[b].Rotation, m_local[b].Position);
      const Matrix34 led = bone.Parent < 0 ? local : m_bones[static_cast<size_t>(bone.Parent)] * local;
      const Matrix34 placed = m_jiggle.Move(b, led);
      moved |= !(placed == m_bones[b]);
      m_bones[b] = placed;
      m_skin[b] = placed * bone.PoseToBone;
    }
    return moved;
  }

  const Scene& m_scene;
  std::unique_ptr<FrameCache> m_cache;  // null: nothing can be played
  JiggleMotion m_jiggle;
  float m_swungAt = 0;
  const PoseRequest* m_request = nullptr;
  int m_left = 0;  // sequences that may still be added
  Poses m_defaults;
  Poses m_rest;  // the same, turned as the model stands
  Poses m_local;
  Poses m_row;
  std::array<Poses, DeepestLayer + 1> m_own;
  std::vector<Quat> m_world, m_ownWorld, m_newWorld;
  std::vector<Matrix34> m_bones;
  std::vector<Matrix34> m_skin;
};

ScenePose::ScenePose(const Scene& scene) : m_worker(std::make_unique<Worker>(scene)) {
  m_worker->Set({});
}
ScenePose::~ScenePose() = default;
ScenePose::ScenePose(ScenePose&&) noexcept = default;
ScenePose& ScenePose::operator=(ScenePose&&) noexcept = default;

bool ScenePose::Set(const PoseRequest& request) {
  return m_worker->Set(request);
}
std::span<const Matrix34> ScenePose::Bones() const {
  return m_worker->Bones();
}
std::span<const Matrix34> ScenePose::SkinMatrices() const {
  return m_worker->Skin();
}

ScenePoint SkinPoint(const ScenePoint& point, const SceneVertex& vertex, std::span<const Matrix34> skin) {
  ScenePoint moved{{}, {}};
  for (size_t i = 0; i < vertex.Weights.size(); ++i) {
    if (vertex.Weights[i] == 0) continue;
    const Matrix34& matrix = skin[vertex.Bones[i]];
    moved.Position = moved.Position + TransformPoint(matrix, point.Position) * vertex.Weights[i];
    moved.Normal = moved.Normal + TurnDirection(matrix, point.Normal) * vertex.Weights[i];
  }
  moved.Normal = Unit(moved.Normal);
  return moved;
}

Box PosedBox(const Scene& scene, std::span<const Matrix34> skin, const std::vector<int32_t>& bodyGroups, int32_t lod) {
  Box box;
  std::vector<bool> isSeen(scene.Points.size());
  for (const SceneDraw& draw : scene.Draws) {
    if (!scene.IsDrawn(draw, bodyGroups, lod)) continue;
    for (int64_t i = draw.FirstIndex; i < draw.FirstIndex + draw.IndexCount; ++i) {
      const uint32_t vertex = scene.Indices[static_cast<size_t>(i)];
      if (isSeen[vertex]) continue;
      isSeen[vertex] = true;
      box.Add(SkinPoint(scene.Points[vertex], scene.Vertices[vertex], skin).Position);
    }
  }
  return box;
}

}  // namespace tarnwick::view
