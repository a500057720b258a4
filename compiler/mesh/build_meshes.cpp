#include "compiler/mesh/build_meshes.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "compiler/mesh/model_mesher.h"
#include "compiler/mesh/shape_file.h"
#include "compiler/mesh/strip_groups.h"
#include "compiler/mesh/tangents.h"
#include "compiler/mesh/texture_table.h"
#include "core/paths.h"

namespace tarnwick::compiler {

namespace {

/// Bytes that a corner takes while meshes are made and in the files, about.
constexpr int64_t CornerCost = 200;
constexpr int64_t TextureCost = 100;
/// Numbers in the skin table have 15 bits.
constexpr size_t MostTextures = 32767;

/// A mesh's name in small letters, without an ending that meshes have.
std::string PlainName(std::string_view name) {
  constexpr std::string_view Endings[] = {".smd", ".sma", ".phys", ".dmx"};
  std::string plain = core::LowerAscii(name);
  std::replace(plain.begin(), plain.end(), '\\', '/');
  for (const std::string_view ending : Endings) {
    if (!plain.ends_with(ending) || plain.size() == ending.size()) continue;
    plain.resize(plain.size() - ending.size());
    break;
  }
  return plain;
}

/// Whether two names as typed mean the same mesh: slashes, case and the extension may differ.
bool SameMesh(std::string_view a, std::string_view b) {
  return PlainName(a) == PlainName(b);
}

/// A mesh's name without folder and extension.
std::string StemOf(std::string_view name) {
  return PlainName(core::LastComponent(name));
}

class MeshBuild {
 public:
  MeshBuild(CompileContext& context, ModelBones& bones, BuiltMeshes& meshes)
      : m_context(context), m_plan(context.Plan), m_bones(bones), m_meshes(meshes), m_textures(context.Plan) {}

  bool Run() {
    if (!TakeLevels()) return false;
    if (m_bones.Bones.size() > 256) {
      m_context.Error(
          {}, "the model keeps " + std::to_string(m_bones.Bones.size()) + " bones; its vertices can name 256 at most",
          core::TroubleKind::Limit);
      return false;
    }
    RegisterTextures();
    for (const PlanBodyPart& part : m_plan.BodyParts) {
      BuiltBodyPart& built = m_meshes.BodyParts.emplace_back();
      built.Name = part.Name;
      m_meshes.Triangles.emplace_back();
      for (const PlanModel& model : part.Models) {
        if (!AddModel(model, part.At)) return false;
      }
    }
    TellUnknownReplacements();
    TellUnknownMaterials();
    return AddSkins();
  }

 private:
  bool TakeLevels() {
    const size_t levels = 1 + m_plan.Lods.size();
    if (levels > MostLods) {
      m_context.Error(m_plan.Lods[MostLods - 1].At,
                      "the script has " + std::to_string(levels) + " levels of detail; a model holds " +
                          std::to_string(MostLods) + " at most",
                      core::TroubleKind::Limit);
      return false;
    }
    m_meshes.LodCount = static_cast<int32_t>(levels);
    m_meshes.ShadowLod = levels > 1 && m_plan.Lods.back().Shadow;
    m_replacementUsed.resize(m_plan.Lods.size());
    for (size_t i = 0; i < m_plan.Lods.size(); ++i) m_replacementUsed[i].resize(m_plan.Lods[i].Replacements.size());
    return true;
  }

  /// The level whose meshes stand at level `lod`: $minlod throws the finer ones away.
  size_t LevelAt(size_t lod) const {
    const size_t least = static_cast<size_t>(std::max(m_plan.LeastLod, 0));
    const size_t last = m_plan.Lods.size() - (m_meshes.ShadowLod ? 1 : 0);
    return std::max(lod, std::min(least, last));
  }

  /// Whether a replacement's name is that of the model's mesh. A folder may be left out where the rest tells enough.
  bool Means(const std::string& name, const PlanModel& model) const {
    if (SameMesh(name, model.Name)) return true;
    if (name.find_first_of("/\\") != std::string::npos) return false;
    const std::string wanted = StemOf(name);
    if (wanted.empty() || StemOf(model.Name) != wanted) return false;
    size_t named = 0;
    for (const PlanBodyPart& part : m_plan.BodyParts) {
      for (const PlanModel& other : part.Models) {
        if (SameMesh(name, other.Name)) return false;
        named += StemOf(other.Name) == wanted && !SameMesh(other.Name, model.Name) ? 1U : 0U;
      }
    }
    return named == 0;
  }

