#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "decompiler/decompile_job.h"
#include "qc/read_script.h"
#include "support/real_files.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"

namespace tarnwick::qc {
namespace {

namespace fs = std::filesystem;
using ::testing::IsEmpty;

/// Decompiles `model`, ready to compile, and reads its script.
void ExpectASoundScript(const fs::path& model) {
  const tests::ScratchFolder folder;
  tests::RecordingReport report;
  decompiler::DecompileJob job;
  job.ModelPath = model.string();
  job.OutputDirectory = folder.Path();
  job.Options = decompiler::DecompileOptionReadyToCompile;
  ASSERT_TRUE(decompiler::DecompileModel(job, report).Completed) << job.ModelPath;
  for (const std::string& name : folder.Files()) {
    if (!name.ends_with(".qc")) continue;
    const Script script = ReadScript(folder.Path(name));
    EXPECT_THAT(tests::Told(script), IsEmpty()) << job.ModelPath;
    EXPECT_FALSE(script.Sources.empty()) << job.ModelPath;
  }
}

TEST(DecompiledScripts, OfTheSampleNameNoUnknownStatementAndNoMissingFile) {
  ExpectASoundScript(fs::path(TARNWICK_SAMPLES) / "walker.mdl");
}

TEST(DecompiledScripts, OfRealModelsNameNoUnknownStatementAndNoMissingFile) {
  const fs::path models = fs::path(tests::RealFilesFolder()) / "models";
  if (!fs::exists(models)) GTEST_SKIP() << "no models beside the checkout";
  for (const auto& entry : fs::recursive_directory_iterator(models)) {
    if (entry.path().extension() == ".mdl") ExpectASoundScript(entry.path());
  }
}

}  // namespace
}  // namespace tarnwick::qc
