// The frames of a source as poses of the model's bones.

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

#include "compiler/animation/animation_words.h"
#include "compiler/animation/pose_math.h"
#include "compiler/skeleton/euler.h"
#include "compiler/skeleton/source_placement.h"

namespace tarnwick::compiler {

using model::RigidTransform;

namespace {

constexpr float QuarterTurn = std::numbers::pi_v<float> / 2;

RigidTransform TransformOf(const smd::SourcePose& pose) {
  return RigidTransform::Of(model::EulerAngles{pose.Rotation.X, pose.Rotation.Y, pose.Rotation.Z},
                            model::Vec3{pose.Position.X, pose.Position.Y, pose.Position.Z});
}

BonePose RestOf(const ModelBone& bone) {
  return {{bone.Position.x, bone.Position.y, bone.Position.z}, {bone.Angles.x, bone.Angles.y, bone.Angles.z}};
}

/// Where a bone's frames come from: a node of the source, and whether its parent there is the bone's own.
struct Track {
  int32_t Node = -1;
  bool Direct = true;
};

class FrameTaker {
 public:
  FrameTaker(const ModelBones& bones, const smd::SmdSource& source, const SourceUse& use, bool lockLengths)
      : m_bones(bones), m_source(source), m_use(use), m_lockLengths(lockLengths), m_placement(PlacementOf(use)) {
    m_realigned = std::ranges::any_of(bones.Bones, [](const ModelBone& bone) { return bone.Realigned.has_value(); });
    FindTracks();
  }

  void Take(int32_t frame, BonePose* poses) {
    if (m_needWorld) FindWorld(frame);
    for (size_t i = 0; i < m_tracks.size(); ++i) {
      const Track& track = m_tracks[i];
      const ModelBone& bone = m_bones.Bones[i];
      if (track.Node < 0) {
        poses[i] = RestOf(bone);
        continue;
      }
      if (track.Direct) {
        const smd::SourcePose& pose = m_source.PoseOf(frame, static_cast<size_t>(track.Node));
        poses[i] = {{pose.Position.X, pose.Position.Y, pose.Position.Z},
                    {pose.Rotation.X, pose.Rotation.Y, pose.Rotation.Z}};
      } else {
        const RigidTransform& world = m_world[static_cast<size_t>(track.Node)];
        const int32_t parent = bone.Parent < 0 ? -1 : m_tracks[static_cast<size_t>(bone.Parent)].Node;
        const RigidTransform local = parent < 0 ? world : m_world[static_cast<size_t>(parent)].Inverse() * world;
        const model::Vec3 place = MoveOf(local);
        const model::EulerAngles angles = EulerOf(local);
        poses[i] = {{place.x, place.y, place.z}, {angles.x, angles.y, angles.z}};
      }
      if (m_realigned) Realign(i, poses[i]);
      for (float& axis : poses[i].Position) axis *= m_use.Scale;
      if (m_lockLengths && bone.Parent >= 0) LockLength(bone, poses[i]);
      if (bone.Parent < 0) TurnRoot(poses[i]);
    }
  }

