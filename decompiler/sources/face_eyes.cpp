#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>
#include <set>
#include <string>

#include "decompiler/sources/face.h"
#include "decompiler/sources/script_values.h"
#include "model/bone_math.h"

namespace tarnwick::decompiler::sources {

namespace {

/// How far over the middle the vertices of a lid still move, where none lies farther.
constexpr float UsualSplit = 0.1f;
/// How far a direction of an eye may be from the one that a compile gives it.
constexpr float DirectionTolerance = 1e-3f;

/// The shapes of one lid; nothing for one that the descriptor does not have.
struct LidShapes {
  std::optional<size_t> Lowered, Raised;
};

/// A lid of an eye, as its record has it.
struct LidRecord {
  int32_t Descriptor;
  float Heights[3];
  int32_t Parts[3];

  /// Without heights and names of its own there is none.
  bool Exists() const {
    const bool flat = Heights[0] == 0 && Heights[1] == 0 && Heights[2] == 0;
    return !flat || Parts[0] != Parts[1] || Parts[1] != Parts[2] || Parts[0] != Descriptor;
  }
};
LidRecord UpperLid(const StudioEyeball& eye) {
  return {eye.UpperLidFlexDesc,
          {eye.UpperTarget[0], eye.UpperTarget[1], eye.UpperTarget[2]},
          {eye.UpperFlexDescs[0], eye.UpperFlexDescs[1], eye.UpperFlexDescs[2]}};
}
LidRecord LowerLid(const StudioEyeball& eye) {
  return {eye.LowerLidFlexDesc,
          {eye.LowerTarget[0], eye.LowerTarget[1], eye.LowerTarget[2]},
          {eye.LowerFlexDescs[0], eye.LowerFlexDescs[1], eye.LowerFlexDescs[2]}};
}

/// Finds the shapes that close and open a lid: they meet at the height at which it rests.
LidShapes FindLid(const FaceShapes& shapes, const LidRecord& record) {
  const int32_t descriptor = record.Descriptor;
  const float(&heights)[3] = record.Heights;
  LidShapes lid;
  if (!record.Exists()) return lid;
  std::optional<size_t> other;
  for (size_t i = 0; i < shapes.Shapes.size(); ++i) {
    const FaceShape& shape = shapes.Shapes[i];
    if (descriptor < 0 || shape.Descriptor != static_cast<size_t>(descriptor)) continue;
    if (shape.Targets[2] == heights[0] && shape.Targets[3] == heights[1]) {
      if (!lid.Lowered) lid.Lowered = i;
    } else if (shape.Targets[0] == heights[1] && shape.Targets[1] == heights[2]) {
      if (!lid.Raised) lid.Raised = i;
    } else if (!other) {
      other = i;
    }
  }
  if (lid.Lowered || lid.Raised || !other) return lid;
  return {other, other};  // one shape serves for both ways
}

float Dot(const Vec3& a, const Vec3& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}

/// The degrees whose tangent is `tangent` as a float.
float AngleOf(float tangent) {
  const auto nearest = static_cast<float>(std::atan(double{tangent}) * (180 / std::numbers::pi));
  for (const float angle : {nearest, std::nextafter(nearest, -90.0f), std::nextafter(nearest, 90.0f)}) {
    if (static_cast<float>(std::tan(double{angle} * (std::numbers::pi / 180))) == tangent) return angle;
  }
  return nearest;
}

/// The number whose reciprocal is `value` as a float.
float ReciprocalOf(float value) {
  if (value == 0) return 0;
  const float nearest = 1 / value;
  for (const float number : {nearest, std::nextafter(nearest, 0.0f), std::nextafter(nearest, 2 * nearest)}) {
    if (1 / number == value) return number;
  }
  return nearest;
}

class Eyes {
 public:
  Eyes(JobContext& job, const core::Record<StudioModel>& model, FaceNames& names, std::string_view vtaName,
       const FaceShapes& shapes, const std::vector<int32_t>& frames)
      : m_job(job), m_model(model), m_names(names), m_vtaName(vtaName), m_shapes(shapes), m_frames(frames) {}

