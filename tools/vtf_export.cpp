#include "tools/vtf_export.h"

#include "core/paths.h"
#include "tools/run_checks.h"
#include "tools/sdk_tools.h"

namespace tarnwick::tools {

namespace {

constexpr std::string_view TgaEnding = "tga";

/// `path` up to its last dot, the dot included; with a dot added if its file name has none.
std::string Stem(std::string_view path) {
  const size_t dot = core::LastComponent(path).rfind('.');
  if (dot == std::string_view::npos) return std::string(path) + ".";
  return std::string(path.substr(0, core::DirectoryWithSeparator(path).size() + dot + 1));
}

}  // namespace

std::string SuggestOutputName(std::string_view input) {
  return Stem(input) + std::string(TgaEnding);
}

std::string TgaPathOf(const VtfExport& job) {
  return SuggestOutputName(job.Output.empty() ? job.Input : job.Output);
}

std::string Vtf2tgaCommandLine(std::string_view sdkDirectory, std::string_view input, std::string_view tgaPath) {
  return SdkToolPath(sdkDirectory, Vtf2tga) + " -nopause -i \"" + std::string(input) + "\" -o \"" +
         std::string(tgaPath) + "\"";
}

VtfExportResult ExtractVtf(const VtfExport& job, const TgaToImage& convert, const ToolRunOptions& options,
                           core::Report& report, const std::function<void(const std::string&)>& showLog) {
  const std::string output = job.Output.empty() ? SuggestOutputName(job.Input) : job.Output;
  VtfExportResult result;
  result.TgaPath = TgaPathOf(job);
  result.ImagePath = Stem(output).size() > output.size() ? result.TgaPath : output;
  result.ToolFound = RequireTool(SdkToolPath(job.SdkDirectory, Vtf2tga), Vtf2tga, report);
  if (!result.ToolFound) return result;

  result.Run = RunTool(ToolRun::Vtf2tga, Vtf2tgaCommandLine(job.SdkDirectory, job.Input, result.TgaPath), options,
                       CheckVtf2tgaRun(job.Input, result.TgaPath));
  result.Log = result.Run.TextWithNotes();
  if (result.Run.Outcome.Failure) ReportFatalSystemError(*result.Run.Outcome.Failure, report);
  if (showLog) showLog(result.Log);
  if (!result.Run.Outcome.Failure && !result.Run.Outcome.Stopped) {
    convert(result.TgaPath, result.ImagePath, result.Log);
  }
  return result;
}

}  // namespace tarnwick::tools