  /// The mesh that `model` shows at a level; nothing if it shows none.
  const SourceUse* MeshAt(const PlanModel& model, size_t level) {
    if (level == 0) return model.Mesh.Source >= 0 ? &model.Mesh : nullptr;
    const auto& replacements = m_plan.Lods[level - 1].Replacements;
    for (size_t i = 0; i < replacements.size(); ++i) {
      if (!Means(replacements[i].Model, model)) continue;
      m_replacementUsed[level - 1][i] = true;
      return replacements[i].Mesh.Source >= 0 ? &replacements[i].Mesh : nullptr;
    }
    return model.Mesh.Source >= 0 ? &model.Mesh : nullptr;
  }

  /// Textures stand in the order in which the finest meshes of all models first use them.
  void RegisterTextures() {
    for (const PlanBodyPart& part : m_plan.BodyParts) {
      for (const PlanModel& model : part.Models) {
        const size_t level = LevelAt(0);
        const SourceUse* use = MeshAt(model, level);
        const smd::SmdSource* source = use == nullptr ? nullptr : m_context.Source(use->Source);
        if (source != nullptr) TexturesOf(*source, level);
      }
    }
    m_registered = true;
  }

  MaterialTextures TexturesOf(const smd::SmdSource& source, size_t level) {
    MaterialTextures textures;
    textures.reserve(source.Materials.size());
    for (const std::string& material : source.Materials) {
      std::string name = m_textures.NameOf(material);
      bool isReplaced = false;
      if (level > 0 && !TakeLevelsName(m_plan.Lods[level - 1], name, isReplaced)) {
        textures.push_back(-1);
      } else if (level > 0 && !isReplaced && m_registered && !m_context.Options.KeepValues &&
                 m_textures.FindKnown(name) < 0) {
        textures.push_back(-1);
        if (m_toldMaterials.insert(core::LowerAscii(name)).second) {
          m_context.Warning(m_plan.Lods[level - 1].At, "no mesh of the first level wears the material " +
                                                           qc::Shown(name) +
                                                           "; its triangles are left out without a replacematerial");
        }
      } else {
        textures.push_back(m_textures.Find(name));
      }
    }
    return textures;
  }

  /// Puts the name of the level's own material into `name`. False if the level leaves its triangles out.
  bool TakeLevelsName(const PlanLod& lod, std::string& name, bool& isReplaced) const {
    const auto is = [&](const std::string& other) {
      const std::string typed = m_textures.NameInScript(other);
      return core::EqualIgnoringCase(typed, name) || core::EqualIgnoringCase(typed, m_textures.Renamed(name));
    };
    for (const std::string& removed : lod.RemovedMeshes) {
      if (is(removed)) return false;
    }
    for (const auto& [from, to] : lod.Materials) {
      if (!is(from)) continue;
      name = m_textures.NameInScript(to);
      isReplaced = true;
      break;
    }
    return true;
  }

  bool AddModel(const PlanModel& model, const qc::Place& at) {
    BuiltModel& built = m_meshes.BodyParts.back().Models.emplace_back();
    built.Name = model.Name;
    built.FirstVertex = static_cast<int32_t>(m_meshes.Vertices.size());
    BuiltModelTriangles& triangles = m_meshes.Triangles.back().emplace_back();
    for (int32_t lod = 0; lod < m_meshes.LodCount; ++lod) {
      BuiltModelLod& level = triangles.Lods.emplace_back();
      if (lod == 0) continue;
      const PlanLod& plan = m_plan.Lods[static_cast<size_t>(lod - 1)];
      level.SwitchDistance = plan.Shadow ? -1.0f : plan.Threshold;
    }
    ModelMesher mesher(m_context.Options);
    for (const PlanFaceLine& line : model.Face) {
      if (const auto* normals = std::get_if<PlanSphereNormals>(&line)) MakeSphere(*normals, mesher);
    }
    for (size_t lod = 0; lod < triangles.Lods.size(); ++lod) {
      if (!AddLevel(model, at, lod, mesher)) return false;
    }
    std::map<int32_t, MeshDraft> drafts = mesher.Take();
    for (const PlanFaceLine& line : model.Face) {
      if (const auto* normals = std::get_if<PlanSphereNormals>(&line)) TellUnwornSphere(*normals, drafts);
    }
    Sort(model, drafts);
    for (auto& [texture, draft] : drafts) {
      if (!AddMesh(model, at, texture, draft, built, triangles)) return false;
    }
    built.VertexCount = static_cast<int32_t>(m_meshes.Vertices.size()) - built.FirstVertex;
    return true;
  }

