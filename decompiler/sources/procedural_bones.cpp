#include "decompiler/sources/procedural_bones.h"

#include <cmath>

#include "core/paths.h"
#include "decompiler/sources/script_values.h"
#include "decompiler/writers/mesh_names.h"
#include "model/bone_math.h"
#include "model/procedural_records.h"

namespace tarnwick::decompiler::sources {

namespace {

/// The lines of a $jigglebone block.
class JiggleText {
 public:
  explicit JiggleText(JobContext& job) : m_job(job) {}

  void Begin(std::string_view group) { m_text += "  " + std::string(group) + " {\n"; }
  void End() { m_text += "  }\n"; }
  void Value(std::string_view word, float value) { Line(word, Number(m_job, value)); }
  void Angle(std::string_view word, float radians) { Line(word, Degrees(m_job, radians)); }
  void Word(std::string_view word) { m_text += "    " + std::string(word) + "\n"; }
  void Angles(std::string_view word, float least, float most) {
    Line(word, Degrees(m_job, least) + " " + Degrees(m_job, most));
  }
  void Values(std::string_view word, float least, float most) {
    Line(word, Number(m_job, least) + " " + Number(m_job, most));
  }
  const std::string& Text() const { return m_text; }

 private:
  void Line(std::string_view word, const std::string& value) {
    m_text += "    " + std::string(word) + " " + value + "\n";
  }

  JobContext& m_job;
  std::string m_text;
};

void WriteLimits(JiggleText& text, const StudioJiggleBone& bone) {
  if ((bone.Flags & JiggleFlagAngleLimit) != 0) text.Angle("angle_constraint", bone.AngleLimit);
  if ((bone.Flags & JiggleFlagYawLimit) != 0) text.Angles("yaw_constraint", bone.Yaw.Minimum, bone.Yaw.Maximum);
  if (bone.Yaw.Friction != 0) text.Value("yaw_friction", bone.Yaw.Friction);
  if (bone.Yaw.Bounce != 0) text.Value("yaw_bounce", bone.Yaw.Bounce);
  if ((bone.Flags & JiggleFlagPitchLimit) != 0) {
    text.Angles("pitch_constraint", bone.Pitch.Minimum, bone.Pitch.Maximum);
  }
  if (bone.Pitch.Friction != 0) text.Value("pitch_friction", bone.Pitch.Friction);
  if (bone.Pitch.Bounce != 0) text.Value("pitch_bounce", bone.Pitch.Bounce);
}

void WriteTip(JiggleText& text, const StudioJiggleBone& bone) {
  constexpr float UsualStiffness = 100;  // what a compile takes where a script says nothing
  const bool flexible = (bone.Flags & JiggleFlagFlexible) != 0;
  // The springs of a rigid tip are told only where they are not as usual.
  const auto spring = [&](std::string_view word, float value, float usual) {
    if (flexible || value != usual) text.Value(word, value);
  };
  text.Begin(flexible ? "is_flexible" : "is_rigid");
  text.Value("length", bone.Length);
  text.Value("tip_mass", bone.TipMass);
  spring("yaw_stiffness", bone.YawStiffness, UsualStiffness);
  spring("yaw_damping", bone.YawDamping, 0);
  spring("pitch_stiffness", bone.PitchStiffness, UsualStiffness);
  spring("pitch_damping", bone.PitchDamping, 0);
  if ((bone.Flags & JiggleFlagKeepLength) == 0) text.Word("allow_length_flex");
  spring("along_stiffness", bone.AlongStiffness, UsualStiffness);
  spring("along_damping", bone.AlongDamping, 0);
  WriteLimits(text, bone);
  text.End();
}

void WriteBaseLimit(JiggleText& text, const std::string& side, const JiggleBaseLimit& limit) {
  text.Values(side + "_constraint", limit.Minimum, limit.Maximum);
  text.Value(side + "_friction", limit.Friction);
}

void WriteBase(JiggleText& text, const StudioJiggleBone& bone) {
  if ((bone.Flags & JiggleFlagBaseSpring) == 0) return;
  text.Begin("has_base_spring");
  text.Value("base_mass", bone.BaseMass);
  text.Value("stiffness", bone.BaseStiffness);
  text.Value("damping", bone.BaseDamping);
  WriteBaseLimit(text, "left", bone.Left);
  WriteBaseLimit(text, "up", bone.Up);
  WriteBaseLimit(text, "forward", bone.Forward);
  text.End();
}

void WriteJiggleBone(JobContext& job, std::string_view name, const core::Record<StudioBone>& bone) {
  constexpr uint32_t Told = JiggleFlagFlexible | JiggleFlagRigid | JiggleFlagYawLimit | JiggleFlagPitchLimit |
                            JiggleFlagAngleLimit | JiggleFlagKeepLength | JiggleFlagBaseSpring;
  const auto jiggle = job.Table<StudioJiggleBone>("jiggle bone", bone.Offset() + bone->ProceduralOffset, 1);
  if (!jiggle) return job.Lose("jiggle bones that cannot be read");
  const StudioJiggleBone& values = *(*jiggle)[0];
  JiggleText text(job);
  if ((values.Flags & (JiggleFlagFlexible | JiggleFlagRigid)) != 0) WriteTip(text, values);
  WriteBase(text, values);
  constexpr uint32_t BothTips = JiggleFlagFlexible | JiggleFlagRigid;
  if ((values.Flags & ~Told) != 0 || (values.Flags & BothTips) == BothTips) {
    job.Lose("flags of jiggle bones without a statement");
  }
  job.Script().Text("$jigglebone " + Quoted(job, name) + " {\n" + text.Text() + "}\n");
}

/// The text of a .vrd file. Places of triggers are written against a base place of zero, so that they read the same
/// whether a compiler takes them as they stand or relative to it.
class DrivenText {
 public:
  DrivenText(JobContext& job, const Skeleton& skeleton) : m_job(job), m_skeleton(skeleton) {}