 private:
  void FindTracks() {
    m_tracks.resize(m_bones.Bones.size());
    std::vector<int32_t> boneOf(m_source.Nodes.size(), -1);
    for (size_t node = 0; node < m_source.Nodes.size(); ++node) {
      const int32_t bone = m_bones.Named(m_source.Nodes[node].Name);
      if (bone < 0) continue;  // a bone that was dropped
      boneOf[node] = bone;
      if (m_tracks[static_cast<size_t>(bone)].Node < 0)
        m_tracks[static_cast<size_t>(bone)].Node = static_cast<int32_t>(node);
    }
    for (size_t i = 0; i < m_tracks.size(); ++i) {
      if (m_tracks[i].Node < 0) continue;
      const int32_t parent = m_source.Nodes[static_cast<size_t>(m_tracks[i].Node)].Parent;
      const int32_t parentBone = parent < 0 ? -1 : boneOf[static_cast<size_t>(parent)];
      // A missing parent of the model has no place in the source: the relation of the source then stands.
      const int32_t own = m_bones.Bones[i].Parent;
      const bool ownIsThere = own < 0 || m_tracks[static_cast<size_t>(own)].Node >= 0;
      m_tracks[i].Direct = (parent < 0 && own < 0) || (parent >= 0 && parentBone == own && own >= 0) || !ownIsThere;
      m_needWorld = m_needWorld || !m_tracks[i].Direct;
    }
  }
  void FindWorld(int32_t frame) {
    m_world.resize(m_source.Nodes.size());
    std::vector<char> done(m_source.Nodes.size(), 0);
    std::vector<int32_t> chain;
    for (size_t node = 0; node < m_world.size(); ++node) {
      chain.clear();
      for (auto at = static_cast<int32_t>(node); at >= 0 && done[static_cast<size_t>(at)] == 0;
           at = m_source.Nodes[static_cast<size_t>(at)].Parent) {
        chain.push_back(at);
      }
      for (size_t i = chain.size(); i-- > 0;) {
        const auto at = static_cast<size_t>(chain[i]);
        const int32_t parent = m_source.Nodes[at].Parent;
        const RigidTransform local = TransformOf(m_source.PoseOf(frame, at));
        m_world[at] = parent < 0 ? local : m_world[static_cast<size_t>(parent)] * local;
        done[at] = 1;
      }
    }
  }
  /// A bone as sources have it turned into the one that its definition and its parent's have made of it.
  void Realign(size_t number, BonePose& pose) const {
    const ModelBone& bone = m_bones.Bones[number];
    const ModelBone* parent = bone.Parent < 0 ? nullptr : &m_bones.Bones[static_cast<size_t>(bone.Parent)];
    const bool parentIs = parent != nullptr && parent->Realigned;
    if (!parentIs && !bone.Realigned) return;
    RigidTransform local = TransformOf(pose);
    if (parentIs) local = parent->Realigned->Inverse() * local;
    if (bone.Realigned) local = local * *bone.Realigned;
    pose = PoseOf(local);
  }
  /// As far from the parent as at rest, whatever the source has.
  static void LockLength(const ModelBone& bone, BonePose& pose) {
    const auto lengthOf = [](float x, float y, float z) {
      return std::sqrt(double{x} * double{x} + double{y} * double{y} + double{z} * double{z});
    };
    const double is = lengthOf(pose.Position[0], pose.Position[1], pose.Position[2]);
    const double rest = lengthOf(bone.Position.x, bone.Position.y, bone.Position.z);
    if (!(is > 0)) return;
    for (float& axis : pose.Position) axis = static_cast<float>(double{axis} * (rest / is));
  }
  /// Sources look north where models look east.
  void TurnRoot(BonePose& pose) const {
    if (m_placement) pose = PoseOf(*m_placement * TransformOf(pose));
    const float x = pose.Position[0], y = pose.Position[1];
    pose.Position[0] = -y;
    pose.Position[1] = x;
    pose.Angles[2] += QuarterTurn;
  }

  const ModelBones& m_bones;
  const smd::SmdSource& m_source;
  const SourceUse& m_use;
  bool m_lockLengths;
  bool m_realigned = false;
  std::optional<RigidTransform> m_placement;
  std::vector<Track> m_tracks;
  std::vector<RigidTransform> m_world;
  bool m_needWorld = false;
};

}  // namespace

void TakeRestPose(const ModelBones& bones, BuiltAnimation& animation) {
  animation.FrameCount = 1;
  animation.Poses.clear();
  for (const ModelBone& bone : bones.Bones) animation.Poses.push_back(RestOf(bone));
}

bool TakeFrames(CompileContext& context, const ModelBones& bones, const SourceUse& use, BuiltAnimation& animation) {
  const smd::SmdSource* source = context.Source(use.Source);
  if (source == nullptr || bones.Static || source->FrameCount == 0) {
    TakeRestPose(bones, animation);
    return source != nullptr;
  }
  const auto size = static_cast<int64_t>(bones.Bones.size() * sizeof(BonePose)) * source->FrameCount;
  if (!context.Spend(size, use.At)) return false;
  animation.FrameCount = source->FrameCount;
  animation.Poses.resize(bones.Bones.size() * static_cast<size_t>(source->FrameCount));
  FrameTaker taker(bones, *source, use, context.Plan.LockBoneLengths);
  for (int32_t frame = 0; frame < source->FrameCount; ++frame) {
    taker.Take(frame, &animation.Pose(frame, 0, bones.Bones.size()));
  }
  return true;
}

}  // namespace tarnwick::compiler
