#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "compiled_files.h"
#include "compiler/compile_model.h"
#include "decompiler/decompile_job.h"
#include "support/layout_checker.h"
#include "support/recording_report.h"
#include "support/scratch_folder.h"

namespace tarnwick::tests {

/// A model that is taken apart, compiled, and taken apart again.
struct RoundTrip {
  ScratchFolder First, Second;
  bool Compiled = false;
  std::string Told;  // of the compile
  compiler::CompiledFiles Files;
  std::vector<std::string> Layout;                   // what is wrong with the compiled files
  std::map<std::string, std::string> Before, After;  // sources by their names

  explicit RoundTrip(const std::string& modelPath) {
    TakeApart(modelPath, First, Before);
    compiler::CompileOptions options;
    options.NormalAngle = 0;
    options.KeepValues = true;
    compiler::CompileReport report;
    auto files = compiler::CompileToMemory(First.Path("ravelback.qc"), options, report);
    for (const core::Trouble& trouble : report.Troubles) Told += trouble.Text + "\n";
    if (!files) return;
    Compiled = true;
    Files = std::move(*files);
    Layout = CheckLayout({Files.Mdl, Files.Vvd, Files.Vtx, Files.Phy});
    ScratchFolder model;
    TakeApart(WriteCompiled(model, Files), Second, After);
  }

  /// The names of sources that differ, of those for which `wanted` holds.
  template <typename Wanted>
  std::vector<std::string> Different(const Wanted& wanted) const {
    std::vector<std::string> names;
    for (const auto& [name, text] : Before) {
      if (!wanted(name, text)) continue;
      const auto found = After.find(name);
      if (found == After.end() || found->second != text) names.push_back(name);
    }
    for (const auto& [name, text] : After) {
      if (wanted(name, text) && Before.count(name) == 0) names.push_back(name);
    }
    return names;
  }
  static bool IsMesh(const std::string& name, const std::string& text) {
    return name.ends_with(".vta") || (name.ends_with(".smd") && text.find("\ntriangles\n") != std::string::npos);
  }

 private:
  static void TakeApart(const std::string& path, const ScratchFolder& folder,
                        std::map<std::string, std::string>& sources) {
    decompiler::DecompileJob job{
        .ModelPath = path, .OutputDirectory = folder.Path(), .Options = decompiler::DecompileOptionReadyToCompile};
    RecordingReport report;
    const auto result = decompiler::DecompileModel(job, report);
    EXPECT_TRUE(result.Succeeded()) << report.LogText;
    for (const std::string& name : folder.Files()) sources[name] = ReadText(folder.Path(name));
  }
};

}  // namespace tarnwick::tests
