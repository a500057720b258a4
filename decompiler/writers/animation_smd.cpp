#include "decompiler/writers/animation_smd.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

#include "model/bone_math.h"
#include "model/pose_player.h"
#include "model/quick_rotations.h"
#include "model/rotation_packing.h"
#include "smd/skeleton_frame.h"
#include "smd/skeleton_text.h"

namespace tarnwick::decompiler {

namespace {

/// A line of ordinary numbers, of the nodes (without the name) or of a pose.
constexpr int64_t OrdinaryLine = 80;

smd::Triple ToTriple(const Vec3& v) {
  return {v.x, v.y, v.z};
}
smd::Triple ToTriple(const EulerAngles& angles) {
  return {angles.x, angles.y, angles.z};
}

void WriteTime(core::TextWriter& writer, int64_t number) {
  writer.Text("time ");
  writer.Integer(number);
  writer.Text("\n");
}

void Apply(const Matrix3x4& left, Quat& rotation, Vec3& position) {
  Matrix3x4 pose;
  QuatPosToMatrix(rotation, position, pose);
  ConcatMatrix(left, pose, pose);
  MatrixToQuatPos(pose, rotation, position);
}

/// Nearly straight up or down.
bool IsSteep(const EulerAngles& angles) {
  constexpr float Steep = std::numbers::pi_v<float> / 2 - 0.05f;
  return std::abs(angles.y) > Steep;
}

/// Angles of the rotation `turn` of a bone whose `angles` are known: nearly straight up or down many sets of them are
/// alike, and those that lie nearest the bone's rest angles are what the animation was made of.
void ChooseAngles(const StudioBone& bone, bool isTurned, const Quat& turn, EulerAngles& angles) {
  if (!IsSteep(angles)) return;
  EulerAngles rest = bone.Angles;
  if (isTurned) rest.z -= RootTurnZ;
  QuatToEulerNear(turn, rest, angles);
}

/// Where the model has travelled to at `frame`. Within a part the speed changes evenly from its start to its end.
Vec3 TravelledTo(const std::vector<TravelPart>& travel, int32_t frame) {
  Vec3 start = {};
  int32_t firstFrame = 0;
  for (const TravelPart& part : travel) {
    if (frame >= part.LastFrame) {
      start = part.Position;
      firstFrame = part.LastFrame;
      continue;
    }
    const float t = static_cast<float>(frame - firstFrame) / static_cast<float>(part.LastFrame - firstFrame);
    const float whole = (part.StartSpeed + part.EndSpeed) / 2;
    const float way = whole == 0 ? t : (part.StartSpeed * t + (part.EndSpeed - part.StartSpeed) * t * t / 2) / whole;
    return {start.x + (part.Position.x - start.x) * way, start.y + (part.Position.y - start.y) * way,
            start.z + (part.Position.z - start.z) * way};
  }
  return start;
}

/// At the end of a part the first root stands on the axes of the part where it began, but for what its tracks, or the
/// half-floats of a section's single frame, have rounded.
void EndWhereItBegan(const std::vector<TravelPart>& travel, int32_t frame, const Vec3& begin, Vec3& position) {
  constexpr float Step = 1.0f / 256, HalfFloat = 1.0f / 1024;  // of a track, for each unit
  const auto part = std::ranges::find(travel, frame, &TravelPart::LastFrame);
  if (part == travel.end()) return;
  const auto end = [&](uint32_t flags, float from, float& at) {
    if ((part->Axes & flags) != 0 && std::abs(at - from) <= Step + std::abs(from) * HalfFloat) at = from;
  };
  end(MovementFlagX | MovementFlagLinearX, begin.x, position.x);
  end(MovementFlagY | MovementFlagLinearY, begin.y, position.y);
  end(MovementFlagZ | MovementFlagLinearZ, begin.z, position.z);
}

/// Writes the time blocks of an animation.
class AnimationText {
 public:
  AnimationText(const AnimationSmdModel& model, const CheckedAnimation& animation, const AnimationSmdForm& form)
      : m_model(model),
        m_onDefaultPose(form.OnDefaultPose && animation.IsDelta()),
        m_isDelta(animation.IsDelta()),
        m_exactWhereStill(form.ExactWhereStill),
        m_anglesNearRest(form.AnglesNearRest),
        m_travel(form.Travel),
        m_player(model.Bones, animation),
        m_frame(static_cast<size_t>(model.Bones.Count())),
        m_changes(static_cast<size_t>(model.Bones.Count())),
        m_positions(m_changes.size()),
        m_rotations(m_changes.size()),
        m_rotated(m_changes.size()),
        m_angles(m_changes.size()) {
    for (const auto bone : model.Bones) m_isRoot.push_back(bone->Parent == -1 ? 1 : 0);
  }

