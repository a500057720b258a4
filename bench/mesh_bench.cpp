// The export of a model's meshes, against the same bytes written by one fprintf for each value.

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>

#include "decompiler/decompile_job.h"
#include "decompiler/job/job_context.h"
#include "decompiler/writers/mesh_smd.h"
#include "model/mesh_pieces.h"
#include "model/vtx_layout.h"
#include "model/vtx_tree.h"
#include "support/model_builder.h"
#include "support/scratch_folder.h"
#include "support/silent_report.h"

namespace {

using namespace tarnwick;

/// A hilly square of `side` times `side` vertices, each bound to two bones.
tests::MeshDescription Grid(int side) {
  tests::MeshDescription mesh;
  mesh.Vertices.clear();
  std::vector<uint16_t> indices;
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) {
      const float u = static_cast<float>(x) / static_cast<float>(side);
      const float v = static_cast<float>(y) / static_cast<float>(side);
      tests::VertexDescription vertex;
      vertex.Position = {u * 37.0f, v * 41.0f, std::sin(u * 9.0f) * std::cos(v * 7.0f) * 5.0f};
      vertex.Normal = {std::sin(u), std::cos(v), 0.57735f};
      vertex.U = u;
      vertex.V = v;
      vertex.Weights = {{0, u}, {1, 1 - u}};
      mesh.Vertices.push_back(vertex);
      if (x + 1 == side || y + 1 == side) continue;
      const int corner = y * side + x;
      for (const int index : {corner, corner + 1, corner + side, corner + 1, corner + side + 1, corner + side}) {
        indices.push_back(static_cast<uint16_t>(index));
      }
    }
  }
  mesh.Lods = {tests::Triangles(indices)};
  return mesh;
}

/// 40,000 vertices and 79,000 triangles, written once for all benchmarks.
const std::string& ModelPath() {
  static const tests::ScratchFolder folder;
  static const std::string path = [] {
    tests::ModelBuilder builder;
    builder.Bones = {{.Name = "root"}, {.Name = "arm", .Parent = 0}};
    builder.BodyParts[0].Models[0].Meshes = {Grid(200)};
    return builder.Write(folder.Path());
  }();
  return path;
}

void CountBytes(benchmark::State& state, const std::string& folder) {
  const auto size = std::filesystem::file_size(folder + "/cube.smd");
  state.SetBytesProcessed(static_cast<int64_t>(size) * static_cast<int64_t>(state.iterations()));
}

/// The whole job, from reading the model to the renamed files.
void Export(benchmark::State& state) {
  const tests::ScratchFolder folder;
  tests::SilentReport report;
  decompiler::DecompileJob job;
  job.ModelPath = ModelPath();
  job.OutputDirectory = folder.Path();
  for (auto _ : state) decompiler::DecompileModel(job, report);
  CountBytes(state, folder.Path());
}
BENCHMARK(Export)->Unit(benchmark::kMillisecond);

void PrintVertex(std::FILE* file, const decompiler::VvdVertex& vertex) {
  std::fprintf(file, "%d", decompiler::MainBone(vertex));
  for (const float value : {vertex.Position.x, vertex.Position.y, vertex.Position.z, vertex.Normal.x, vertex.Normal.y,
                            vertex.Normal.z, vertex.U, 0.0f - vertex.V}) {
    std::fprintf(file, " %f", static_cast<double>(value));
  }
  std::fprintf(file, " %d", vertex.WeightCount);
  for (int i = 0; i < vertex.WeightCount; ++i) {
    std::fprintf(file, " %d", vertex.Bones[i]);
    std::fprintf(file, " %f", static_cast<double>(vertex.Weights[i]));
  }
  std::fprintf(file, "\n");
}

/// The plain way: the model is read the same way, each value goes through fprintf.
void PlainExport(benchmark::State& state) {
  const tests::ScratchFolder folder;
  tests::SilentReport report;
  decompiler::DecompileJob record;
  record.ModelPath = ModelPath();
  record.OutputDirectory = folder.Path();
  for (auto _ : state) {
    decompiler::JobContext job(record, report);
    const std::string stem = record.ModelPath.substr(0, record.ModelPath.size() - 4);
    job.Model.Mdl = *decompiler::LoadModelFile(record.ModelPath);
    job.Model.Vtx = decompiler::LoadVtxFile(stem + ".dx90.vtx");
    job.Model.Layout = decompiler::FindVtxLayout(job);
    const auto part = job.Model.View().At<decompiler::StudioBodyPart>(job.Model.Header()->BodyPartOffset);
    const auto model = job.Model.View().At<decompiler::StudioModel>(part->Offset() + (*part)->ModelOffset);
    const auto lod =
        decompiler::VtxLodAt(job.Model.Vtx->View(), *decompiler::VtxModelAt(job.Model.Vtx->View(), 0, 0), 0);
    const auto pieces = decompiler::GatherMeshPieces(job, *model, *lod);
    std::FILE* file = std::fopen((folder.Path() + "/cube.smd").c_str(), "w");
    std::fprintf(file, "version 1\nnodes\n  0 \"root\" -1\n  1 \"arm\" 0\nend\nskeleton\ntime 0\n");
    for (int i = 0; i < 2; ++i) std::fprintf(file, "  %d %f %f %f %f %f %f\n", i, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0);
    std::fprintf(file, "end\ntriangles\n");
    for (const auto& mesh : pieces.Meshes) {
      for (const auto& strip : mesh.Strips) {
        for (int64_t k = 0; k < strip.IndexCount; ++k) {
          const auto index = strip.Indices[decompiler::TriangleIndex(k)]->Vertex;
          if (k % 3 == 0)
            std::fprintf(file, "%.*s.tga\n", static_cast<int>(mesh.Material.size()), mesh.Material.data());
          PrintVertex(file, *decompiler::GetMeshVertex(mesh.Vertices, strip.GroupVertices[index]->MeshVertex));
        }
      }
    }
    std::fprintf(file, "end\n");
    std::fclose(file);
  }
  CountBytes(state, folder.Path());
}
BENCHMARK(PlainExport)->Unit(benchmark::kMillisecond);

}  // namespace