  bool AddLevel(const PlanModel& model, const qc::Place& at, size_t lod, ModelMesher& mesher) {
    const size_t level = LevelAt(lod);
    const SourceUse* use = MeshAt(model, level);
    const smd::SmdSource* source = use == nullptr ? nullptr : m_context.Source(use->Source);
    if (source == nullptr) return true;
    const qc::Place& place = use->Name.empty() ? at : use->At;
    const auto corners = static_cast<int64_t>(source->Corners.size());
    const auto materials = static_cast<int64_t>(source->Materials.size());
    if (!m_context.Spend(corners * CornerCost + materials * TextureCost, place)) return false;
    const MaterialTextures textures = TexturesOf(*source, level);
    if (m_textures.Count() > MostTextures) {
      m_context.Error(place, "the meshes wear more than " + std::to_string(MostTextures) + " materials",
                      core::TroubleKind::Limit);
      return false;
    }
    std::array<bool, 256> used{};
    mesher.Add(*source, *use, m_bones, lod, textures, used);
    for (size_t bone = 0; bone < m_bones.Bones.size(); ++bone) {
      if (used[bone]) m_bones.MarkVertex(static_cast<int32_t>(bone), lod);
    }
    if (lod == 0) m_meshes.TriangleCount += corners / 3;
    return true;
  }

  /// The normals of a material point away from a middle. That comes ahead of the sharing of vertices: corners that
  /// differ in nothing else become one.
  void MakeSphere(const PlanSphereNormals& sphere, ModelMesher& mesher) {
    smd::SmdSource none;
    const SourceUse plain;
    const CornerVertices corners(none, plain, m_bones, 0, m_context.Options);
    mesher.PointAway(m_textures.FindKnown(m_textures.NameInScript(sphere.Material)),
                     corners.PlaceOf({sphere.Center.x, sphere.Center.y, sphere.Center.z}));
  }
  void TellUnwornSphere(const PlanSphereNormals& sphere, const std::map<int32_t, MeshDraft>& drafts) {
    if (drafts.contains(m_textures.FindKnown(m_textures.NameInScript(sphere.Material)))) return;
    m_context.Warning(sphere.At, "no triangle wears the material " + qc::Shown(sphere.Material));
  }

  /// Vertices stand in the order of the model's shape file, where it has one: its numbers are theirs.
  void Sort(const PlanModel& model, std::map<int32_t, MeshDraft>& drafts) {
    for (auto& [texture, draft] : drafts) SortVertices(draft, {});
    const std::vector<int32_t> sources = ShapeSources(model);
    const smd::SmdSource* source = sources.empty() ? nullptr : m_context.Source(sources.front());
    const smd::SourceShape* rest = source == nullptr ? nullptr : ShapeAt(*source, 0);
    if (rest == nullptr) return;
    smd::SourceShape ordered = *rest;
    std::stable_sort(ordered.Vertices.begin(), ordered.Vertices.end(),
                     [](const smd::ShapeVertex& a, const smd::ShapeVertex& b) { return a.Number < b.Number; });
    const SourceUse use = ShapeUse(model.Mesh);
    const std::vector<ShapePoint> points =
        PointsOf(ordered, CornerVertices(*source, use, m_bones, 0, m_context.Options));
    ShapeMatch match(points);
    for (auto& [texture, draft] : drafts) {
      std::vector<uint32_t> ranks;
      ranks.reserve(draft.Vertices.size());
      for (const MeshVertex& vertex : draft.Vertices) {
        const int32_t point = match.Find(vertex.Position, vertex.Normal);
        ranks.push_back(point < 0 ? ~uint32_t{0} : static_cast<uint32_t>(point));
      }
      SortVertices(draft, ranks);
    }
  }

