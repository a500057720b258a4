// Writes the bundled sample:       make_sample DIRECTORY
// Tells whether it is up to date:  make_sample --check DIRECTORY

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "compiler/compile_model.h"
#include "decompiler/decompile_job.h"
#include "support/scratch_folder.h"
#include "support/silent_report.h"
#include "walker.h"
#ifdef TARNWICK_HAS_IMAGES
#include "walker_materials.h"
#endif

namespace {

using namespace tarnwick;

bool IsCurrent(const std::string& path, const std::string& bytes) {
  std::ifstream file(path, std::ios::binary);
  const bool same = file && std::string(std::istreambuf_iterator<char>(file), {}) == bytes;
  if (!same) std::fprintf(stderr, "%s is not what make_sample writes\n", path.c_str());
  return same;
}

/// The model at `path`, taken apart and compiled.
std::optional<compiler::CompiledFiles> TakenApartAndCompiled(const std::string& path) {
  const tests::ScratchFolder sources;
  tests::SilentReport report;
  const decompiler::DecompileJob job{
      .ModelPath = path, .OutputDirectory = sources.Path(), .Options = decompiler::DecompileOptionReadyToCompile};
  if (!decompiler::DecompileModel(job, report).Succeeded()) return std::nullopt;
  compiler::CompileOptions options;
  options.NormalAngle = 0;
  options.KeepValues = true;
  compiler::CompileReport told;
  auto files = compiler::CompileToMemory(sources.Path("ravelback.qc"), options, told);
  for (const core::Trouble& trouble : told.Troubles) std::fprintf(stderr, "%s\n", trouble.Text.c_str());
  return files;
}

/// What the model writer says of the figure, in the form that compiles give it: rounds of taking it apart and compiling
/// it, until what text cannot say of it is gone.
std::optional<compiler::CompiledFiles> Sample() {
  constexpr int Rounds = 6;
  tests::ScratchFolder written;
  auto figure = samples::Walker().Build();
  // The writer makes no boxes. Those that hold whatever a compile finds are left for it to make.
  constexpr model::Vec3 Least = {-1e6f, -1e6f, -1e6f}, Most = {1e6f, 1e6f, 1e6f};
  auto& header = figure.Mdl.Record<model::StudioHeader>("header");
  auto& first = figure.Mdl.Record<model::StudioSeqDesc>("sequences");
  header.HullMinimum = first.Minimum = Least;
  header.HullMaximum = first.Maximum = Most;
  std::string path = figure.Write(written.Path(), "walker");
  std::optional<compiler::CompiledFiles> files;
  for (int i = 0; i < Rounds; ++i) {
    files = TakenApartAndCompiled(path);
    if (!files) return std::nullopt;
    const std::string stem = written.Path("round" + std::to_string(i));
    const std::pair<const char*, const std::string*> parts[] = {
        {".mdl", &files->Mdl}, {".vvd", &files->Vvd}, {".dx90.vtx", &files->Vtx}, {".phy", &files->Phy}};
    for (const auto& [ending, bytes] : parts) std::ofstream(stem + ending, std::ios::binary) << *bytes;
    path = stem + ".mdl";
  }
  return files;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  const bool check = argumentCount == 3 && std::string(arguments[1]) == "--check";
  if (argumentCount != 2 && !check) {
    std::fprintf(stderr, "usage: make_sample [--check] DIRECTORY\n");
    return 2;
  }
  const std::string folder = std::string(arguments[argumentCount - 1]) + "/";
  const auto files = Sample();
  if (!files) {
    std::fprintf(stderr, "the sample cannot be taken apart and compiled\n");
    return 1;
  }
  std::vector<std::pair<std::string, std::string>> parts = {{"walker.mdl", files->Mdl},
                                                            {"walker.vvd", files->Vvd},
                                                            {"walker.dx90.vtx", files->Vtx},
                                                            {"walker.phy", files->Phy}};
#ifdef TARNWICK_HAS_IMAGES
  for (auto& file : samples::WalkerMaterials()) parts.push_back(std::move(file));
#endif
  bool sound = true;
  for (const auto& [name, bytes] : parts) {
    if (check) {
      sound = IsCurrent(folder + name, bytes) && sound;
    } else {
      std::filesystem::create_directories(std::filesystem::path(folder + name).parent_path());
      sound = (std::ofstream(folder + name, std::ios::binary) << bytes).flush().good() && sound;
    }
  }
  return sound ? 0 : 1;
}
