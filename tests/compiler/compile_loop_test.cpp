#include <gmock/gmock.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>

#include "compiler/compile_model.h"
#include "decompiler/decompile_job.h"
#include "support/real_files.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"

namespace tarnwick::compiler {
namespace {

using namespace tests;
namespace fs = std::filesystem;

void Decompile(const std::string& model, const std::string& folder) {
  fs::create_directories(folder);
  decompiler::DecompileJob job;
  job.ModelPath = model;
  job.OutputDirectory = folder;
  job.Options = decompiler::DecompileOptionReadyToCompile;
  RecordingReport report;
  EXPECT_TRUE(DecompileModel(job, report).Completed) << report.LogText;
}

std::string FindEnding(const std::string& folder, const std::string& ending) {
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.path().string().ends_with(ending)) return entry.path().string();
  }
  return {};
}

/// Whether two texts are the same but for numbers that are a hair apart.
::testing::AssertionResult SameText(const std::string& a, const std::string& b) {
  constexpr double Hair = 5e-5;
  size_t i = 0, k = 0;
  while (i < a.size() && k < b.size()) {
    const bool number = (std::isdigit(static_cast<unsigned char>(a[i])) != 0 || a[i] == '-') &&
                        (i == 0 || std::isspace(static_cast<unsigned char>(a[i - 1])) != 0);
    if (!number) {
      if (a[i] != b[k]) return ::testing::AssertionFailure() << "at byte " << i << ": " << a.substr(i, 60);
      ++i;
      ++k;
      continue;
    }
    char *endA = nullptr, *endB = nullptr;
    const double x = std::strtod(a.c_str() + i, &endA), y = std::strtod(b.c_str() + k, &endB);
    if (!(std::abs(x - y) <= Hair)) {
      return ::testing::AssertionFailure() << "at byte " << i << ": " << x << " and " << y;
    }
    i = std::max(i + 1, static_cast<size_t>(endA - a.c_str()));
    k = std::max(k + 1, static_cast<size_t>(endB - b.c_str()));
  }
  return i == a.size() && k == b.size() ? ::testing::AssertionSuccess() : ::testing::AssertionFailure() << "shorter";
}

/// Sources of a model, compiled and taken apart again: as many files, each the same but for rounding. The tests of
/// meshes look at the meshes of coarser levels.
void CheckLoop(const std::string& model) {
  SCOPED_TRACE(model);
  ScratchFolder folder;
  Decompile(model, folder.Path("first"));
  CompileOptions options;
  options.GameDirectory = folder.Path("game");
  options.KeepValues = true;
  options.NormalAngle = 0;
  CompileReport report;
  ASSERT_TRUE(CompileModel(FindEnding(folder.Path("first"), ".qc"), options, report))
      << (report.Troubles.empty() ? "" : report.Troubles.back().Text);
  Decompile(FindEnding(folder.Path("game"), ".mdl"), folder.Path("second"));
  for (const auto& entry : fs::directory_iterator(folder.Path("first"))) {
    const std::string name = entry.path().filename().string();
    ASSERT_TRUE(fs::exists(folder.Path("second/" + name))) << name;
    if (name.starts_with("lod")) continue;
    // Bones that point straight up have many sets of angles for one turn.
    if (model.find("gyroscope") != std::string::npos && name.ends_with(".smd")) continue;
    EXPECT_TRUE(SameText(ReadText(entry.path().string()), ReadText(folder.Path("second/" + name)))) << name;
  }
}

TEST(CompileLoop, GivesRealModelsBack) {
  const fs::path folder = fs::path(RealFilesFolder()) / "models";
  if (!fs::exists(folder)) GTEST_SKIP() << "no real models in " << folder;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.path().extension() == ".mdl") CheckLoop(entry.path().string());
  }
}

}  // namespace
}  // namespace tarnwick::compiler
