#include <cmath>

#include "decompiler/plain/face.h"
#include "model/bone_math.h"

namespace tarnwick::decompiler::plain {

namespace {

/// The words of one side's eye commands.
struct EyeWords {
  std::string_view Eyeball;
  std::string_view Material;
  std::string_view UpperLid;
  std::string_view LowerLid;
  std::string_view Split;
};
constexpr EyeWords RightEye = {"righteye", "eyeball_r", "upper_right", "lower_right", "0.1"};
constexpr EyeWords LeftEye = {"lefteye", "eyeball_l", "upper_left", "lower_left", "-0.1"};

const EyeWords& WordsOf(int64_t eye) {
  return eye == 0 ? RightEye : LeftEye;
}

int32_t FrameOf(const FlexTables& tables, int32_t descriptor) {
  if (descriptor < 0 || static_cast<size_t>(descriptor) >= tables.Frame.size()) return 0;
  return tables.Frame[static_cast<size_t>(descriptor)];
}

bool TellMissing(JobContext& job, std::string_view what, int64_t offset, std::string_view user, int64_t number) {
  job.Damaged(job.Model.Mdl.Path(), what, offset,
              "names " + std::string(user) + " " + std::to_string(number) + ", which the model does not have");
  return false;
}

bool WriteEyeball(JobContext& job, const Skeleton& skeleton, const core::Record<StudioEyeball>& eye, int64_t number) {
  if (!skeleton.Bones.Holds(eye->Bone)) return TellMissing(job, "eyeball", eye.Offset(), "bone", eye->Bone);
  const auto texture = TextureName(job.Model, eye->Texture);
  if (!texture) return TellMissing(job, "eyeball", eye.Offset(), "texture", eye->Texture);
  Vec3 origin;
  InverseTransformPoint(eye->Origin, skeleton.Bones[eye->Bone]->PoseToBone, origin);
  const EyeWords& words = WordsOf(number);
  const float angle = static_cast<float>(std::atan(double{eye->ForwardOffset}) * RadiansToDegrees);
  job.Script().Format("     eyeball %s %s %2.3f %2.3f %2.3f %s %2.3f  %2.3f %s %2.3f\n", words.Eyeball,
                      job.Word(skeleton.Names[static_cast<size_t>(eye->Bone)]), float{origin.x}, float{origin.y},
                      float{origin.z}, words.Material, eye->Radius * 2.0f, angle, job.Word(*texture),
                      1.0f / eye->IrisScale);
  return true;
}

void WriteLids(JobContext& job, const FlexTables& tables, const core::Record<StudioEyeball>& eye, int64_t number) {
  const EyeWords& words = WordsOf(number);
  const int32_t upper = FrameOf(tables, eye->UpperLidFlexDesc);
  const int32_t lower = FrameOf(tables, eye->LowerLidFlexDesc);
  job.Script().Format("      eyelid  %s \"%s\" lowerer %d %f neutral %d %f raiser %d %f split %s eyeball %s\n",
                      words.UpperLid, tables.VtaName, upper, float{eye->UpperTarget[0]}, 0, float{eye->UpperTarget[1]},
                      upper, float{eye->UpperTarget[2]}, words.Split, words.Eyeball);
  job.Script().Format("      eyelid  %s \"%s\" lowerer %d %f neutral %d %f raiser %d %f  split %s eyeball %s\n",
                      words.LowerLid, tables.VtaName, lower, float{eye->LowerTarget[0]}, 0, float{eye->LowerTarget[1]},
                      lower, float{eye->LowerTarget[2]}, words.Split, words.Eyeball);
}

}  // namespace

void WriteEyesAndMouths(JobContext& job, const core::Record<StudioModel>& model, const FlexTables& tables) {
  const Skeleton* skeleton = GetSkeleton(job);
  const auto header = job.Model.Header();
  const auto eyes =
      job.Table<StudioEyeball>("eyeball table", model.Offset() + model->EyeballOffset, model->EyeballCount);
  if (skeleton == nullptr || !eyes) return;
  for (int64_t i = 0; i < eyes->Count(); ++i) {
    if (!job.ScriptWithinBounds() || !WriteEyeball(job, *skeleton, (*eyes)[i], i)) return;
  }
  for (int64_t i = 0; i < eyes->Count() && job.ScriptWithinBounds(); ++i) WriteLids(job, tables, (*eyes)[i], i);

  const auto mouths = job.Table<StudioMouth>("mouth table", header->MouthOffset, header->MouthCount);
  if (!mouths) return;
  for (int64_t m = 0; m < mouths->Count() && job.ScriptWithinBounds(); ++m) {
    const auto mouth = (*mouths)[m];
    const int64_t d = mouth->FlexDesc;
    if (!skeleton->Bones.Holds(mouth->Bone)) {
      TellMissing(job, "mouth", mouth.Offset(), "bone", mouth->Bone);
      return;
    }
    if (d < 0 || d >= static_cast<int64_t>(tables.Names.size())) {
      TellMissing(job, "mouth", mouth.Offset(), "flex descriptor", d);
      return;
    }
    job.Script().Format("     mouth %d \"%s\"  %s %2.3f %2.3f %2.3f\n", m, tables.Names[static_cast<size_t>(d)],
                        job.Word(skeleton->Names[static_cast<size_t>(mouth->Bone)]), float{mouth->Forward.x},
                        float{mouth->Forward.y}, float{mouth->Forward.z});
  }
}

}  // namespace tarnwick::decompiler::plain
