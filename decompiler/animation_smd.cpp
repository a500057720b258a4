#include "decompiler/animation_smd.h"

#include "decompiler/bone_math.h"
#include "decompiler/pose_player.h"
#include "decompiler/quick_rotations.h"
#include "decompiler/skeleton_frame.h"

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
        m_frame(static_cast<size_t>(model.Bones.Count())) {}

  void WriteBlock(core::TextWriter& writer, int64_t number, int32_t frame) {
    WriteTime(writer, number);
    if (m_player.GoTo(frame)) {
      m_frame.Begin();
      const auto count = static_cast<size_t>(m_model.Bones.Count());
      for (size_t bone = 0; bone < count; ++bone) m_player.Changed(bone) ? Line(bone) : m_frame.Keep();
    }
    m_frame.Write(writer);
  }

 private:
  // The turns and the composition give a position that depends on the position alone, and likewise for the rotation,
  // so each part of the line stands as long as its own input does.
  void Line(size_t bone) {
    Vec3 position = m_player.Positions()[bone];
    Quat rotation = m_player.Rotations()[bone];
    const bool root = m_model.TurnRoots && m_model.Bones[static_cast<int64_t>(bone)]->Parent == -1;
    if (m_onDefaultPose) Apply(m_model.DefaultPoses[bone], rotation, position);
    if (root) Apply(m_model.RootTurn, rotation, position);
    EulerAngles angles;
    const bool turned = m_player.RotationChanged(bone);
    if (turned) QuickQuatToEuler(rotation, angles);
    m_frame.Line(m_player.PositionChanged(bone) ? &position : nullptr, turned ? &angles : nullptr);
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
    QuickQuatToEuler(bone->Rotation, angles);
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
