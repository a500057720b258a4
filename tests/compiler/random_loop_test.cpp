// Sound models of every kind: compiled, taken apart, compiled and taken apart again, nothing may change.

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>

#include "compiled_files.h"
#include "compiler/compile_model.h"
#include "decompiler/decompile_job.h"
#include "model/comparison/model_comparison.h"
#include "model_variations.h"
#include "random_sources.h"
#include "smd/source_comparison.h"
#include "support/layout_checker.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"

namespace tarnwick::compiler {
namespace {

using namespace tests;

/// A model in a folder that is removed with it.
struct WrittenModel {
  ScratchFolder Folder;
  std::vector<std::string> Told;
  bool Made = false;

  WrittenModel(const std::string& script, const CompileOptions& options, uint32_t seed = 0, uint32_t variations = 0) {
    CompileReport report;
    auto files = CompileToMemory(script, options, report);
    for (const core::Trouble& trouble : report.Troubles) Told.push_back(trouble.Text);
    if (!files) return;
    Made = true;
    Layout = CheckLayout({files->Mdl, files->Vvd, files->Vtx, files->Phy});
    if (variations != 0) VaryModel(*files, seed, variations);
    WriteCompiled(Folder, *files);
  }
  std::string Path() const { return Folder.Path("model.mdl"); }
  std::vector<std::string> Layout;
};

void TakeApart(const std::string& model, const std::string& folder) {
  decompiler::DecompileJob job{
      .ModelPath = model, .OutputDirectory = folder, .Options = decompiler::DecompileOptionReadyToCompile};
  RecordingReport report;
  EXPECT_TRUE(decompiler::DecompileModel(job, report).Succeeded()) << report.LogText;
}

/// What is not the same behind one round, a line each.
std::vector<std::string> Round(uint32_t seed, uint32_t things, uint32_t variations, int32_t version) {
  ScratchFolder authors, first, second;
  for (const auto& [name, text] : RandomSources(seed, things)) WriteText(authors.Path(name), text);
  CompileOptions options;
  options.Version = version;
  const WrittenModel model(authors.Path("model.qc"), options, seed, variations);
  std::vector<std::string> lines = model.Layout;
  if (!model.Made) return model.Told;
  TakeApart(model.Path(), first.Path());
  options.KeepValues = true;
  options.NormalAngle = 0;
  const WrittenModel again(first.Path("ravelback.qc"), options);
  // What was told of the author's script holds of the model.
  const auto textOf = [](const std::string& line) { return line.substr(std::min(line.find(": "), line.size())); };
  for (const std::string& line : again.Told) {
    const auto same = [&](const std::string& other) { return textOf(other) == textOf(line); };
    if (std::ranges::none_of(model.Told, same)) lines.push_back(line);
  }
  if (!again.Made) return lines;
  TakeApart(again.Path(), second.Path());
  RecordingReport report;
  const auto differences = model::CompareModels(model.Path(), again.Path(), report);
  for (const auto& one : differences.value_or(std::vector<model::ModelDifference>{})) {
    if (one.IsReal()) lines.push_back(model::DifferenceLine(one));
  }
  for (const auto& one : smd::CompareSources(first.Path(), second.Path(), report)) {
    if (!one.IsRounding()) lines.push_back(smd::DifferenceLine(one));
  }
  return lines;
}

/// A number of the environment, for a longer hunt than that of each run.
uint32_t FromEnvironment(const char* name, uint32_t otherwise) {
  const char* text = std::getenv(name);
  return text == nullptr ? otherwise : static_cast<uint32_t>(std::atoi(text));
}

TEST(RandomLoop, GivesModelsOfEveryKindBack) {
  const uint32_t first = FromEnvironment("RANDOM_LOOP_FIRST", 0);
  const uint32_t rounds = FromEnvironment("RANDOM_LOOP_ROUNDS", 96);
  for (uint32_t seed = first; seed < first + rounds; ++seed) {
    // Half of all things, another half each time.
    uint32_t things = seed * 2654435761U;
    things ^= things >> 13;
    things *= 0x5bd1e995;
    things ^= things >> 15;
    if (seed % 4 != 0) things &= ~uint32_t{RandomStatic};
    things &= (1U << RandomThings) - 1;
#ifndef TARNWICK_HULLS
    things &= ~uint32_t{RandomCollision};
#endif
    const int32_t version = seed % 5 == 1 ? 44 : seed % 5 == 2 ? 49 : 48;
    EXPECT_THAT(Round(seed, things, 0, version), testing::IsEmpty())
        << "seed " << seed << ", things " << std::hex << things << ", version " << std::dec << version;
  }
}

/// Not all of these come back, but what does not is told as what no source holds.
TEST(RandomLoop, GivesBackWhatOtherCompilesWrite) {
  const uint32_t first = FromEnvironment("RANDOM_LOOP_FIRST", 0);
  const uint32_t rounds = FromEnvironment("RANDOM_LOOP_ROUNDS", 28);
  for (uint32_t seed = first; seed < first + rounds; ++seed) {
    uint32_t things = (seed + 7) * 2654435761U;
    things = (things ^ things >> 15) & ~(uint32_t{RandomOddMeshes} | RandomStatic) & ((1U << RandomThings) - 1);
#ifndef TARNWICK_HULLS
    things &= ~uint32_t{RandomCollision};
#endif
    const uint32_t variations = seed % 3 == 0 ? 1U << seed / 3 % ModelVariations : seed * 40503U >> 4;
    const uint32_t those = variations & ((1U << ModelVariations) - 1);
    // Boxes that are computed hold what no triangle shows; shapes list it, and so do the users of bones.
    if ((those & (VaryHiddenVertices | VaryRepeatedVertices)) != 0) things |= RandomHitboxes;
    if ((those & VaryHiddenVertices) != 0) things &= ~(uint32_t{RandomFace} | RandomBigSkeleton | RandomWeights);
    const int32_t version = seed % 5 == 1 ? 44 : seed % 5 == 2 ? 49 : 48;
    EXPECT_THAT(Round(seed, things, those, version), testing::IsEmpty())
        << "seed " << seed << ", things " << std::hex << things << ", variations " << those << ", version " << std::dec
        << version;
  }
}

}  // namespace
}  // namespace tarnwick::compiler