  bool AddMesh(const PlanModel& model, const qc::Place& at, int32_t texture, MeshDraft& draft, BuiltModel& built,
               BuiltModelTriangles& triangles) {
    if (draft.Vertices.size() > MostMeshVertices) {
      m_context.Error(model.Mesh.Name.empty() ? at : model.Mesh.At,
                      "\"" + model.Name + "\" has " + std::to_string(draft.Vertices.size()) +
                          " vertices that wear the material \"" + m_textures.Names()[static_cast<size_t>(texture)] +
                          "\"; a mesh holds " + std::to_string(MostMeshVertices) + " at most",
                      core::TroubleKind::Limit);
      return false;
    }
    BuiltMesh& mesh = built.Meshes.emplace_back();
    mesh.Texture = texture;
    mesh.FirstVertex = static_cast<int32_t>(m_meshes.Vertices.size()) - built.FirstVertex;
    mesh.VertexCount = static_cast<int32_t>(draft.Vertices.size());
    for (size_t lod = 0; lod < MostLods; ++lod) {
      const size_t level = std::min(lod, triangles.Lods.size() - 1);
      mesh.LodVertexCounts[lod] = static_cast<int32_t>(
          std::count_if(draft.Lods.begin(), draft.Lods.end(), [&](uint8_t highest) { return highest >= level; }));
    }
    const size_t first = m_meshes.Vertices.size();
    for (const MeshVertex& vertex : draft.Vertices) m_meshes.Vertices.push_back(RecordOf(vertex));
    m_meshes.VertexLods.insert(m_meshes.VertexLods.end(), draft.Lods.begin(), draft.Lods.end());
    AddTangents(draft, triangles.Lods.size());
    const std::span<const model::VvdVertex> vertices(m_meshes.Vertices.data() + first, draft.Vertices.size());
    for (size_t lod = 0; lod < triangles.Lods.size(); ++lod) {
      triangles.Lods[lod].Meshes.emplace_back().Groups =
          MakeStripGroups(vertices, draft.Triangles[lod], {m_bones.Static, {}});
    }
    return true;
  }

  static model::VvdVertex RecordOf(const MeshVertex& vertex) {
    model::VvdVertex record{};
    record.WeightCount = static_cast<uint8_t>(vertex.Weights.Count);
    for (int32_t i = 0; i < vertex.Weights.Count; ++i) {
      record.Weights[i] = vertex.Weights.Weights[i];
      record.Bones[i] = static_cast<uint8_t>(vertex.Weights.Bones[i]);
    }
    record.Position = vertex.Position;
    record.Normal = vertex.Normal;
    record.U = vertex.U;
    record.V = vertex.V;
    return record;
  }

  /// A vertex takes its tangent from the finest level that uses it.
  void AddTangents(const MeshDraft& draft, size_t levels) {
    std::vector<std::array<float, 4>> tangents = TangentsOf(draft.Vertices, draft.Triangles[0]);
    std::vector<uint8_t> known(draft.Vertices.size());
    size_t missing = known.size();
    const auto learn = [&](const std::vector<MeshTriangle>& triangles, const auto& take) {
      std::vector<uint32_t> fresh;
      for (const MeshTriangle& triangle : triangles) {
        for (const uint32_t corner : triangle) {
          if (known[corner] != 0) continue;
          known[corner] = 1;
          fresh.push_back(corner);
        }
      }
      missing -= fresh.size();
      if (!fresh.empty()) take(fresh);
    };
    learn(draft.Triangles[0], [](const std::vector<uint32_t>&) {});
    for (size_t lod = 1; lod < levels && missing > 0; ++lod) {
      learn(draft.Triangles[lod], [&](const std::vector<uint32_t>& fresh) {
        const auto coarse = TangentsOf(draft.Vertices, draft.Triangles[lod]);
        for (const uint32_t vertex : fresh) tangents[vertex] = coarse[vertex];
      });
    }
    m_meshes.Tangents.insert(m_meshes.Tangents.end(), tangents.begin(), tangents.end());
  }

