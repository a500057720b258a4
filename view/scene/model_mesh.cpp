#include <algorithm>
#include <cstring>

#include "model/bone_math.h"
#include "model/face_records.h"
#include "model/mesh_pieces.h"
#include "model/model_flexes.h"
#include "model/vtx_layout.h"
#include "model/vtx_tree.h"
#include "view/scene/model_parts.h"
#include "view/scene/model_values.h"

namespace tarnwick::view {

namespace {

using model::ModelReader;

/// The format's bound.
constexpr int64_t MostLods = 8;
/// What a vertex animation costs a reader.
constexpr int64_t DeltaCost = 48;

/// A vertex's weights, three at most, that add up to 1.
void TakeWeights(const model::VvdVertex& from, size_t boneCount, SceneVertex& vertex) {
  const size_t count = std::min<size_t>(from.WeightCount, vertex.Weights.size());
  float sum = 0;
  vertex.Weights = {0, 0, 0};
  for (size_t i = 0; i < count; ++i) {
    if (from.Bones[i] >= boneCount) continue;
    vertex.Bones[i] = from.Bones[i];
    vertex.Weights[i] = std::clamp(Finite(from.Weights[i]), 0.0f, 1.0f);
    sum += vertex.Weights[i];
  }
  if (sum > 0) {
    for (float& weight : vertex.Weights) weight /= sum;
  } else {
    vertex.Weights = {1, 0, 0};
    vertex.Bones = {};
  }
}

/// Takes all meshes of a model, one body part behind the other.
class MeshTaker {
 public:
  MeshTaker(ModelReader& reader, Scene& scene) : m_reader(reader), m_scene(scene) {}

  void Take() {
    const auto header = m_reader.Model.Header();
    const auto parts =
        m_reader.Table<model::StudioBodyPart>("body part table", header->BodyPartOffset, header->BodyPartCount);
    const auto vtxHeader = m_reader.Model.Vtx ? m_reader.Model.Vtx->View().At<model::VtxHeader>(0) : std::nullopt;
    m_lods = vtxHeader ? std::clamp<int64_t>((*vtxHeader)->LodCount, 1, MostLods) : 1;
    m_scene.Lods.resize(static_cast<size_t>(m_lods));
    for (int64_t b = 0; parts && b < parts->Count(); ++b) {
      if (!m_reader.Spend(model::RecordCost) || !TakeBodyPart((*parts)[b], b)) break;
    }
    TakeVertices();
    TakeDeltas();
  }

 private:
  using ModelRecord = core::Record<model::StudioModel>;

  bool TakeBodyPart(const core::Record<model::StudioBodyPart>& part, int64_t number) {
    m_scene.BodyParts.push_back({TextOf(m_reader, part, part->NameOffset), {}});
    const auto models =
        m_reader.Table<model::StudioModel>("model table", part.Offset() + part->ModelOffset, part->ModelCount);
    if (!models) return false;
    for (int64_t m = 0; m < models->Count(); ++m) {
      if (!m_reader.Spend(model::RecordCost + m_lods * model::RecordCost) || !TakeModel((*models)[m], number, m)) {
        return false;
      }
    }
    return true;
  }

  bool TakeModel(const ModelRecord& record, int64_t part, int64_t number) {
    SceneModel& taken = m_scene.BodyParts.back().Models.emplace_back();
    taken.Name = core::FixedText(record->Name);
    taken.TriangleCounts.resize(m_scene.Lods.size());
    taken.VertexCounts.resize(m_scene.Lods.size());
    TakeEyeballs(record, taken);
    if (!m_reader.Model.Vtx) return true;
    const core::ImageView vtx = m_reader.Model.Vtx->View();
    const auto vtxModel = model::VtxModelAt(vtx, part, number);
    for (int64_t l = 0; l < m_lods; ++l) {
      const auto lod = vtxModel ? model::VtxLodAt(vtx, *vtxModel, l) : std::nullopt;
      if (!lod) {
        m_reader.Damaged(m_reader.Model.Vtx->Path(), "tree of models", 0, "runs past the end of the file");
        return false;
      }
      SceneLod& level = m_scene.Lods[static_cast<size_t>(l)];
      const float distance = Finite((*lod)->SwitchDistance);
      level.IsShadow |= distance == -1;
      level.Distance = std::max(level.Distance, distance);
      const model::MeshPieces pieces = model::GatherMeshPieces(m_reader, record, *lod);
      for (const model::MeshPiece& piece : pieces.Meshes) TakePiece(piece, record, part, number, l, taken);
      if (!pieces.Complete) return false;
    }
    m_models.push_back(record);
    return true;
  }

