// Decompiling a tree of models out of an archive, against the same files loose and against unpacking them first.

#include <benchmark/benchmark.h>

#include <filesystem>

#include "archives/content_files.h"
#include "archives/extraction.h"
#include "core/file_image.h"
#include "decompiler/decompile_job.h"
#include "support/archive_builder.h"
#include "support/model_builder.h"
#include "support/scratch_folder.h"
#include "support/silent_report.h"

namespace {

using namespace tarnwick;

constexpr int Models = 200;

class NoTroubles : public core::TroubleSink {
  void Tell(const core::Trouble&) override {}
};

/// A model of 900 vertices, `Models` times in a folder and in an archive.
class Sample {
 public:
  Sample() {
    tests::ModelBuilder builder;
    tests::MeshDescription mesh;
    mesh.Vertices.assign(900, mesh.Vertices.front());
    std::vector<uint16_t> indices;
    for (int i = 0; i < 5400; ++i) indices.push_back(static_cast<uint16_t>(i * 7 % 900));
    mesh.Lods = {tests::Triangles(indices)};
    builder.BodyParts[0].Models[0].Meshes = {mesh};
    tests::VpkBuilder vpk;
    for (int i = 0; i < Models; ++i) builder.Write(Loose.Path("models"), "crate" + std::to_string(i));
    for (const std::string& name : Loose.Files()) {
      const auto image = core::FileImage::Read(Loose.Path(name));
      const auto bytes = image->Bytes();
      vpk.Files.push_back({.Name = name, .Bytes = {reinterpret_cast<const char*>(bytes.data()), bytes.size()}});
    }
    tests::WriteText(Archive, vpk.Build().Directory);
  }

  const tests::ScratchFolder Loose;
  const tests::ScratchFolder Folder;
  const std::string Archive = Folder.Path("pak01_dir.vpk");
};

const Sample& TheSample() {
  static const Sample sample;
  return sample;
}

void Decompile(benchmark::State& state, const std::vector<std::string>& models, const core::FileSource& files) {
  const tests::ScratchFolder output;
  tests::SilentReport report;
  for (const std::string& model : models) {
    decompiler::DecompileJob job;
    job.ModelPath = model;
    job.OutputDirectory = output.Path();
    job.Options = decompiler::DecompileOptionReadyToCompile;
    job.Files = &files;
    if (!decompiler::DecompileModel(job, report).Succeeded()) state.SkipWithError("a model failed");
  }
}

std::vector<std::string> LooseModels(const std::string& folder) {
  std::vector<std::string> models;
  for (int i = 0; i < Models; ++i) models.push_back(folder + "/models/crate" + std::to_string(i) + ".mdl");
  return models;
}

void FromLooseFiles(benchmark::State& state) {
  const auto models = LooseModels(TheSample().Loose.Path());
  for (auto _ : state) Decompile(state, models, core::DiskFiles());
}
BENCHMARK(FromLooseFiles)->Unit(benchmark::kMillisecond);

/// Opening the archive and finding the models in it are part of it.
void FromAnArchive(benchmark::State& state) {
  TheSample();
  for (auto _ : state) {
    NoTroubles troubles;
    const archives::ContentFiles files("", troubles);
    std::string reason;
    std::vector<std::string> models;
    const auto listed = files.FilesIn(TheSample().Archive, ".mdl", true, reason);
    for (const archives::ListedFile& file : *listed) models.push_back(file.Name);
    if (models.size() != Models) state.SkipWithError("models are missing");
    Decompile(state, models, files);
  }
}
BENCHMARK(FromAnArchive)->Unit(benchmark::kMillisecond);

void Unpacked(benchmark::State& state) {
  TheSample();
  for (auto _ : state) {
    const tests::ScratchFolder folder;
    NoTroubles troubles;
    std::string reason;
    const auto archive = archives::Archive::Open(TheSample().Archive, reason);
    archives::ExtractFiles(*archive, archives::ChooseFiles(*archive, {}), folder.Path(), troubles, {}, {});
    Decompile(state, LooseModels(folder.Path()), core::DiskFiles());
  }
}
BENCHMARK(Unpacked)->Unit(benchmark::kMillisecond);

}  // namespace
