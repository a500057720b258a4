#include "compiler/face/build_face.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "compiler/face/face_names.h"
#include "compiler/face/mesh_flexes.h"
#include "compiler/mesh/strip_groups.h"
#include "compiler/mesh/texture_table.h"
#include "core/paths.h"
#include "model/bone_math.h"
#include "qc/messages.h"

namespace tarnwick::compiler {

namespace {

/// The edges of the weight ranges in which a flex without a place grows and falls.
constexpr float FallStart = 10, FallEnd = 11;

/// The face of one model.
class FaceBuild {
 public:
  FaceBuild(CompileContext& context, const ModelBones& bones, BuiltMeshes& meshes, BuiltFace& face, FaceNames& names)
      : m_context(context), m_bones(bones), m_meshes(meshes), m_face(face), m_names(names), m_textures(context.Plan) {}

  void Run(const PlanModel& plan, BuiltModel& model, BuiltModelFace& built) {
    m_plan = &plan;
    m_model = &model;
    m_built = &built;
    built.MeshFlexes.resize(model.Meshes.size());
    // Names count wherever they stand in the block.
    for (const PlanFaceLine& line : plan.Face) {
      if (const auto* eye = std::get_if<PlanEyeball>(&line)) AddEyeball(*eye);
      if (const auto* controllers = std::get_if<PlanFlexController>(&line)) AddControllers(*controllers);
      if (const auto* file = std::get_if<PlanVcaFile>(&line)) {
        m_context.Warning(file->At, "vcafile is not built", core::TroubleKind::Lost);
      }
    }
    // Flexes are numbered in the order in which lines first name them.
    m_places = PlacesOf(plan.Face);
    for (const PlanFaceLine& line : plan.Face) {
      if (const auto* file = std::get_if<PlanFlexFile>(&line)) AddFlexFile(*file);
      if (const auto* lid = std::get_if<PlanEyelid>(&line)) AddEyelid(*lid);
      if (const auto* variables = std::get_if<PlanLocalVars>(&line)) {
        for (const std::string& name : variables->Names) m_names.Descriptor(name);
      }
    }
    for (const PlanFaceLine& line : plan.Face) {
      if (const auto* rule = std::get_if<PlanFlexRule>(&line)) AddRule(*rule);
    }
    for (const PlanFaceLine& line : plan.Face) {
      if (const auto* mouth = std::get_if<PlanMouth>(&line)) AddMouth(*mouth);
    }
  }

 private:
  int32_t BoneNamed(const std::string& name, const qc::Place& at) {
    if (m_bones.Static) return 0;  // all bones of its sources are one
    const int32_t bone = m_bones.Find(name);
    if (bone >= 0) return bone;
    qc::NearName near(name);
    for (const ModelBone& other : m_bones.Bones) near.Offer(other.Name);
    m_context.Error(at, "the model has no bone " + qc::Shown(name) + qc::DidYouMean(near.Best()),
                    core::TroubleKind::Missing);
    return -1;
  }

  void AddEyeball(const PlanEyeball& eye) {
    const int32_t bone = BoneNamed(eye.Bone, eye.At);
    if (bone < 0) return;
    model::StudioEyeball record{};
    record.Bone = bone;
    const model::RigidTransform toBone = m_bones.Bones[static_cast<size_t>(bone)].ToModel.Inverse();
    record.Origin = toBone.Apply(eye.Center);
    model::RigidTransform turn = toBone;
    turn.Move = {0, 0, 0};
    record.Up = turn.Apply({0, 0, 1});
    record.Forward = turn.Apply({0, -1, 0});
    record.ForwardOffset = static_cast<float>(std::tan(double{eye.Angle} / model::RadiansToDegrees));
    record.Radius = eye.Diameter / 2;
    record.IrisScale = eye.IrisScale != 0 ? 1 / eye.IrisScale : 0;
    const auto number = static_cast<int32_t>(m_built->Eyeballs.size());
    m_built->Eyeballs.push_back(record);
    m_eyes.push_back(eye.Name);
    const std::string white = m_textures.NameInScript(eye.Material), renamed = m_textures.Renamed(white);
    for (BuiltMesh& mesh : m_model->Meshes) {
      if (mesh.Eyeball >= 0) continue;
      const std::string& worn = m_meshes.Textures[static_cast<size_t>(mesh.Texture)];
      if (!core::EqualIgnoringCase(worn, white) && !core::EqualIgnoringCase(worn, renamed)) continue;
      mesh.Eyeball = number;
      return;
    }
    m_context.Warning(eye.At,
                      "no triangle of its own wears the material " + qc::Shown(eye.Material) + " of the eyeball " +
                          qc::Shown(eye.Name),
                      core::TroubleKind::Missing);
  }