  void Run() {
    const auto eyes =
        m_job.Table<StudioEyeball>("eyeball table", m_model.Offset() + m_model->EyeballOffset, m_model->EyeballCount);
    const Skeleton* skeleton = GetSkeleton(m_job);
    if (!eyes || skeleton == nullptr ||
        !m_job.Spend(eyes->Count() * (RecordCost + 2 * static_cast<int64_t>(m_frames.size())))) {
      return;
    }
    float middle = 0;
    for (const auto eye : *eyes) middle += RightOf(*skeleton, *eye) / static_cast<float>(eyes->Count());
    std::vector<std::optional<std::string>> written;
    std::vector<bool> rights;
    for (int64_t i = 0; i < eyes->Count() && m_job.ScriptWithinBounds(); ++i) {
      const float side = RightOf(*skeleton, *(*eyes)[i]) - middle;
      rights.push_back(side != 0 ? side > 0 : i == 0);
      written.push_back(WriteEyeball(*skeleton, (*eyes)[i], i, rights.back()));
    }
    for (size_t i = 0; i < written.size() && m_job.ScriptWithinBounds(); ++i) {
      const auto eye = (*eyes)[static_cast<int64_t>(i)];
      if (written[i]) WriteLids(eye, *written[i], rights[i]);
    }
  }

 private:
  /// How far the eye lies to the right, as one sees that looks with it.
  static float RightOf(const Skeleton& skeleton, const StudioEyeball& eye) {
    if (!skeleton.Bones.Holds(eye.Bone)) return 0;
    const Vec3 forward = eye.Forward, up = eye.Up, origin = eye.Origin;
    const Vec3 right = {forward.y * up.z - forward.z * up.y, forward.z * up.x - forward.x * up.z,
                        forward.x * up.y - forward.y * up.x};
    return Dot(right, origin);
  }

  /// The material of the mesh that is the white of the eye.
  std::optional<std::string_view> WhiteOf(const StudioEyeball& eye, int64_t number) {
    const auto& meshes = m_shapes.Flexes.Meshes;
    for (const auto mesh : meshes) {
      if (mesh->Kind == MeshKindEyeball && mesh->Eyeball == number) return m_job.MaterialName(mesh->Material);
    }
    for (const auto mesh : meshes) {
      if (eye.Texture != 0 && mesh->Material == eye.Texture) return m_job.MaterialName(mesh->Material);
    }
    return std::nullopt;
  }

  std::string NameOf(const core::Record<StudioEyeball>& eye, bool right) {
    const auto stored = eye->NameOffset == 0 ? std::nullopt : m_job.Model.NameOf(eye, eye->NameOffset);
    const std::string wanted = stored && !stored->empty() ? std::string(*stored) : right ? "righteye" : "lefteye";
    std::string name = wanted;
    for (int number = 2; !m_taken.insert(name).second; ++number) name = wanted + "_" + std::to_string(number);
    return name;
  }

  /// The eye's name; nothing if it had to be left out.
  std::optional<std::string> WriteEyeball(const Skeleton& skeleton, const core::Record<StudioEyeball>& eye,
                                          int64_t number, bool right) {
    const auto white = WhiteOf(*eye, number);
    if (!white || !skeleton.Bones.Holds(eye->Bone)) {
      m_job.Lose("eyes that no mesh or no bone belongs to");
      m_job.Script().Text("    // an eye is left out, since no mesh or no bone belongs to it: number " +
                          std::to_string(number) + "\n");
      return std::nullopt;
    }
    const auto bone = skeleton.Bones[eye->Bone];
    Vec3 origin, up, forward;
    InverseTransformPoint(eye->Origin, bone->PoseToBone, origin);
    const std::string name = NameOf(eye, right);
    // The iris' own material is not kept; that of the white brings no other one in.
    m_job.Script().Text("    eyeball " + Quoted(m_job, name) + " " +
                        Quoted(m_job, skeleton.Names[static_cast<size_t>(eye->Bone)]) + " " + Numbers(m_job, origin) +
                        " " + QuotedMaterial(m_job, *white) + " " + Number(m_job, eye->Radius * 2) + " " +
                        Number(m_job, AngleOf(eye->ForwardOffset)) + " " + QuotedMaterial(m_job, *white) + " " +
                        Number(m_job, ReciprocalOf(eye->IrisScale)) + "\n");
    // A compile looks along -Y of the model, with Z above.
    GetMatrixColumn(bone->PoseToBone, 2, up);
    GetMatrixColumn(bone->PoseToBone, 1, forward);
    const bool usual = Near(eye->Up, up) && Near(eye->Forward, {-forward.x, -forward.y, -forward.z});
    if (!usual) m_job.Lose("directions of eyes");
    return name;
  }

  static bool Near(const Vec3& a, const Vec3& b) {
    return std::abs(a.x - b.x) <= DirectionTolerance && std::abs(a.y - b.y) <= DirectionTolerance &&
           std::abs(a.z - b.z) <= DirectionTolerance;
  }

