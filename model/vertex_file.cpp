#include "model/vertex_file.h"

#include <algorithm>
#include <utility>

#include "model/companion_files.h"

namespace tarnwick::model {

namespace {

/// `modelPath` with what follows its last full stop replaced by "vvd".
std::string VvdPath(const std::string& modelPath) {
  return modelPath.substr(0, modelPath.find_last_of('.') + 1) + "vvd";
}

void TellNoVertices(ModelReader& reader, core::TroubleKind kind, const std::string& path, std::string text,
                    std::string alike) {
  reader.Tell({.Kind = kind, .File = path, .Text = std::move(text), .Alike = std::move(alike)});
}

/// Puts the vertices of a file with fix-ups in the order in which the meshes number them: the runs in table order, one
/// behind the other. False, told, if a run does not lie inside the file.
bool RebuildVertices(ModelReader& reader, const VvdHeader& header, VertexImage& image) {
  const core::ImageView view = image.File.View();
  const auto fixups = view.Array<VvdFixup>(header.FixupOffset, header.FixupCount);
  if (!fixups) {
    reader.DamagedTable(image.File.Path(), "fix-up table", header.FixupOffset, header.FixupCount, view.Size());
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
      reader.Damaged(image.File.Path(), "fix-up", fixup.Offset(), "names vertices that the file does not hold");
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

std::optional<core::FileImage> ReadVvdFile(ModelReader& reader) {
  const std::string path = VvdPath(reader.Model.Mdl.Path());
  const auto found = FindCompanion(reader, {&path, 1});
  if (!found) {
    TellNoVertices(reader, core::TroubleKind::Missing, path, "No vertex file: " + path, "No vertex file");
    return std::nullopt;
  }
  std::string reason;
  auto file = reader.Files().Read(*found, &reason);
  if (!file) {
    TellNoVertices(reader, core::TroubleKind::Unreadable, *found, "Unable to read " + *found + ": " + reason,
                   "Unable to read the vertex file");
    return std::nullopt;
  }
  return file;
}

std::optional<VertexImage> ImageOf(ModelReader& reader, core::FileImage file) {
  VertexImage image{std::move(file), {}, {}, false};
  const core::ImageView view = image.File.View();
  const auto header = view.At<VvdHeader>(0);
  if (!header) {
    reader.Damaged(image.File.Path(), "header", 0, "runs past the end of the file");
    return std::nullopt;
  }
  image.HasVertices = (*header)->Id == VvdId && (*header)->VertexOffset != 0;
  if (!image.HasVertices) {
    TellNoVertices(reader, core::TroubleKind::Damaged, image.File.Path(), image.File.Path() + " holds no vertex data",
                   "the vertex file holds no vertex data");
    return image;
  }
  CheckChecksum(reader, image.File.Path(), (*header)->Checksum);
  if ((*header)->FixupCount != 0) {
    if (!RebuildVertices(reader, **header, image)) return std::nullopt;
    return image;
  }
  const int64_t offset = (*header)->VertexOffset;
  const int64_t count = (view.Size() - offset) / int64_t{sizeof(VvdVertex)};
  const auto vertices = offset < 0 || count < 0 ? std::nullopt : view.Array<VvdVertex>(offset, count);
  if (!vertices) {
    reader.DamagedTable(image.File.Path(), "vertex table", offset, (*header)->LodVertexCount[0], view.Size());
    return std::nullopt;
  }
  image.Vertices = *vertices;
  return image;
}

}  // namespace

const VertexImage* LoadVvdFile(ModelReader& reader) {
  return reader.Model.VerticesSought ? UseVvdFile(reader, std::nullopt) : UseVvdFile(reader, ReadVvdFile(reader));
}

const VertexImage* UseVvdFile(ModelReader& reader, std::optional<core::FileImage> file) {
  LoadedModel& model = reader.Model;
  if (!std::exchange(model.VerticesSought, true) && file) model.Vertices = ImageOf(reader, std::move(*file));
  return model.Vertices ? &*model.Vertices : nullptr;
}

std::vector<int64_t> TangentPlaces(const VertexImage& image, int64_t count) {
  constexpr int64_t TangentSize = 4 * sizeof(float);
  const core::ImageView view = image.File.View();
  const auto header = view.At<VvdHeader>(0);
  if (!header || (*header)->TangentOffset == 0 || count > image.Vertices.Count()) return {};
  const int64_t first = (*header)->TangentOffset;
  std::vector<int64_t> places;
  const auto add = [&](int64_t from, int64_t run) {
    if (!view.Fits(first + from * TangentSize, run, TangentSize)) return false;
    for (int64_t i = 0; i < run; ++i) places.push_back(first + (from + i) * TangentSize);
    return true;
  };
  places.reserve(static_cast<size_t>(count));
  if (image.Rebuilt.empty()) return add(0, count) ? places : std::vector<int64_t>{};
  const auto fixups = view.Array<VvdFixup>((*header)->FixupOffset, (*header)->FixupCount);
  if (!fixups) return {};
  for (const auto fixup : *fixups) {
    const int64_t run = std::min<int64_t>(fixup->VertexCount, count - static_cast<int64_t>(places.size()));
    if (fixup->Lod >= 0 && run > 0 && !add(fixup->SourceVertex, run)) return {};
  }
  return static_cast<int64_t>(places.size()) == count ? places : std::vector<int64_t>{};
}

std::optional<MeshVertexData> GetModelVertexData(ModelReader& reader, const core::Record<StudioModel>& model) {
  const VertexImage* image = LoadVvdFile(reader);
  if (image == nullptr || !image->HasVertices) return std::nullopt;
  const auto first = static_cast<int64_t>(static_cast<uint32_t>(model->VertexByteOffset) / sizeof(VvdVertex));
  return MeshVertexData{image->Vertices, first};
}

std::optional<MeshVertexData> GetMeshVertexData(ModelReader& reader, const core::Record<StudioMesh>& mesh) {
  const auto model = reader.Model.View().At<StudioModel>(mesh.Offset() + mesh->ModelOffset);
  if (!model) {
    reader.Damaged(reader.Model.Mdl.Path(), "mesh", mesh.Offset(), "names an owner outside the file");
    return std::nullopt;
  }
  auto data = GetModelVertexData(reader, *model);
  if (data) data->First += mesh->FirstVertex;
  return data;
}

}  // namespace tarnwick::model
