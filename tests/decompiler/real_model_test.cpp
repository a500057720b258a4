#include <gmock/gmock.h>

#include <filesystem>

#include "decompiled_model.h"
#include "support/real_files.h"
#include "support/smd_reader.h"

namespace tarnwick::decompiler {
namespace {

using namespace tests;
namespace fs = std::filesystem;

/// Decompiles the model at `path` and reads every SMD and VTA file that came of it.
void CheckModel(const std::string& path) {
  SCOPED_TRACE(path);
  ScratchFolder folder;
  DecompileJob job{.ModelPath = path, .OutputDirectory = folder.Path(), .Options = DecompileOptionReadyToCompile};
  RecordingReport report;
  const DecompileResult result = DecompileModel(job, report);
  EXPECT_TRUE(result.Succeeded()) << report.LogText;
  EXPECT_EQ(folder.Files().size(), result.Files.size());
  for (const std::string& name : folder.Files()) {
    if (name.ends_with(".qc")) continue;
    const SmdFile file = ReadSmd(ReadText(folder.Path(name)));
    EXPECT_EQ(file.Problem, "") << name;
    EXPECT_FALSE(file.Nodes.empty() || file.Frames.empty()) << name;
    for (const SmdTriangle& triangle : file.Triangles) {
      for (const SmdVertex& corner : triangle.Corners) EXPECT_FALSE(corner.Weights.empty()) << name;
    }
  }
}

TEST(RealModel, BecomesFilesThatReadBack) {
  const fs::path folder = fs::path(RealFilesFolder()) / "models";
  if (!fs::exists(folder)) GTEST_SKIP() << "no real models in " << folder;
  int models = 0;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.path().extension() != ".mdl") continue;
    CheckModel(entry.path().string());
    ++models;
  }
  EXPECT_GT(models, 0);
}

TEST(RealModel, SampleBecomesFilesThatReadBack) {
  CheckModel(TARNWICK_SAMPLES "/walker.mdl");
}

}  // namespace
}  // namespace tarnwick::decompiler
