#include "jobs/own_compiler.h"

#include <algorithm>

#include "compiler/compile_model.h"
#include "core/paths.h"

namespace tarnwick::jobs {

namespace {

/// The version that is written for a model of `version`: the newest that is not newer.
int32_t WrittenVersion(int32_t version) {
  constexpr int32_t Oldest = 44;
  constexpr int32_t Usual = 48;
  constexpr int32_t Newest = 49;
  if (version >= Newest) return Newest;
  return version >= Usual ? Usual : Oldest;
}

}  // namespace

std::optional<std::string> CompileUnchanged(const ModelCompile& compile, core::Report& report) {
  compiler::CompileOptions options;
  options.Files = &compile.Files;
  options.GameDirectory = compile.GameDirectory;
  options.Version = WrittenVersion(compile.Version);
  options.NormalAngle = 0;
  options.KeepValues = true;
  options.Threads = compile.Threads;
  options.Stop = compile.Stop;
  compiler::CompileReport done;
  const bool isWritten = compiler::CompileModel(compile.Script, options, done);
  for (const core::Trouble& trouble : done.Troubles) report.Tell(trouble);
  const auto mdl = std::find_if(done.Files.begin(), done.Files.end(),
                                [](const auto& file) { return core::LowerAscii(file.Path).ends_with(".mdl"); });
  if (!isWritten || mdl == done.Files.end()) return std::nullopt;
  return mdl->Path;
}

}  // namespace tarnwick::jobs
