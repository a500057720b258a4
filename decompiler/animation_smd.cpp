#include "decompiler/animation_smd.h"

#include "decompiler/skeleton_frame.h"
#include "model/bone_math.h"
#include "model/pose_player.h"
#include "model/quick_rotations.h"

namespace tarnwick::decompiler {

namespace {

/// A line of ordinary numbers, of the nodes (without the name) or of a pose.
constexpr int64_t OrdinaryLine = 80;

void WriteTime(core::TextWriter& writer, int64_t number) {
  writer.Text("time ");
  writer.Integer(number);
  writer.Text("\n");
}

/// Writes the time blocks of an animation.
class AnimationText {
 public:
  AnimationText(const AnimationSmdModel& model, const CheckedAnimation& animation, bool onDefaultPose)
      : m_model(model),
        m_onDefaultPose(onDefaultPose && animation.IsDelta()),
        m_player(model.Bones, animation),
        m_frame(static_cast<size_t>(model.Bones.Count())),
        m_positions(static_cast<size_t>(model.Bones.Count())) {}

  void WriteBlock(core::TextWriter& writer, int64_t number, int32_t frame) {
    WriteTime(writer, number);
    if (m_player.GoTo(frame)) {
      Turn();
      WriteLines();
    }
    m_frame.Write(writer);
  }

 private:
  /// Brings the bones that changed into the form of the file. The turns and the composition give a position that
  /// depends on the position alone, and likewise for the rotation, so each part of a line stands as long as its own
  /// input does.
  void Turn() {
    m_rotations.clear();
    for (size_t bone = 0; bone < m_positions.size(); ++bone) {
      if (!m_player.Changed(bone)) continue;
      m_positions[bone] = m_player.Positions()[bone];
      Quat rotation = m_player.Rotations()[bone];
      if (m_onDefaultPose) Apply(m_model.DefaultPoses[bone], rotation, m_positions[bone]);
      if (m_model.TurnRoots && m_model.Bones[static_cast<int64_t>(bone)]->Parent == -1) {
        Apply(m_model.RootTurn, rotation, m_positions[bone]);
      }
      if (m_player.RotationChanged(bone)) m_rotations.push_back(rotation);
    }
    m_angles.resize(m_rotations.size());
    QuickQuatToEuler(m_rotations, m_angles);
  }

  void WriteLines() {
    m_frame.Begin();
    const EulerAngles* angles = m_angles.data();
    for (size_t bone = 0; bone < m_positions.size(); ++bone) {
      if (m_player.Changed(bone)) {
        m_frame.Line(m_player.PositionChanged(bone) ? &m_positions[bone] : nullptr,
                     m_player.RotationChanged(bone) ? angles++ : nullptr);
      } else {
        m_frame.Keep();
      }
    }
  }

  static void Apply(const Matrix3x4& left, Quat& rotation, Vec3& position) {
    Matrix3x4 pose;
    QuatPosToMatrix(rotation, position, pose);
    ConcatMatrix(left, pose, pose);
    MatrixToQuatPos(pose, rotation, position);
  }

  const AnimationSmdModel& m_model;
  bool m_onDefaultPose;
  PosePlayer m_player;
  SkeletonFrame m_frame;
  std::vector<Vec3> m_positions;      // of each bone, as the file has it
  std::vector<Quat> m_rotations;      // of the bones whose rotation changed
  std::vector<EulerAngles> m_angles;  // of those
};

}  // namespace

std::shared_ptr<const AnimationSmdModel> MakeAnimationSmdModel(JobContext& job) {
  const Skeleton* skeleton = GetSkeleton(job);
  if (skeleton == nullptr) return nullptr;
  int64_t size = 0;
  for (const std::string_view name : skeleton->Names) size += static_cast<int64_t>(name.size()) + OrdinaryLine;
  if (!job.Spend(size)) return nullptr;

  auto model = std::make_shared<AnimationSmdModel>();
  model->Bones = skeleton->Bones;
  model->TurnRoots = !job.KeepRotations();
  AnglesPosToMatrix({0, 270, 0}, {0, 0, 0}, model->RootTurn);
  model->DefaultPoses.reserve(skeleton->Names.size());
  core::TextWriter writer(model->Head);
  writer.Text("version 1\nnodes\n");
  for (const auto bone : skeleton->Bones) {
    const size_t index = model->DefaultPoses.size();
    writer.Format("%3d \"%s\" %d\n", static_cast<int64_t>(index), skeleton->Names[index], int32_t{bone->Parent});
    QuatPosToMatrix(bone->Rotation, bone->Position, model->DefaultPoses.emplace_back());
  }
  writer.Text("end\nskeleton\n");
  return model;
}

int64_t AnimationSmdSize(const AnimationSmdModel& model, int64_t blocks) {
  return static_cast<int64_t>(model.Head.size()) + blocks * (model.Bones.Count() * OrdinaryLine + 12);
}

void WriteBindPoseSmd(core::TextWriter& writer, const AnimationSmdModel& model) {
  SkeletonFrame frame(static_cast<size_t>(model.Bones.Count()));
  frame.Begin();
  for (const auto bone : model.Bones) {
    const Vec3 position = bone->Position;
    EulerAngles angles;
    QuatToEuler(bone->Rotation, angles);
    frame.Line(&position, &angles);
  }
  writer.Raw(model.Head);
  for (int time = 0; time < 2; ++time) {
    WriteTime(writer, time);
    frame.Write(writer);
  }
  writer.Text("end\n");
}

void WriteAnimationSmd(core::TextWriter& writer, const AnimationSmdModel& model, const CheckedAnimation& animation,
                       bool onDefaultPose) {
  writer.Raw(model.Head);
  AnimationText text(model, animation, onDefaultPose);
  text.WriteBlock(writer, 0, 0);
  for (int32_t frame = 0; frame < animation.FrameCount(); ++frame) text.WriteBlock(writer, int64_t{frame} + 1, frame);
  writer.Text("end\n");
}

}  // namespace tarnwick::decompiler