  void AddControllers(const PlanFlexController& line) {
    for (const std::string& name : line.Names) {
      if (!m_names.AddController({line.Group, name, line.Minimum, line.Maximum})) {
        m_context.Warning(line.At, "there is a flexcontroller " + qc::Shown(name) + " already");
      }
    }
  }

  /// The shape file, matched to the model's vertices once for each frame that stands for rest.
  const ShapeFile* FileOf(int32_t number, int32_t restFrame, const qc::Place& at) {
    const auto [entry, isNew] = m_files.try_emplace({number, restFrame});
    if (!isNew) return entry->second ? &*entry->second : nullptr;
    const smd::SmdSource* source = m_context.Source(number);
    if (source != nullptr) {
      entry->second = ShapeFile::Open(m_context, at, *source, restFrame, m_plan->Mesh, m_bones, *m_model, m_meshes);
    }
    return entry->second ? &*entry->second : nullptr;
  }

  /// Shapes of one descriptor, however its name is typed, follow each other by their places: each falls where the next
  /// is whole.
  static std::map<std::string, std::vector<float>> PlacesOf(const std::vector<PlanFaceLine>& face) {
    std::map<std::string, std::vector<float>> places;
    for (const PlanFaceLine& line : face) {
      const auto* file = std::get_if<PlanFlexFile>(&line);
      if (file == nullptr) continue;
      for (const PlanShape& shape : file->Shapes) {
        if (shape.What == PlanShape::Kind::Default) continue;
        places[core::LowerAscii(shape.Name)].push_back(shape.Position.value_or(1.0f));
      }
    }
    for (auto& [name, list] : places) {
      std::sort(list.begin(), list.end());
      list.erase(std::unique(list.begin(), list.end()), list.end());
    }
    return places;
  }

  static std::array<float, 4> TargetsOf(const std::vector<float>& places, float place) {
    const auto at = static_cast<size_t>(std::find(places.begin(), places.end(), place) - places.begin());
    std::array<float, 4> targets = {at == 0 ? 0 : places[at - 1], place, FallStart, FallEnd};
    if (at + 1 < places.size()) {
      targets[2] = place;
      targets[3] = places[at + 1];
    }
    return targets;
  }

  void AddFlexFile(const PlanFlexFile& file) {
    int32_t restFrame = 0;
    for (const PlanShape& shape : file.Shapes) {
      if (shape.What == PlanShape::Kind::Default) restFrame = shape.Frame;
    }
    const bool hasShapes = std::any_of(file.Shapes.begin(), file.Shapes.end(),
                                       [](const PlanShape& shape) { return shape.What != PlanShape::Kind::Default; });
    if (!hasShapes) return;
    const ShapeFile* shapes = FileOf(file.Source, restFrame, file.At);
    if (shapes == nullptr) return;
    for (const PlanShape& shape : file.Shapes) {
      if (shape.What == PlanShape::Kind::Default) continue;
      if (shape.IsFrameless) {
        m_context.Warning(shape.At, "the flex " + qc::Shown(shape.Name) + " names no frame; it moves nothing");
      }
      if (!shapes->HasFrame(m_context, shape.Frame, shape.At)) continue;
      FlexShape flex;
      flex.At = shape.At;
      flex.Frame = shape.Frame;
      flex.Targets = TargetsOf(m_places.at(core::LowerAscii(shape.Name)), shape.Position.value_or(1.0f));
      flex.Decay = shape.Decay.value_or(1.0f);
      if (shape.What == PlanShape::Kind::Pair) {
        // The right one comes first, unless the names were said the other way round.
        const int32_t left = m_names.FindDescriptor(shape.Name + "L");
        const int32_t right = m_names.FindDescriptor(shape.Name + "R");
        flex.LeftFirst = left >= 0 && (right < 0 || left < right);
        flex.Descriptor = m_names.Descriptor(shape.Name + (flex.LeftFirst ? "L" : "R"));
        flex.Partner = m_names.Descriptor(shape.Name + (flex.LeftFirst ? "R" : "L"));
        flex.SideBand = shape.Split;
      } else {
        flex.Descriptor = m_names.Descriptor(shape.Name);
        if (shape.Split != 0) flex.KeptSide = shape.Split;
      }
      if (!shapes->AddFlex(m_context, flex, *m_model, m_built->MeshFlexes)) return;
    }
  }

