#include "sdk/studiomdl_program.h"

#include <algorithm>
#include <filesystem>

#include "compiler/compile_model.h"
#include "core/paths.h"
#include "sdk/model_dump.h"
#include "sdk/studiomdl_arguments.h"
#include "sdk/tool_console.h"

namespace tarnwick::sdk {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view Help =
    R"(Usage: studiomdl [-game DIR] [-nop4] [-quiet] [-version N] [-printbones] [-definebone] [-h] SCRIPT.qc

Compiles a QC script with the meshes, animations and shapes that it names into a model of the game: <DIR>/models/NAME.mdl
with its .vvd, .dx90.vtx and .phy, where NAME is what $modelname says. All of the files are written, or none.

  -game DIR     the game directory; without it the nearest one above the script that holds gameinfo.txt
  -version N    the version of the model: 44, 48 (the usual one) or 49
  -printbones   list the model's bones
  -definebone   print them as $definebone statements
  -h            print the hit boxes as $hbox statements
  -quiet        print errors and warnings only
  -nop4         taken for granted, like -nopause
  -help         print this

The switches -fullcollide, -checklengths, -perf, -printgraph and -f of the SDK's tool are known and passed over.

Example: studiomdl -game ~/games/mod -nop4 crate.qc
)";

bool AsksForHelp(const std::string& argument) {
  return IsSwitch(argument, "-help") || IsSwitch(argument, "-?") || argument == "/?";
}

/// The nearest folder above `script` that holds a game; "" if there is none.
std::string GameAbove(const std::string& script) {
  std::error_code error;
  fs::path folder = fs::absolute(core::NativePath(script), error).parent_path();
  while (!error && !folder.empty()) {
    if (core::FileExists(core::PathText(folder / "gameinfo.txt"))) return core::PathText(folder);
    if (folder == folder.parent_path()) break;
    folder = folder.parent_path();
  }
  return {};
}

/// A trouble as a line that says itself what it is.
std::string LineOf(const core::Trouble& trouble) {
  const bool isError = trouble.Level == core::Severity::Error;
  const std::string word = isError ? "error: " : "warning: ";
  if (trouble.Level == core::Severity::Note || trouble.Text.find(word) != std::string::npos) return trouble.Text;
  return (isError ? "ERROR: " : "WARNING: ") + trouble.Text;
}

void PrintReport(const compiler::CompileReport& report, std::ostream& out) {
  for (const auto& file : report.Files) out << "writing " << file.Path << ": " << file.Size << " bytes\n";
  out << "bones " << report.Bones << ", vertices " << report.Vertices << ", triangles " << report.Triangles
      << ", animations " << report.Animations << ", sequences " << report.Sequences << "\n";
}

bool PrintParts(const StudiomdlRequest& request, const compiler::CompileReport& report, std::ostream& out,
                std::ostream& err) {
  const ModelDump dump{request.PrintBones, request.DefineBones, request.DumpHitboxes};
  if (!dump.Bones && !dump.DefinedBones && !dump.Hitboxes) return true;
  const auto mdl = std::find_if(report.Files.begin(), report.Files.end(),
                                [](const auto& file) { return core::LowerAscii(file.Path).ends_with(".mdl"); });
  std::string reason;
  if (mdl == report.Files.end() || DumpModel(mdl->Path, dump, out, reason)) return true;
  err << "ERROR: " << mdl->Path << ": " << reason << "\n";
  return false;
}

}  // namespace

int Studiomdl(std::span<const std::string> arguments, std::ostream& out, std::ostream& err) {
  if (std::any_of(arguments.begin(), arguments.end(), AsksForHelp)) {
    out << Help;
    return ToolSuccess;
  }
  std::string reason;
  const auto request = ReadStudiomdlArguments(arguments, reason);
  if (!request) {
    err << "Error: " << reason << "; see studiomdl -help\n";
    return ToolWrongUsage;
  }
  compiler::CompileOptions options;
  options.GameDirectory = request->GameDirectory.empty() ? GameAbove(request->Script) : request->GameDirectory;
  options.Version = request->Version;
  if (options.GameDirectory.empty()) {
    err << "Error: no game directory is named, and none is above " << request->Script << "; see studiomdl -help\n";
    return ToolWrongUsage;
  }
  const std::string name(core::LastComponent(request->Script));
  if (!request->Quiet) {
    out << "Working on \"" << name << "\"\n";
    for (const std::string& known : request->PassedOver) out << known << " has no meaning here and is passed over\n";
  }
  compiler::CompileReport report;
  const bool isWritten = compiler::CompileModel(request->Script, options, report);
  for (const core::Trouble& trouble : report.Troubles) err << LineOf(trouble) << "\n";
  if (!isWritten) {
    err << "ERROR: Aborted Processing on \"" << name << "\"\n";
    return ToolFailure;
  }
  if (!request->Quiet) PrintReport(report, out);
  if (!PrintParts(*request, report, out, err)) return ToolFailure;
  if (!request->Quiet) out << "Completed \"" << name << "\"\n";
  return ToolSuccess;
}

}  // namespace tarnwick::sdk
