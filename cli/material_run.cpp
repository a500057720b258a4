#include "cli/material_run.h"

#include <filesystem>

#include "cli/terminal.h"
#include "core/paths.h"
#include "core/text_report.h"
#include "images/conversion.h"

namespace tarnwick::cli {

namespace {

/// Passes everything on and keeps the boxes that tell of a failure, one line each.
class ErrorKeeper : public core::Report {
 public:
  explicit ErrorKeeper(core::Report& inner) : m_inner(inner) {}
  void Log(std::string_view text) override { m_inner.Log(text); }
  void Tell(const core::Trouble& trouble) override {
    m_inner.Tell(trouble);
    if (trouble.Level == core::Severity::Error) m_errors.push_back(LineOf(trouble));
  }
  std::vector<std::string> Take() { return std::exchange(m_errors, {}); }

 private:
  core::Report& m_inner;
  std::vector<std::string> m_errors;
};

/// The file that vtex makes of the TGA file at `tga`, with another extension: it stands below "materials" where the TGA
/// file stands below "materialsrc".
std::string CompiledPath(const tools::MaterialCompile& job, const std::string& game, const std::string& tga,
                         std::string_view extension) {
  const std::string folder = game + (job.ModelPath ? "/materials/models/" : "/materials/") + job.Directory;
  const std::string stem(core::LastComponent(tga).substr(0, core::LastComponent(tga).rfind('.')));
  return core::PathText(
      (core::NativePath(folder) / core::NativePath(stem + std::string(extension))).lexically_normal());
}

MaterialOutcome OutcomeOf(const tools::MaterialCompile& job, const std::string& game,
                          const tools::MaterialResult& result, std::vector<std::string> errors) {
  MaterialOutcome outcome;
  outcome.Image = result.Image;
  outcome.CommandLine = result.Run.CommandLine;
  outcome.Errors = std::move(errors);
  outcome.Stopped = result.Run.Outcome.Stopped;
  if (!outcome.Succeeded() || !result.ToolFound) return outcome;
  const bool toolFailed = result.Run.Outcome.End && result.Run.Outcome.End->ExitCode != 0;
  const std::string texture = CompiledPath(job, game, result.Maps.Base, ".vtf");
  if (toolFailed) {
    outcome.Errors.push_back("vtex did not succeed");
  } else if (!core::FileExists(texture)) {
    outcome.Errors.push_back("vtex wrote no " + texture);
  } else {
    outcome.Files.push_back(texture);
    const std::string material = CompiledPath(job, game, result.Maps.Base, ".vmt");
    if (core::FileExists(material)) outcome.Files.push_back(material);
  }
  return outcome;
}

}  // namespace

void RunMaterials(const tools::MaterialCompile& job, const ToolDirectories& directories,
                  const images::ImageWorker& worker, const tools::ToolRunOptions& run, core::Report& report,
                  const std::function<void(const MaterialOutcome&)>& done) {
  ErrorKeeper keeper(report);
  std::string pageText;
  tools::PageLog log;
  log.SetTarget(&pageText, [&] { report.Log(std::exchange(pageText, {})); });
  tools::MaterialCompileCalls calls{keeper, log, {}, {}, {}, {}, {}, {}, {}, {}};
  calls.SdkDirectory = [&] { return directories.SdkFor(tools::Vtex); };
  calls.GameDirectory = [&] { return directories.Game; };
  calls.ConvertToTga = [&](const std::string& source, const std::optional<std::string>& alpha,
                           const std::string& directory, std::string& text) {
    core::TextReport conversionReport(text, keeper);
    const auto mayCreate = [](const images::MissingDirectory&) { return true; };
    return images::ConvertMapToTga(source, alpha, directory, {conversionReport, worker, mayCreate});
  };
  calls.Run = run;
  calls.OnResult = [&](const tools::MaterialResult& result) {
    report.Log(result.Log);
    done(OutcomeOf(job, directories.Game, result, keeper.Take()));
  };
  tools::CompileMaterials(job, calls);
}

}  // namespace tarnwick::cli