  void WriteBlock(core::TextWriter& writer, int64_t number, int32_t frame) {
    WriteTime(writer, number);
    if (m_player.GoTo(frame) || !m_travel.empty()) {
      if (!m_travel.empty()) m_travelled = TravelledTo(m_travel, frame);
      Turn(frame);
      WriteLines();
    }
    m_frame.Write(writer);
  }

 private:
  /// Brings the bones that changed into the form of the file. The turns and the composition give a position that
  /// depends on the position alone, and likewise for the rotation, so each part of a line stands as long as its own
  /// input does.
  void Turn(int32_t frame) {
    // By pointers, whose bounds are looked at once: this is done for each line that is written, and looking at them
    // there would be a third of it.
    const size_t count = m_changes.size();
    const Vec3* const from = m_player.Positions().first(count).data();
    const Quat* const turns = m_player.Rotations().first(count).data();
    const uint8_t* const told = m_player.Changes().first(count).data();
    uint8_t* const changes = m_changes.data();
    Vec3* const positions = std::span(m_positions).first(count).data();
    Quat* const rotations = std::span(m_rotations).first(count).data();
    uint32_t* const bones = std::span(m_rotated).first(count).data();
    const bool rootsAreOwn = m_model.TurnRoots || !m_travel.empty();
    size_t rotated = 0;  // no more than the bones so far, so there is room for one more
    for (size_t bone = 0; bone < count; ++bone) {
      uint8_t change = told[bone];
      const bool isOwnRoot = rootsAreOwn && m_isRoot[bone] != 0;
      if (isOwnRoot && !m_travel.empty()) change |= PosePlayer::PositionBit;
      changes[bone] = change;
      if (change == 0) continue;
      Quat& rotation = rotations[rotated];  // of the next bone if this one's has not changed
      positions[bone] = from[bone];
      rotation = turns[bone];
      if (m_onDefaultPose || isOwnRoot) Place(bone, frame, rotation, positions[bone]);
      bones[rotated] = static_cast<uint32_t>(bone);
      rotated += (change & PosePlayer::RotationBit) != 0 ? 1 : 0;
    }
    QuickQuatToEuler(std::span(m_rotations).first(rotated), std::span(m_angles).first(rotated));
    if (m_anglesNearRest) TakeAnglesNearRest(rotated);
  }

  /// Brings a bone's own pose to where the file has it.
  void Place(size_t bone, int32_t frame, Quat& rotation, Vec3& position) {
    if (bone == 0 && !m_travel.empty()) {
      if (frame == 0) m_begin = position;
      EndWhereItBegan(m_travel, frame, m_begin, position);
    }
    if (Travels(bone)) {
      position.x += m_travelled.x;
      position.y += m_travelled.y;
      position.z += m_travelled.z;
    }
    if (m_onDefaultPose) Apply(m_model.DefaultPoses[bone], rotation, position);
    if (IsTurned(bone)) Apply(m_model.RootTurn, rotation, position);
  }

  void TakeAnglesNearRest(size_t count) {
    const bool typesPacked = !m_isDelta && m_exactWhereStill;
    for (size_t i = 0; i < count; ++i) {
      EulerAngles& angles = m_angles[i];
      const size_t bone = m_rotated[i];
      const bool isPacked = typesPacked && m_player.RotationPacked(bone);
      if (!isPacked && !IsSteep(angles)) continue;
      const auto record = m_model.Bones[static_cast<int64_t>(bone)];
      ChooseAngles(*record, IsTurned(bone), m_rotations[i], angles);
      if (!isPacked) continue;
      if (const auto typed = TypedAnglesOf(m_model, *record, m_player.Rotations()[bone])) angles = *typed;
    }
  }

  void WriteLines() {
    m_frame.Begin();
    const EulerAngles* angles = m_angles.data();
    size_t bone = 0;
    for (const uint8_t change : m_changes) {
      if (change == 0) {
        m_frame.Keep();
      } else {
        const bool moved = (change & PosePlayer::PositionBit) != 0, turned = (change & PosePlayer::RotationBit) != 0;
        const smd::Triple position = ToTriple(m_positions[bone]);
        const smd::Triple rotation = turned ? ToTriple(*angles++) : smd::Triple{};
        smd::ExactNumbers exact;
        if (m_exactWhereStill) {
          const uint8_t running = m_player.Running(bone);
          exact.Position = (running & PosePlayer::PositionBit) == 0 && !Travels(bone);
          exact.Rotation = (running & PosePlayer::RotationBit) == 0;
        }
        m_frame.Line(moved ? &position : nullptr, turned ? &rotation : nullptr, exact);
      }
      ++bone;
    }
  }

