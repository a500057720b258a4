// The VTA file of a face, as part of a whole job, against the same bytes from one fprintf for each line.

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>

#include "core/report.h"
#include "decompiler/decompile_job.h"
#include "decompiler/job/job_context.h"
#include "model/bone_math.h"
#include "model/vertex_file.h"
#include "support/model_builder.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"

namespace {

using namespace tarnwick;
using namespace tarnwick::decompiler;

constexpr int VertexCount = 20'000;
constexpr int FlexCount = 60;
constexpr int LidFrames = 2;  // of the eyeball
constexpr char VtaName[] = "ravelback_expressions.vta";

/// A head of 20,000 vertices, all of which each of 60 flexes moves. It has one triangle: meshes have a benchmark of
/// their own.
const std::string& ModelPath() {
  static const tests::ScratchFolder folder;
  static const std::string path = [] {
    tests::ModelBuilder builder;
    builder.BodyParts[0].Models[0].Eyeballs = {tests::EyeballDescription{}};
    tests::MeshDescription& mesh = builder.BodyParts[0].Models[0].Meshes[0];
    mesh.Vertices.clear();
    for (int v = 0; v < VertexCount; ++v) {
      const float t = static_cast<float>(v) * 0.01f;
      mesh.Vertices.push_back(
          {.Position = {std::sin(t) * 5, std::cos(t) * 5, t * 0.1f}, .Normal = {std::sin(t), std::cos(t), 0.1f}});
    }
    for (int f = 0; f < FlexCount; ++f) {
      builder.FlexDescs.push_back("flex_" + std::to_string(f));
      tests::FlexDescription& flex = mesh.Flexes.emplace_back();
      flex.FlexDesc = f;
      flex.VertAnims.clear();
      for (int v = 0; v < VertexCount; ++v) {
        const float size = static_cast<float>((v * 7 + f * 13) % 100) * 0.01f;
        flex.VertAnims.push_back({static_cast<int16_t>(v), {size, -size, 0.5f}, {0, size * 0.1f, 0}});
      }
    }
    return builder.Write(folder.Path());
  }();
  return path;
}

void PrintVertex(std::FILE* file, int number, const Vec3& p, const Vec3& n) {
  std::fprintf(file, "    %d %f %f %f %f %f %f\n", number, static_cast<double>(p.x), static_cast<double>(p.y),
               static_cast<double>(p.z), static_cast<double>(n.x), static_cast<double>(n.y), static_cast<double>(n.z));
}

void PrintFlex(std::FILE* file, const JobContext& job, const core::Record<StudioFlex>& flex,
               const MeshVertexData& vertices) {
  const auto changes = job.Model.View().Array<StudioVertAnim>(flex.Offset() + flex->VertAnimOffset, VertexCount);
  for (const auto change : changes.value()) {
    const VvdVertex& vertex = *GetMeshVertex(vertices, change->Vertex);
    Vec3 p, n;
    DecodeVec48(change->PositionDelta, p);
    DecodeVec48(change->NormalDelta, n);
    PrintVertex(file, change->Vertex, {p.x + vertex.Position.x, p.y + vertex.Position.y, p.z + vertex.Position.z},
                {n.x + vertex.Normal.x, n.y + vertex.Normal.y, n.z + vertex.Normal.z});
  }
}

void PrintVta(std::FILE* file, JobContext& job) {
  const core::ImageView& image = job.Model.View();
  const auto part = *image.At<StudioBodyPart>(job.Model.Header()->BodyPartOffset);
  const auto model = *image.At<StudioModel>(part.Offset() + part->ModelOffset);
  const auto mesh = *image.At<StudioMesh>(model.Offset() + model->MeshOffset);
  const auto flexes = *image.Array<StudioFlex>(mesh.Offset() + mesh->FlexOffset, FlexCount);
  const auto vertices = *GetModelVertexData(job, model);
  std::fprintf(file, "version 1\nnodes\n  0 \"root\" -1\nend\nskeleton\n");
  for (int t = 0; t <= FlexCount + LidFrames; ++t) {
    std::fprintf(file, "time %d\n  0 %2.6f %2.6f %2.6f %2.6f %2.6f %2.6f\n", t, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0);
  }
  std::fprintf(file, "end\nvertexanimation\ntime 0\n");
  for (int v = 0; v < VertexCount; ++v) {
    const VvdVertex& vertex = *GetMeshVertex(vertices, v);
    PrintVertex(file, v, vertex.Position, vertex.Normal);
  }

  for (int f = 0; f < FlexCount; ++f) {
    std::fprintf(file, "time %d // flex_%d\n", f + LidFrames + 1, f);
    PrintFlex(file, job, flexes[f], vertices);
  }
  std::fprintf(file, "end\n");
}

uint64_t VtaSize(const tests::ScratchFolder& folder) {
  return std::filesystem::file_size(folder.Path(VtaName));
}

DecompileJob Job(const tests::ScratchFolder& folder) {
  DecompileJob job;
  job.ModelPath = ModelPath();
  job.OutputDirectory = folder.Path();
  return job;
}

/// The model's whole job, of which nearly all is its face.
void Face(benchmark::State& state) {
  const tests::ScratchFolder folder;
  const DecompileJob job = Job(folder);
  tests::RecordingReport report;
  for (auto _ : state) DecompileModel(job, report);
  state.SetBytesProcessed(static_cast<int64_t>(VtaSize(folder)) * state.iterations());
}
BENCHMARK(Face)->Unit(benchmark::kMillisecond)->UseRealTime();

void PlainFace(benchmark::State& state) {
  const tests::ScratchFolder folder;
  const DecompileJob record = Job(folder);
  tests::RecordingReport report;
  for (auto _ : state) {
    JobContext job(record, report);
    job.Model.Mdl = *LoadModelFile(record.ModelPath);
    std::FILE* const file = std::fopen(folder.Path(VtaName).c_str(), "w");
    PrintVta(file, job);
    std::fclose(file);
  }
  const uint64_t size = VtaSize(folder);
  DecompileModel(record, report);
  if (VtaSize(folder) != size) state.SkipWithError("the two ways differ");
  state.SetBytesProcessed(static_cast<int64_t>(size) * state.iterations());
}
BENCHMARK(PlainFace)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