  void WriteLids(const core::Record<StudioEyeball>& eye, const std::string& name, bool right) {
    WriteLid(UpperLid(*eye), right ? "upper_right" : "upper_left", name, right);
    WriteLid(LowerLid(*eye), right ? "lower_right" : "lower_left", name, right);
  }

  void WriteLid(const LidRecord& record, std::string_view usualName, const std::string& eye, bool right) {
    if (!record.Exists()) return;
    const bool held = m_names.Has(record.Descriptor);
    const LidShapes lid = FindLid(m_shapes, record);
    const auto pose = [&](const char* word, std::optional<size_t> shape, float height) {
      return std::string(word) + std::to_string(shape ? m_frames[*shape] : 0) + " " + Number(m_job, height);
    };
    m_job.Script().Text(
        "    eyelid " + Quoted(m_job, held ? m_names.Descriptors[static_cast<size_t>(record.Descriptor)] : usualName) +
        " " + Quoted(m_job, m_vtaName) + pose(" lowerer ", lid.Lowered, record.Heights[0]) +
        pose(" neutral ", {}, record.Heights[1]) + pose(" raiser ", lid.Raised, record.Heights[2]) + " split " +
        (right ? "" : "-") + Number(m_job, SplitOf(lid, right)) + " eyeball " + Quoted(m_job, eye) + "\n");
    m_names.Declare(record.Descriptor);
    for (const int32_t part : record.Parts) m_names.Declare(part);
  }

  /// A distance over the middle within which all vertices of the lid lie. It steps where no places of vertices are, so
  /// that what texts round does not change it.
  float SplitOf(const LidShapes& lid, bool right) {
    float reach = 0;
    for (const std::optional<size_t>& shape : {lid.Lowered, lid.Raised}) {
      if (shape) reach = std::max(reach, ReachAcross(m_job, m_shapes, m_shapes.Shapes[*shape], !right));
    }
    constexpr float Steps = 10, Aside = 0.003f;
    return reach < UsualSplit - Aside ? UsualSplit : (std::ceil((reach - Aside) * Steps) + 1) / Steps;
  }

  JobContext& m_job;
  core::Record<StudioModel> m_model;
  FaceNames& m_names;
  std::string_view m_vtaName;
  const FaceShapes& m_shapes;
  const std::vector<int32_t>& m_frames;
  std::set<std::string> m_taken;
};

}  // namespace

std::vector<bool> FindLidShapes(JobContext& job, const core::Record<StudioModel>& model, const FaceShapes& shapes) {
  std::vector<bool> ofLids(shapes.Shapes.size());
  const auto eyes = job.Model.View().Array<StudioEyeball>(model.Offset() + model->EyeballOffset, model->EyeballCount);
  if (!eyes) return ofLids;
  const auto mark = [&](const LidShapes& lid) {
    if (lid.Lowered) ofLids[*lid.Lowered] = true;
    if (lid.Raised) ofLids[*lid.Raised] = true;
  };
  for (const auto eye : *eyes) {
    if (!job.Spend(RecordCost + 2 * static_cast<int64_t>(shapes.Shapes.size()))) return ofLids;
    mark(FindLid(shapes, UpperLid(*eye)));
    mark(FindLid(shapes, LowerLid(*eye)));
  }
  return ofLids;
}

std::vector<int32_t> LidDescriptors(JobContext& job, const core::Record<StudioModel>& model) {
  std::vector<int32_t> descriptors;
  const auto eyes = job.Model.View().Array<StudioEyeball>(model.Offset() + model->EyeballOffset, model->EyeballCount);
  if (!eyes || !job.Spend(eyes->Count() * RecordCost)) return descriptors;
  for (const auto eye : *eyes) {
    for (const LidRecord& lid : {UpperLid(*eye), LowerLid(*eye)}) {
      if (!lid.Exists()) continue;
      descriptors.push_back(lid.Descriptor);
      descriptors.insert(descriptors.end(), std::begin(lid.Parts), std::end(lid.Parts));
    }
  }
  return descriptors;
}

void WriteEyes(JobContext& job, const core::Record<StudioModel>& model, FaceNames& names, std::string_view vtaName,
               const FaceShapes& shapes, const std::vector<int32_t>& frames) {
  if (model->EyeballCount != 0) Eyes(job, model, names, vtaName, shapes, frames).Run();
}

}  // namespace tarnwick::decompiler::sources