  void Add(int64_t number) {
    const auto bone = m_skeleton.Bones[number];
    const auto driven = m_job.Table<StudioDrivenBone>("driven bone", bone.Offset() + bone->ProceduralOffset, 1);
    if (!driven) return m_job.Lose("driven bones that cannot be read");
    const auto record = (*driven)[0];
    const auto triggers =
        m_job.Table<StudioTrigger>("trigger table", record.Offset() + record->TriggerOffset, record->TriggerCount);
    const auto driver = BoneName(m_job, "driven bone", record.Offset(), record->Driver);
    if (!triggers || !driver || !m_job.Spend(triggers->Count() * LineCost)) {
      return m_job.Lose("driven bones that cannot be read");
    }
    m_text += "<helper> " + Word(number) + " " + ParentOf(number) + " " + ParentOf(record->Driver) + " " +
              Word(record->Driver) + "\n<basepos> 0 0 0\n";
    for (const auto trigger : *triggers) {
      const float angle = trigger->InverseTolerance == 0 ? 0 : 1 / trigger->InverseTolerance;
      m_text += "<trigger> " + Degrees(m_job, angle) + " " + Angles(trigger->DriverRotation) + " " +
                Angles(trigger->Rotation) + " " + Numbers(m_job, trigger->Position) + "\n";
    }
    m_text += "\n";
  }

  const std::string& Text() const { return m_text; }

 private:
  static constexpr int64_t LineCost = 256;

  std::string Word(int64_t bone) const { return m_job.Word(m_skeleton.Names[static_cast<size_t>(bone)]); }
  std::string ParentOf(int64_t bone) const {
    const int64_t parent = m_skeleton.Bones[bone]->Parent;
    return m_skeleton.Bones.Holds(parent) ? Word(parent) : "\"\"";
  }
  std::string Angles(const Quat& rotation) const {
    EulerAngles angles;
    QuatToEuler(rotation, angles);
    return Degrees(m_job, angles.x) + " " + Degrees(m_job, angles.y) + " " + Degrees(m_job, angles.z);
  }

  JobContext& m_job;
  const Skeleton& m_skeleton;
  std::string m_text;
};

/// Writes the .vrd file, named after the model, and the statement that names it.
void WriteDrivenFile(JobContext& job, std::string text) {
  const std::string model(core::FixedText(job.Model.Header()->Name));
  const std::string name = job.Names.Take(FileStem(CleanFileName(model)), ".vrd");
  std::string reason;
  auto file = job.Create(name, &reason);
  if (!file) {
    job.LogError(job.OutputPath(name) + ": " + reason, core::TroubleKind::Unwritable, reason);
    return;
  }
  DecompileLog(job, "Creating " + name + "\r\n");
  job.WriteFile(std::move(*file), [content = std::move(text)](core::TextWriter& writer) {
    writer.Text(content);
    return true;
  });
  job.Script().Text("$proceduralbones " + Quoted(job, name) + "\n");
}

}  // namespace

void WriteProceduralBones(JobContext& job) {
  const Skeleton* skeleton = GetSkeleton(job);
  if (skeleton == nullptr) return;
  DrivenText driven(job, *skeleton);
  for (int64_t i = 0; i < skeleton->Count(); ++i) {
    const auto bone = skeleton->Bones[i];
    if (bone->ProceduralType == 0 || bone->ProceduralOffset == 0) continue;
    if (!job.ScriptWithinBounds()) return;
    if (bone->ProceduralType == BoneProcedureJiggle) {
      WriteJiggleBone(job, skeleton->Names[static_cast<size_t>(i)], bone);
    } else if (bone->ProceduralType == BoneProcedureDriven) {
      driven.Add(i);
    } else {
      job.Lose("procedural bones of an unknown kind");
    }
  }
  if (!driven.Text().empty()) WriteDrivenFile(job, driven.Text());
  job.FinishFiles();
}

}  // namespace tarnwick::decompiler::sources
