#pragma once

#include <string>
#include <utility>
#include <vector>

#include "compiler/compile_context.h"
#include "compiler/mesh/build_meshes.h"
#include "compiler/skeleton/model_bones.h"
#include "qc/script.h"
#include "smd/smd_source.h"

namespace tarnwick::tests {

/// A source that is built corner by corner.
struct SourceBuilder {
  smd::SmdSource Source;

  SourceBuilder() {
    Source.Path = "mesh.smd";
    Source.Nodes = {{"root", -1}};
  }

  smd::SourceCorner Corner(smd::Triple position, smd::Triple normal = {0, 0, 1}, float u = 0, float v = 0,
                           std::vector<smd::Link> links = {}) {
    smd::SourceCorner corner{
        position, normal, u, v, 0, static_cast<uint32_t>(Source.Links.size()), static_cast<uint32_t>(links.size())};
    Source.Links.insert(Source.Links.end(), links.begin(), links.end());
    return corner;
  }
  SourceBuilder& Add(const std::string& material, const smd::SourceCorner& a, const smd::SourceCorner& b,
                     const smd::SourceCorner& c) {
    size_t number = 0;
    while (number < Source.Materials.size() && Source.Materials[number] != material) ++number;
    if (number == Source.Materials.size()) Source.Materials.push_back(material);
    Source.TriangleMaterials.push_back(static_cast<int32_t>(number));
    Source.Corners.insert(Source.Corners.end(), {a, b, c});
    return *this;
  }
  SourceBuilder& Triangle(const std::string& material, smd::Triple a, smd::Triple b, smd::Triple c) {
    return Add(material, Corner(a), Corner(b), Corner(c));
  }
  /// A box with triangles that look outward, counterclockwise seen from outside as sources have them.
  SourceBuilder& Box(smd::Triple low, smd::Triple high, const std::string& material = "box", int32_t bone = 0) {
    const auto at = [&](int corner) {
      smd::SourceCorner made = Corner(
          {(corner & 1) != 0 ? high.X : low.X, (corner & 2) != 0 ? high.Y : low.Y, (corner & 4) != 0 ? high.Z : low.Z},
          {0, 0, 1});
      made.Bone = bone;
      return made;
    };
    static constexpr int Faces[12][3] = {{0, 2, 1}, {1, 2, 3}, {4, 5, 6}, {5, 7, 6}, {0, 1, 4}, {1, 5, 4},
                                         {2, 6, 3}, {3, 6, 7}, {0, 4, 2}, {2, 4, 6}, {1, 3, 5}, {3, 7, 5}};
    for (const auto& face : Faces) Add(material, at(face[0]), at(face[1]), at(face[2]));
    return *this;
  }
};

/// A compile in memory up to the stage that a test looks at: one model of one mesh and one bone, unless told otherwise.
struct CompileFixture {
  compiler::CompileOptions Options;
  compiler::CompilePlan Plan;
  compiler::ModelBones Bones;
  std::vector<smd::SmdSource> Sources;
  std::vector<std::string> Told;  // texts of errors and warnings
  size_t Errors = 0;

  CompileFixture() {
    AddBone("root", -1);
    Plan.Script = qc::ReadScriptText("", "test.qc", {.FindSources = false, .Read = {}, .Limits = {}});
  }

  void AddBone(const std::string& name, int32_t parent, model::Vec3 position = {0, 0, 0}) {
    compiler::ModelBone bone;
    bone.Name = name;
    bone.Parent = parent;
    bone.Position = position;
    bone.ToModel = model::RigidTransform::Of(model::EulerAngles{0, 0, 0}, position);
    if (parent >= 0) bone.ToModel = Bones.Bones[static_cast<size_t>(parent)].ToModel * bone.ToModel;
    Bones.AddName(name, static_cast<int32_t>(Bones.Bones.size()));
    Bones.Bones.push_back(bone);
  }
  compiler::SourceUse AddSource(smd::SmdSource source, const std::string& name) {
    Sources.push_back(std::move(source));
    compiler::SourceUse use;
    use.Source = static_cast<int32_t>(Sources.size()) - 1;
    use.Name = name;
    return use;
  }
  compiler::PlanModel& AddModel(smd::SmdSource source, const std::string& name = "mesh.smd") {
    compiler::PlanBodyPart& part = Plan.BodyParts.emplace_back();
    part.Name = "body";
    return part.Models.emplace_back(compiler::PlanModel{name, AddSource(std::move(source), name), {}});
  }

  /// Runs `stage` with a context that has the sources.
  template <typename Stage>
  void Run(const Stage& stage) {
    compiler::CompileContext context(Options, Plan);
    for (size_t i = 0; i < Sources.size(); ++i) context.SetSource(static_cast<int32_t>(i), Sources[i]);
    stage(context);
    Errors = context.ErrorCount();
    for (const core::Trouble& trouble : context.TakeTroubles()) Told.push_back(trouble.Text);
  }
  compiler::BuiltMeshes Meshes() {
    compiler::BuiltMeshes meshes;
    Run([&](compiler::CompileContext& context) { compiler::BuildMeshes(context, Bones, meshes); });
    return meshes;
  }
};

}  // namespace tarnwick::tests