  void TellUnknownReplacements() {
    for (size_t lod = 0; lod < m_plan.Lods.size(); ++lod) {
      const auto& replacements = m_plan.Lods[lod].Replacements;
      for (size_t i = 0; i < replacements.size(); ++i) {
        if (m_replacementUsed[lod][i] || lod + 1 < LevelAt(0)) continue;
        m_context.WarnOfUnknown(
            replacements[i].Model, replacements[i].At,
            "no body shows the mesh \"" + replacements[i].Model + "\"; its replacement is left out");
      }
    }
  }

  void TellUnknownMaterials() {
    if (m_plan.Lods.empty()) return;
    std::set<int32_t> sources;
    for (const PlanBodyPart& part : m_plan.BodyParts) {
      for (const PlanModel& model : part.Models) sources.insert(model.Mesh.Source);
    }
    for (const PlanLod& lod : m_plan.Lods) {
      for (const PlanReplacement& replacement : lod.Replacements) sources.insert(replacement.Mesh.Source);
    }
    std::set<std::string> worn;
    for (const int32_t number : sources) {
      const smd::SmdSource* source = m_context.Source(number);
      if (source == nullptr) continue;
      for (const std::string& material : source->Materials) {
        const std::string name = m_textures.NameOf(material);
        worn.insert(core::LowerAscii(name));
        worn.insert(core::LowerAscii(m_textures.Renamed(name)));
      }
    }
    const auto isWorn = [&](const std::string& typed) {
      return worn.contains(core::LowerAscii(m_textures.NameInScript(typed)));
    };
    for (const PlanLod& lod : m_plan.Lods) {
      std::vector<std::string> names = lod.RemovedMeshes;
      for (const auto& [from, to] : lod.Materials) names.push_back(from);
      for (const std::string& name : names) {
        if (!isWorn(name)) m_context.Warning(lod.At, "no mesh wears the material " + qc::Shown(name));
      }
    }
  }

  void TellLongRows(const PlanSkins& group) {
    for (size_t row = 1; row < group.Rows.size(); ++row) {
      if (group.Rows[row].size() <= group.Rows[0].size()) continue;
      m_context.Warning(group.At, "skin " + std::to_string(row) + " names " + std::to_string(group.Rows[row].size()) +
                                      " materials, the first row " + std::to_string(group.Rows[0].size()) +
                                      "; those past its end replace nothing");
      return;  // the author looks at the other rows too
    }
  }

  bool AddSkins() {
    const qc::Place at = m_plan.Skins.empty() ? qc::Place{} : m_plan.Skins.front().At;
    int64_t rows = 1, cells = 0;
    for (const PlanSkins& group : m_plan.Skins) {
      rows = std::max<int64_t>(rows, static_cast<int64_t>(group.Rows.size()));
      for (const auto& row : group.Rows) cells += static_cast<int64_t>(row.size());
    }
    const int64_t textures = static_cast<int64_t>(m_textures.Count()) + cells;
    if (textures > static_cast<int64_t>(MostTextures) || rows > static_cast<int64_t>(MostTextures)) {
      m_context.Error(at, "the skins name more materials than the skin table can hold", core::TroubleKind::Limit);
      return false;
    }
    if (!m_context.Spend(rows * textures * int64_t{sizeof(int16_t)} + textures * TextureCost, at)) return false;
    for (const PlanSkins& group : m_plan.Skins) TellLongRows(group);
    m_meshes.Skins = MakeSkins(m_plan.Skins, m_textures);
    m_meshes.Textures = m_textures.Names();
    return true;
  }

  CompileContext& m_context;
  const CompilePlan& m_plan;
  ModelBones& m_bones;
  BuiltMeshes& m_meshes;
  TextureTable m_textures;
  bool m_registered = false;  // whether the table holds all that the finest meshes wear
  std::set<std::string> m_toldMaterials;
  std::vector<std::vector<bool>> m_replacementUsed;  // of each level but the first
};

}  // namespace

bool BuildMeshes(CompileContext& context, ModelBones& bones, BuiltMeshes& meshes) {
  return MeshBuild(context, bones, meshes).Run();
}

}  // namespace tarnwick::compiler