  void TakeEyeballs(const ModelRecord& record, SceneModel& taken) {
    const auto eyes = m_reader.Table<model::StudioEyeball>("eyeball table", record.Offset() + record->EyeballOffset,
                                                           record->EyeballCount);
    if (!eyes || !m_reader.Spend(eyes->Count() * model::RecordCost)) return;
    for (const auto eye : *eyes) {
      taken.Eyeballs.push_back({TextOf(m_reader, eye, eye->NameOffset), BoneOrNone(eye->Bone, m_scene.Bones.size()),
                                Finite(eye->Origin), Finite(eye->Up), Finite(eye->Forward), Finite(eye->Radius),
                                Finite(eye->IrisScale)});
    }
  }

  void TakePiece(const model::MeshPiece& piece, const ModelRecord& record, int64_t part, int64_t number, int64_t lod,
                 SceneModel& taken) {
    const auto mesh = *m_reader.Model.View().At<model::StudioMesh>(record.Offset() + record->MeshOffset +
                                                                   piece.Number * int64_t{sizeof(model::StudioMesh)});
    SceneDraw draw{static_cast<int32_t>(part),
                   static_cast<int32_t>(number),
                   static_cast<int32_t>(lod),
                   mesh->Material,
                   static_cast<int64_t>(m_scene.Indices.size()),
                   0,
                   -1,
                   mesh->FlexCount > 0};
    if (mesh->Kind == model::MeshKindEyeball && mesh->Eyeball >= 0 &&
        static_cast<size_t>(mesh->Eyeball) < taken.Eyeballs.size()) {
      draw.Eyeball = mesh->Eyeball;
    }
    ++m_stamp;
    int64_t vertices = 0;
    for (const model::StripPiece& strip : piece.Strips) {
      for (int64_t k = 0; k < strip.IndexCount / 3 * 3; ++k) {
        const int64_t index = strip.Indices[model::TriangleIndex(k)]->Vertex;
        const auto vertex = static_cast<size_t>(piece.Vertices.First + int64_t{strip.GroupVertices[index]->MeshVertex});
        if (vertex >= m_stamps.size()) m_stamps.resize(vertex + 1);
        if (m_stamps[vertex] != m_stamp) {
          m_stamps[vertex] = m_stamp;
          ++vertices;
        }
        m_scene.Indices.push_back(static_cast<uint32_t>(vertex));
      }
    }
    draw.IndexCount = static_cast<int64_t>(m_scene.Indices.size()) - draw.FirstIndex;
    if (draw.IndexCount == 0) return;
    taken.TriangleCounts[static_cast<size_t>(lod)] += draw.IndexCount / 3;
    taken.VertexCounts[static_cast<size_t>(lod)] += vertices;
    m_scene.Draws.push_back(draw);
  }

  /// Takes the vertices up to the last one that a triangle uses.
  void TakeVertices() {
    const model::VertexImage* image = m_stamps.empty() ? nullptr : model::LoadVvdFile(m_reader);
    if (image == nullptr) return;
    const size_t count = m_stamps.size();
    const std::vector<int64_t> tangents = model::TangentPlaces(*image, static_cast<int64_t>(count));
    m_scene.Points.resize(count);
    m_scene.Vertices.resize(count);
    for (size_t i = 0; i < count; ++i) {
      const model::VvdVertex& from = *image->Vertices[static_cast<int64_t>(i)];
      m_scene.Points[i] = {Finite(from.Position), Finite(from.Normal)};
      SceneVertex& vertex = m_scene.Vertices[i];
      vertex.U = Finite(from.U);
      vertex.V = Finite(from.V);
      TakeWeights(from, m_scene.Bones.size(), vertex);
      if (tangents.empty()) continue;
      std::memcpy(vertex.Tangent.data(), image->File.Bytes().data() + tangents[i], sizeof vertex.Tangent);
      for (float& value : vertex.Tangent) value = Finite(value);
    }
  }

