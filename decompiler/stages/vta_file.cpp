#include "decompiler/stages/vta_file.h"

#include <memory>
#include <utility>

#include "decompiler/stages/reference_skeleton.h"
#include "model/bone_math.h"
#include "model/vertex_file.h"
#include "smd/vta_writer.h"

namespace tarnwick::decompiler {

namespace {

/// Bytes of a vertex line, at the least.
constexpr int64_t LineCost = 60;

/// The changed vertices that one flex has on one mesh, checked.
struct FramePiece {
  MeshVertexData Vertices;
  int64_t FirstVertex = 0;  // the mesh's, in the model
  core::RecordArray<StudioVertAnim> Changes;
  std::vector<StudioVertAnim> Gathered;  // what Changes is of, where the file holds them farther apart
};

struct Frame {
  int32_t Number = 0;
  std::string_view Name;
  std::vector<FramePiece> Pieces;
};

/// What the file holds, gathered and checked before it is formatted.
struct VtaContent {
  std::shared_ptr<const smd::SkeletonText> Skeleton;
  int32_t FrameCount = 0;
  core::RecordArray<VvdVertex> Vertices;  // of the model; none if they could not be had
  bool HasVertices = false;
  bool TurnedBack = false;  // as the mesh of a static model is
  std::vector<Frame> Frames;
};

/// Finds the changes of one flex, which stand `size` bytes apart. False, told, if they do not lie inside the file.
bool FindChanges(JobContext& job, const core::Record<StudioFlex>& flex, int64_t size, FramePiece& piece) {
  const int64_t offset = flex.Offset() + flex->VertAnimOffset;
  const int64_t count = flex->VertAnimCount;
  if (!job.Model.View().Fits(offset, count, size)) {
    job.DamagedTable(job.Model.Mdl.Path(), "vertex animation table", offset, count, job.Model.View().Size());
    return false;
  }
  if (!job.Spend(count * LineCost)) return false;
  if (size == int64_t{sizeof(StudioVertAnim)}) {
    piece.Changes = *job.Model.View().Array<StudioVertAnim>(offset, count);
    return true;
  }
  piece.Gathered.reserve(static_cast<size_t>(count));
  for (int64_t i = 0; i < count; ++i) {
    piece.Gathered.push_back(**job.Model.View().At<StudioVertAnim>(offset + i * size));
  }
  piece.Changes = {piece.Gathered.data(), offset, count};
  return true;
}

/// Adds one flex's changes to `frame`. False if the mesh's vertices cannot be reached: the frame ends there.
bool GatherPiece(JobContext& job, const core::Record<StudioMesh>& mesh, const core::Record<StudioFlex>& flex,
                 int64_t vertAnimSize, Frame& frame) {
  FramePiece piece;
  if (!FindChanges(job, flex, vertAnimSize, piece)) return false;
  const auto vertices = GetMeshVertexData(job, mesh);
  if (!vertices) {
    job.Warn("Frame " + std::to_string(frame.Number) + " (" + std::string(frame.Name) +
             ") is not complete: the vertices of a mesh cannot be reached");
    return false;
  }
  for (const auto change : piece.Changes) {
    if (GetMeshVertex(*vertices, change->Vertex) != nullptr) continue;
    job.Damaged(job.Model.Mdl.Path(), "vertex animation", change.Offset(),
                "names vertex " + std::to_string(change->Vertex) + ", which the vertex file does not hold");
    return false;
  }
  piece.Vertices = *vertices;
  piece.FirstVertex = mesh->FirstVertex;
  frame.Pieces.push_back(std::move(piece));
  return true;
}

void GatherFrames(JobContext& job, const ModelFlexes& flexes, const std::vector<VtaFrame>& frames,
                  VtaContent& content) {
  for (const VtaFrame& wanted : frames) {
    Frame frame{wanted.Number, wanted.Name, {}};
    for (const MeshFlex& entry : wanted.Flexes) {
      if (!GatherPiece(job, flexes.Meshes[entry.Mesh], entry.Flex, flexes.VertAnimSizeOf(*entry.Flex), frame)) break;
    }
    content.Frames.push_back(std::move(frame));
  }
}

/// Puts the model's vertices into `content`; they stay away if the vertex file does not hold them.
void GatherVertices(JobContext& job, const core::Record<StudioModel>& model, VtaContent& content) {
  const auto data = GetModelVertexData(job, model);
  if (!data || !job.Spend(int64_t{model->VertexCount} * LineCost)) return;
  const int64_t count = model->VertexCount;
  if (count < 0 || (count > 0 && GetMeshVertex(*data, count - 1) == nullptr)) {
    job.Damaged(job.Model.Mdl.Path(), "model", model.Offset(),
                "has " + std::to_string(count) + " vertices, which the vertex file does not hold");
    return;
  }
  content.HasVertices = true;
  if (count > 0) content.Vertices = {&*data->Vertices[data->First], 0, count};
}

smd::Triple ToTriple(const Vec3& v) {
  return {v.x, v.y, v.z};
}

smd::Triple Turned(const smd::Triple& v, bool back) {
  return back ? smd::Triple{v.Y, 0.0f - v.X, v.Z} : v;
}

smd::Triple Decode(const PackedVec48& packed) {
  Vec3 value;
  DecodeVec48(packed, value);
  return ToTriple(value);
}

smd::Triple Add(const Vec3& a, const smd::Triple& b) {
  return {a.x + b.X, a.y + b.Y, a.z + b.Z};
}

void WritePiece(smd::VtaWriter& vta, const FramePiece& piece, bool back) {
  for (const auto change : piece.Changes) {
    const VvdVertex& vertex = *GetMeshVertex(piece.Vertices, change->Vertex);
    vta.Vertex(change->Vertex + piece.FirstVertex, Turned(Add(vertex.Position, Decode(change->PositionDelta)), back),
               Turned(Add(vertex.Normal, Decode(change->NormalDelta)), back));
  }
}

void WriteContent(core::TextWriter& writer, const VtaContent& content) {
  smd::VtaWriter vta(writer, *content.Skeleton, content.FrameCount);
  if (!content.HasVertices) return;
  vta.BeginBase();
  for (int64_t v = 0; v < content.Vertices.Count(); ++v) {
    vta.Vertex(v, Turned(ToTriple(content.Vertices[v]->Position), content.TurnedBack),
               Turned(ToTriple(content.Vertices[v]->Normal), content.TurnedBack));
  }
  for (const Frame& frame : content.Frames) {
    vta.BeginFrame(frame.Number, frame.Name);
    for (const FramePiece& piece : frame.Pieces) WritePiece(vta, piece, content.TurnedBack);
  }
  vta.End();
}

}  // namespace

bool WriteVtaFile(JobContext& job, const core::Record<StudioModel>& model, const ModelFlexes& flexes,
                  const std::string& name, const std::vector<VtaFrame>& frames, int32_t frameCount) {
  auto file = job.Create(name);
  if (!file) {
    DecompileLog(job, "Unable to open " + name + "\r\n");
    job.RecordError("Unable to open " + name, core::TroubleKind::Unwritable, "Unable to open a VTA file");
    return false;
  }
  DecompileLog(job, "Creating " + name + "\r\n");
  auto content = std::make_shared<VtaContent>();
  content->Skeleton = FormatReferenceSkeleton(job);
  if (content->Skeleton == nullptr) return false;
  content->FrameCount = frameCount;
  content->TurnedBack = job.ReadyToCompile() && (job.Model.Header()->Flags & ModelFlagStatic) != 0;
  const auto frameSize = static_cast<int64_t>(content->Skeleton->BoneLines.size());
  if (!job.Spend(FileCost + (int64_t{frameCount} + 1) * (frameSize + LineCost))) return false;
  GatherVertices(job, model, *content);
  if (content->HasVertices) GatherFrames(job, flexes, frames, *content);
  const bool complete = content->HasVertices;
  if (!complete) {
    job.LogError(name + " is not complete: the model's vertices cannot be reached", core::TroubleKind::Lost,
                 "a VTA file is not complete");
    if (job.ReadyToCompile()) return false;
  }
  job.WriteFile(std::move(*file), [content = std::move(content)](core::TextWriter& writer) {
    WriteContent(writer, *content);
    return true;
  });
  return complete;
}

}  // namespace tarnwick::decompiler