  void AddEyelid(const PlanEyelid& lid) {
    const auto eye = std::find_if(m_eyes.begin(), m_eyes.end(),
                                  [&](const std::string& name) { return core::EqualIgnoringCase(name, lid.Eyeball); });
    if (eye == m_eyes.end()) {
      const std::string name = "the eyelid " + qc::Shown(lid.Name);
      m_context.Error(lid.At,
                      lid.Eyeball.empty() ? name + " names no eyeball"
                                          : name + " belongs to an eyeball " + qc::Shown(lid.Eyeball) +
                                                ", which the model does not have",
                      core::TroubleKind::Missing);
      return;
    }
    model::StudioEyeball& record = m_built->Eyeballs[static_cast<size_t>(eye - m_eyes.begin())];
    const int32_t whole = m_names.Descriptor(lid.Name);
    const std::array<int32_t, 3> parts = {m_names.Descriptor(lid.Name + "_lowerer"),
                                          m_names.Descriptor(lid.Name + "_neutral"),
                                          m_names.Descriptor(lid.Name + "_raiser")};
    const std::array<float, 3> heights = {lid.LowererHeight, lid.NeutralHeight, lid.RaiserHeight};
    const bool isUpper = !core::LowerAscii(lid.Name).starts_with("lower");
    for (size_t k = 0; k < parts.size(); ++k) {
      (isUpper ? record.UpperFlexDescs : record.LowerFlexDescs)[k] = parts[k];
      (isUpper ? record.UpperTarget : record.LowerTarget)[k] = heights[k];
    }
    (isUpper ? record.UpperLidFlexDesc : record.LowerLidFlexDesc) = whole;

    // A lid that is at rest in all its frames has no flex.
    if (lid.LowererFrame == lid.NeutralFrame && lid.RaiserFrame == lid.NeutralFrame) return;
    const ShapeFile* shapes = FileOf(lid.Source, lid.NeutralFrame, lid.At);
    if (shapes == nullptr || !shapes->HasFrame(m_context, lid.LowererFrame, lid.At) ||
        !shapes->HasFrame(m_context, lid.RaiserFrame, lid.At)) {
      return;
    }
    FlexShape flex;
    flex.At = lid.At;
    flex.Descriptor = whole;
    if (lid.Split != 0) flex.KeptSide = lid.Split;
    flex.Frame = lid.LowererFrame;
    flex.Targets = {-FallEnd, -FallStart, lid.LowererHeight, lid.NeutralHeight};
    if (!shapes->AddFlex(m_context, flex, *m_model, m_built->MeshFlexes)) return;
    flex.Frame = lid.RaiserFrame;
    flex.Targets = {lid.NeutralHeight, lid.RaiserHeight, FallStart, FallEnd};
    shapes->AddFlex(m_context, flex, *m_model, m_built->MeshFlexes);
  }

  void AddRule(const PlanFlexRule& line) {
    const auto& rules = m_context.Plan.Script.Rules;
    if (line.Rule < 0 || static_cast<size_t>(line.Rule) >= rules.size()) return;
    AddFlexRule(m_context, rules[static_cast<size_t>(line.Rule)], m_names, m_face);
  }

