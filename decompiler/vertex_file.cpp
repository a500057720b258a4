#include "decompiler/vertex_file.h"

#include <utility>

#include "decompiler/companion_files.h"

namespace tarnwick::decompiler {

namespace {

/// `modelPath` with what follows its last full stop replaced by "vvd".
std::string VvdPath(const std::string& modelPath) {
  return modelPath.substr(0, modelPath.find_last_of('.') + 1) + "vvd";
}

/// Puts the vertices of a file with fix-ups in the order in which the meshes number them: the runs in table order, one
/// behind the other. False, told, if a run does not lie inside the file.
bool RebuildVertices(JobContext& job, const VvdHeader& header, VertexImage& image) {
  const core::ImageView view = image.File.View();
  const auto fixups = view.Array<VvdFixup>(header.FixupOffset, header.FixupCount);
  if (!fixups) {
    job.DamagedTable(image.File.Path(), "fix-up table", header.FixupOffset, header.FixupCount, view.Size());
    return false;
  }
  int64_t total = 0;
  for (const auto fixup : *fixups) {
    if (fixup->Lod < 0) continue;
    const int64_t offset = header.VertexOffset + int64_t{fixup->SourceVertex} * int64_t{sizeof(VvdVertex)};
    total += fixup->VertexCount;
    // The rebuilt array takes the place of the file's own, so it cannot be longer than the file.
    if (fixup->SourceVertex < 0 || !view.Array<VvdVertex>(offset, fixup->VertexCount) ||
        !view.Fits(0, total, sizeof(VvdVertex))) {
      job.Damaged(image.File.Path(), "fix-up", fixup.Offset(), "names vertices that the file does not hold");
      return false;
    }
  }
  image.Rebuilt.reserve(static_cast<size_t>(total));
  for (const auto fixup : *fixups) {
    if (fixup->Lod < 0 || fixup->VertexCount == 0) continue;
    const int64_t offset = header.VertexOffset + int64_t{fixup->SourceVertex} * int64_t{sizeof(VvdVertex)};
    const VvdVertex* run = &**view.At<VvdVertex>(offset);
    image.Rebuilt.insert(image.Rebuilt.end(), run, run + fixup->VertexCount);
  }
  image.Vertices = core::RecordArray<VvdVertex>(image.Rebuilt.data(), 0, total);
  return true;
}

std::optional<VertexImage> ReadVertexImage(JobContext& job) {
  const std::string path = VvdPath(job.Model.Mdl.Path());
  const auto found = FindCompanion(job, {&path, 1});
  if (!found) {
    job.LogError("No vertex file: " + path);
    return std::nullopt;
  }
  std::string reason;
  auto file = core::FileImage::Read(*found, &reason);
  if (!file) {
    job.LogError("Unable to read " + *found + ": " + reason);
    return std::nullopt;
  }
  VertexImage image{std::move(*file), {}, {}, false};
  const core::ImageView view = image.File.View();
  const auto header = view.At<VvdHeader>(0);
  if (!header) {
    job.Damaged(image.File.Path(), "header", 0, "runs past the end of the file");
    return std::nullopt;
  }
  image.HasVertices = (*header)->Id == VvdId && (*header)->VertexOffset != 0;
  if (!image.HasVertices) {
    job.LogError(image.File.Path() + " holds no vertex data");
    return image;
  }
  CheckChecksum(job, image.File.Path(), (*header)->Checksum);
  if ((*header)->FixupCount != 0) {
    if (!RebuildVertices(job, **header, image)) return std::nullopt;
    return image;
  }
  const int64_t offset = (*header)->VertexOffset;
  const int64_t count = (view.Size() - offset) / int64_t{sizeof(VvdVertex)};
  const auto vertices = offset < 0 || count < 0 ? std::nullopt : view.Array<VvdVertex>(offset, count);
  if (!vertices) {
    job.DamagedTable(image.File.Path(), "vertex table", offset, (*header)->LodVertexCount[0], view.Size());
    return std::nullopt;
  }
  image.Vertices = *vertices;
  return image;
}

}  // namespace

const VertexImage* LoadVvdFile(JobContext& job) {
  if (!std::exchange(job.Model.VerticesSought, true)) job.Model.Vertices = ReadVertexImage(job);
  return job.Model.Vertices ? &*job.Model.Vertices : nullptr;
}

std::optional<MeshVertexData> GetModelVertexData(JobContext& job, const core::Record<StudioModel>& model) {
  const VertexImage* image = LoadVvdFile(job);
  if (image == nullptr || !image->HasVertices) return std::nullopt;
  const auto first = static_cast<int64_t>(static_cast<uint32_t>(model->VertexByteOffset) / sizeof(VvdVertex));
  return MeshVertexData{image->Vertices, first};
}

std::optional<MeshVertexData> GetMeshVertexData(JobContext& job, const core::Record<StudioMesh>& mesh) {
  const auto model = job.Model.View().At<StudioModel>(mesh.Offset() + mesh->ModelOffset);
  if (!model) {
    job.Damaged(job.Model.Mdl.Path(), "mesh", mesh.Offset(), "names an owner outside the file");
    return std::nullopt;
  }
  auto data = GetModelVertexData(job, *model);
  if (data) data->First += mesh->FirstVertex;
  return data;
}

}  // namespace tarnwick::decompiler