  bool IsTurned(size_t bone) const { return m_model.TurnRoots && m_isRoot[bone] != 0; }
  bool Travels(size_t bone) const { return !m_travel.empty() && m_isRoot[bone] != 0; }

  const AnimationSmdModel& m_model;
  bool m_onDefaultPose;
  bool m_isDelta;
  bool m_exactWhereStill;
  bool m_anglesNearRest;
  const std::vector<TravelPart>& m_travel;
  Vec3 m_travelled = {};
  Vec3 m_begin = {};  // where the first root stands in the first frame
  PosePlayer m_player;
  smd::SkeletonFrame m_frame;
  std::vector<uint8_t> m_isRoot;      // of each bone, whose records lie far apart
  std::vector<uint8_t> m_changes;     // of each bone, as those of the player
  std::vector<Vec3> m_positions;      // the same, as the file has them
  std::vector<Quat> m_rotations;      // of the bones whose rotation changed, which are the first so many
  std::vector<uint32_t> m_rotated;    // those bones
  std::vector<EulerAngles> m_angles;  // of those
};

}  // namespace

int64_t AnimationHeadSize(const Skeleton& skeleton) {
  int64_t size = 0;
  for (const std::string_view name : skeleton.Names) size += static_cast<int64_t>(name.size()) + OrdinaryLine;
  return size;
}

std::shared_ptr<const AnimationSmdModel> MakeAnimationSmdModel(const Skeleton& skeleton, bool turnRoots) {
  auto model = std::make_shared<AnimationSmdModel>();
  model->Bones = skeleton.Bones;
  model->TurnRoots = turnRoots;
  AnglesPosToMatrix({0, 270, 0}, {0, 0, 0}, model->RootTurn);
  model->DefaultPoses.reserve(skeleton.Names.size());
  std::vector<smd::Node> nodes;
  nodes.reserve(skeleton.Names.size());
  for (const auto bone : skeleton.Bones) {
    nodes.push_back({skeleton.Names[nodes.size()], bone->Parent, {}, {}});
    QuatPosToMatrix(bone->Rotation, bone->Position, model->DefaultPoses.emplace_back());
  }
  model->Head = smd::AnimationHead(nodes);
  return model;
}

std::optional<EulerAngles> TypedAnglesOf(const AnimationSmdModel& model, const StudioBone& bone, const Quat& packed) {
  const bool isTurned = model.TurnRoots && bone.Parent == -1;
  Quat turn = packed;
  Vec3 place = {};
  if (isTurned) Apply(model.RootTurn, turn, place);
  EulerAngles angles;
  QuatToEuler(turn, angles);
  ChooseAngles(bone, isTurned, turn, angles);
  const EulerAngles rest = bone.Angles;
  return TypedAngles(packed, angles, rest, isTurned ? RootTurnZ : 0);
}

int64_t AnimationSmdSize(const AnimationSmdModel& model, int64_t blocks) {
  return static_cast<int64_t>(model.Head.size()) + blocks * (model.Bones.Count() * OrdinaryLine + 12);
}

void WriteBindPoseSmd(core::TextWriter& writer, const AnimationSmdModel& model, bool turned) {
  smd::SkeletonFrame frame(static_cast<size_t>(model.Bones.Count()));
  frame.Begin();
  for (const auto bone : model.Bones) {
    Vec3 place = bone->Position;
    Quat turn = bone->Rotation;
    const bool isTurned = turned && model.TurnRoots && bone->Parent == -1;
    if (isTurned) Apply(model.RootTurn, turn, place);
    EulerAngles angles;
    QuatToEuler(turn, angles);
    if (turned) ChooseAngles(*bone, isTurned, turn, angles);
    const smd::Triple position = ToTriple(place), rotation = ToTriple(angles);
    frame.Line(&position, &rotation, {.Position = turned, .Rotation = turned});
  }
  writer.Raw(model.Head);
  for (int time = 0; time < 2; ++time) {
    WriteTime(writer, time);
    frame.Write(writer);
  }
  writer.Text("end\n");
}

void WriteAnimationSmd(core::TextWriter& writer, const AnimationSmdModel& model, const CheckedAnimation& animation,
                       const AnimationSmdForm& form) {
  writer.Raw(model.Head);
  AnimationText text(model, animation, form);
  const int64_t shift = form.FirstFrameTwice ? 1 : 0;
  if (form.FirstFrameTwice) text.WriteBlock(writer, 0, 0);
  for (int32_t frame = 0; frame < animation.FrameCount(); ++frame) text.WriteBlock(writer, frame + shift, frame);
  writer.Text("end\n");
}

}  // namespace tarnwick::decompiler