  void AddMouth(const PlanMouth& mouth) {
    const int32_t bone = BoneNamed(mouth.Bone, mouth.At);
    if (bone < 0) return;
    if (m_names.FindDescriptor(mouth.Flex) < 0) {
      m_context.Warning(mouth.At, "nothing drives the flex " + qc::Shown(mouth.Flex), core::TroubleKind::Missing);
    }
    // A mouth's number is its place, wherever its line stands.
    const auto at = std::ranges::upper_bound(m_face.MouthNumbers, mouth.Number);
    m_face.Mouths.insert(m_face.Mouths.begin() + (at - m_face.MouthNumbers.begin()),
                         {bone, mouth.Forward, m_names.Descriptor(mouth.Flex)});
    m_face.MouthNumbers.insert(at, mouth.Number);
  }

  CompileContext& m_context;
  const ModelBones& m_bones;
  BuiltMeshes& m_meshes;
  BuiltFace& m_face;
  FaceNames& m_names;
  TextureTable m_textures;  // for names alone
  const PlanModel* m_plan = nullptr;
  BuiltModel* m_model = nullptr;
  BuiltModelFace* m_built = nullptr;
  std::vector<std::string> m_eyes;
  std::map<std::string, std::vector<float>> m_places;  // of each flex, whichever file its shapes are of
  std::map<std::pair<int32_t, int32_t>, std::optional<ShapeFile>> m_files;  // by source and frame at rest
};

/// Puts the triangles that flexes move into strip groups of their own.
void PartStripGroups(const CompilePlan& plan, const ModelBones& bones, const BuiltModel& model,
                     const BuiltModelFace& face, const BuiltMeshes& meshes, BuiltModelTriangles& triangles) {
  for (size_t m = 0; m < model.Meshes.size(); ++m) {
    const BuiltMesh& mesh = model.Meshes[m];
    std::vector<uint8_t> moved(static_cast<size_t>(mesh.VertexCount));
    bool any = false;
    for (const BuiltFlex& flex : face.MeshFlexes[m]) {
      for (const model::StudioVertAnim& change : flex.VertAnims) {
        moved[static_cast<uint16_t>(change.Vertex)] = 1;
        any = true;
      }
    }
    if (!any) continue;
    const std::span<const model::VvdVertex> vertices(meshes.Vertices.data() + model.FirstVertex + mesh.FirstVertex,
                                                     moved.size());
    for (size_t lod = 0; lod < triangles.Lods.size(); ++lod) {
      if (lod > 0 && !plan.Lods[lod - 1].Faces) continue;
      std::vector<BuiltStripGroup>& groups = triangles.Lods[lod].Meshes[m].Groups;
      groups = MakeStripGroups(vertices, TrianglesOf(groups), {bones.Static, moved});
    }
  }
}

}  // namespace

bool BuildFace(CompileContext& context, const ModelBones& bones, BuiltMeshes& meshes, BuiltFace& face) {
  const auto& parts = context.Plan.BodyParts;
  const bool any = std::any_of(parts.begin(), parts.end(), [](const PlanBodyPart& part) {
    return std::any_of(part.Models.begin(), part.Models.end(),
                       [](const PlanModel& model) { return !model.Face.empty(); });
  });
  if (!any) return true;
  FaceNames names(face);
  for (size_t p = 0; p < parts.size(); ++p) {
    for (size_t m = 0; m < parts[p].Models.size(); ++m) {
      BuiltModel& model = meshes.BodyParts[p].Models[m];
      BuiltModelFace& built = face.Models.emplace_back();
      built.MeshFlexes.resize(model.Meshes.size());
      const PlanModel& plan = parts[p].Models[m];
      if (plan.Face.empty()) continue;
      FaceBuild(context, bones, meshes, face, names).Run(plan, model, built);
      PartStripGroups(context.Plan, bones, model, built, meshes, meshes.Triangles[p][m]);
    }
  }
  face.Controls = ControlsOf(face.Controllers);
  return true;
}

}  // namespace tarnwick::compiler