  /// Takes the shapes of all models' flexes, when the vertices are there.
  void TakeDeltas() {
    for (const ModelRecord& record : m_models) {
      const auto vertices = model::GetModelVertexData(m_reader, record);
      const auto flexes = static_cast<int64_t>(m_scene.Flexes.size());
      if (!vertices || flexes == 0 || !m_reader.Spend(flexes * model::RecordCost)) return;
      const auto gathered = model::GatherFlexes(m_reader, record, m_scene.Flexes.size());
      if (!gathered) continue;
      for (const auto& shapes : gathered->ByDescriptor) {
        for (const model::MeshFlex& shape : shapes) {
          if (!TakeShape(*gathered, shape, vertices->First)) return;
        }
      }
    }
  }

  bool TakeShape(const model::ModelFlexes& flexes, const model::MeshFlex& shape, int64_t firstVertex) {
    const core::ImageView mdl = m_reader.Model.View();
    const model::StudioFlex& flex = *shape.Flex;
    const int64_t size = flexes.VertAnimSizeOf(flex);
    const int64_t offset = shape.Flex.Offset() + flex.VertAnimOffset;
    if (!mdl.Fits(offset, flex.VertAnimCount, size)) {
      m_reader.DamagedTable(m_reader.Model.Mdl.Path(), "table of vertex animations", offset, flex.VertAnimCount,
                            mdl.Size());
      return true;
    }
    if (!m_reader.Spend(int64_t{flex.VertAnimCount} * DeltaCost + model::RecordCost)) return false;
    SceneFlexShape taken;
    taken.Flex = flex.FlexDesc;
    const bool hasPartner = flex.Partner > 0 && static_cast<size_t>(flex.Partner) < m_scene.Flexes.size();
    taken.Partner = hasPartner ? flex.Partner : 0;
    for (size_t i = 0; i < taken.Targets.size(); ++i) taken.Targets[i] = Finite(flex.Targets[i]);
    taken.FirstDelta = static_cast<int64_t>(m_scene.FlexDeltas.size());
    const int64_t first = firstVertex + flexes.Meshes[shape.Mesh]->FirstVertex;
    for (int64_t i = 0; i < flex.VertAnimCount; ++i) {
      const auto anim = *mdl.At<model::StudioVertAnim>(offset + i * size);
      const int64_t vertex = first + static_cast<uint16_t>(anim->Vertex);
      // Vertices that no triangle uses have not been taken.
      if (vertex < 0 || vertex >= static_cast<int64_t>(m_scene.Points.size())) continue;
      model::Vec3 position;
      model::Vec3 normal;
      model::DecodeVec48(anim->PositionDelta, position);
      model::DecodeVec48(anim->NormalDelta, normal);
      m_scene.FlexDeltas.push_back(
          {static_cast<uint32_t>(vertex), static_cast<float>(anim->Side) / 255.0f, Finite(position), Finite(normal)});
    }
    taken.DeltaCount = static_cast<int64_t>(m_scene.FlexDeltas.size()) - taken.FirstDelta;
    if (taken.DeltaCount > 0) m_scene.FlexShapes.push_back(taken);
    return true;
  }

  ModelReader& m_reader;
  Scene& m_scene;
  int64_t m_lods = 1;
  std::vector<uint32_t> m_stamps;  // of each vertex: the last piece that used it
  uint32_t m_stamp = 0;
  std::vector<ModelRecord> m_models;
};

}  // namespace

void TakeMesh(ModelReader& reader, Scene& scene) {
  MeshTaker(reader, scene).Take();
}

}  // namespace tarnwick::view
