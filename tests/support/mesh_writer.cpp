#include "support/model_builder.h"
#include "support/model_writer.h"

namespace tarnwick::tests {

namespace {

using model::StudioMesh;
using model::StudioModel;
using model::VvdVertex;

int32_t VertexCount(const ModelDescription& model) {
  size_t count = 0;
  for (const MeshDescription& mesh : model.Meshes) count += mesh.Vertices.size();
  return static_cast<int32_t>(count);
}

void WriteMeshes(const ModelDescription& model, size_t bodyPartIndex, size_t modelIndex, FileBuilder& mdl) {
  const auto meshes = mdl.Reserve<StudioMesh>(static_cast<int64_t>(model.Meshes.size()),
                                              PlaceName("meshes", {bodyPartIndex, modelIndex}));
  const auto owner = static_cast<int32_t>(mdl.Place(PlaceName("models", {bodyPartIndex})) +
                                          static_cast<int64_t>(modelIndex * sizeof(StudioModel)));
  int32_t firstVertex = 0;
  for (int64_t i = 0; i < meshes.Count; ++i) {
    const MeshDescription& mesh = model.Meshes[static_cast<size_t>(i)];
    meshes[i].Material = mesh.Material;
    meshes[i].ModelOffset = meshes.To(owner, i);
    meshes[i].VertexCount = static_cast<int32_t>(mesh.Vertices.size());
    meshes[i].FirstVertex = firstVertex;
    if (mesh.Eyeball >= 0) {
      meshes[i].Kind = model::MeshKindEyeball;
      meshes[i].Eyeball = mesh.Eyeball;
    }
    firstVertex += meshes[i].VertexCount;
  }
  auto& record = mdl.Record<StudioModel>(PlaceName("models", {bodyPartIndex}), static_cast<int64_t>(modelIndex));
  record.MeshCount = static_cast<int32_t>(meshes.Count);
  record.MeshOffset = meshes.At(0) - owner;
}

VvdVertex ToRecord(const VertexDescription& vertex) {
  VvdVertex record{};
  for (size_t i = 0; i < vertex.Weights.size() && i < 3; ++i) {
    record.Weights[i] = vertex.Weights[i].Weight;
    record.Bones[i] = vertex.Weights[i].Bone;
  }
  record.WeightCount = static_cast<uint8_t>(vertex.Weights.size());
  record.Position = vertex.Position;
  record.Normal = vertex.Normal;
  record.U = vertex.U;
  record.V = vertex.V;
  return record;
}

/// The vertices as the file keeps them, so that its fix-ups bring `vertices` back.
std::vector<VvdVertex> Scattered(const std::vector<VvdVertex>& vertices, const std::vector<model::VvdFixup>& fixups) {
  std::vector<VvdVertex> scattered;
  size_t next = 0;
  for (const auto& fixup : fixups) {
    const auto end = static_cast<size_t>(fixup.SourceVertex + fixup.VertexCount);
    if (scattered.size() < end) scattered.resize(end);
    if (fixup.Lod < 0) continue;
    for (auto to = static_cast<size_t>(fixup.SourceVertex); to < end; ++to) scattered[to] = vertices.at(next++);
  }
  return scattered;
}

}  // namespace

void WriteBodyParts(const ModelBuilder& model, FileBuilder& mdl) {
  const auto parts = ReserveInHeader<model::StudioBodyPart>(
      model.BodyParts, "body parts", mdl, &model::StudioHeader::BodyPartCount, &model::StudioHeader::BodyPartOffset);
  int32_t firstVertex = 0;
  for (int64_t b = 0; b < parts.Count; ++b) {
    const auto bodyPart = static_cast<size_t>(b);
    const BodyPartDescription& part = model.BodyParts[bodyPart];
    parts[b].ModelCount = static_cast<int32_t>(part.Models.size());
    const auto models = mdl.Reserve<StudioModel>(parts[b].ModelCount, PlaceName("models", {bodyPart}));
    parts[b].ModelOffset = parts.To(models.Offset, b);
    for (int64_t m = 0; m < models.Count; ++m) {
      const ModelDescription& described = part.Models[static_cast<size_t>(m)];
      described.Name.copy(models[m].Name, sizeof(models[m].Name) - 1);
      models[m].VertexCount = VertexCount(described);
      models[m].VertexByteOffset = firstVertex * static_cast<int32_t>(sizeof(VvdVertex));
      firstVertex += models[m].VertexCount;
      WriteMeshes(described, bodyPart, static_cast<size_t>(m), mdl);
      WriteModelFace(described, bodyPart, static_cast<size_t>(m), mdl);
    }
    const int32_t name = mdl.Text(part.Name);
    parts[b].NameOffset = parts.To(name, b);
    mdl.Align(4);
  }
}

void WriteVvd(const ModelBuilder& model, FileBuilder& vvd) {
  std::vector<VvdVertex> vertices;
  for (const auto& part : model.BodyParts) {
    for (const auto& described : part.Models) {
      for (const auto& mesh : described.Meshes) {
        for (const auto& vertex : mesh.Vertices) vertices.push_back(ToRecord(vertex));
      }
    }
  }
  const auto vertexCount = static_cast<int32_t>(vertices.size());
  if (!model.Fixups.empty()) vertices = Scattered(vertices, model.Fixups);

  const auto header = vvd.Reserve<model::VvdHeader>(1, "header");
  header[0].Id = model::VvdId;
  header[0].Version = 4;
  header[0].LodCount = 1;
  header[0].LodVertexCount[0] = vertexCount;
  const auto fixups = vvd.Reserve<model::VvdFixup>(static_cast<int64_t>(model.Fixups.size()), "fixups");
  for (int64_t i = 0; i < fixups.Count; ++i) fixups[i] = model.Fixups[static_cast<size_t>(i)];
  header[0].FixupCount = static_cast<int32_t>(fixups.Count);
  header[0].FixupOffset = fixups.At(0);
  vvd.Align(16);
  const auto records = vvd.Reserve<VvdVertex>(static_cast<int64_t>(vertices.size()), "vertices");
  for (int64_t i = 0; i < records.Count; ++i) records[i] = vertices[static_cast<size_t>(i)];
  header[0].VertexOffset = records.At(0);
  header[0].TangentOffset = static_cast<int32_t>(vvd.Size());
  struct Tangent {
    char Unread[16];
  };
  vvd.Reserve<Tangent>(records.Count, "tangents");
}

}  // namespace tarnwick::tests
