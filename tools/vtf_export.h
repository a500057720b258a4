#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "core/report.h"
#include "tools/tool_run.h"

namespace tarnwick::tools {

/// A VTF file to be written as an image.
struct VtfExport {
  std::string SdkDirectory;
  std::string Input;
  std::string Output;  // its ending tells the format
};

/// Writes the TGA file at `tgaPath` again in the format that `destination` asks for, appending to `log`. True if a file
/// was written, false also where there was nothing to do.
using TgaToImage = std::function<bool(const std::string& tgaPath, const std::string& destination, std::string& log)>;

/// What became of an export.
struct VtfExportResult {
  bool ToolFound = false;
  FinishedRun Run;
  std::string TgaPath;    // the file that vtf2tga was told to write
  std::string ImagePath;  // the file that was asked for; the same for a TGA
  std::string Log;        // what a window shows: the run's text, then the conversion's
};

/// The output that is suggested for the VTF file at `input`: its path with the ending "tga". Without an ending one is
/// added.
std::string SuggestOutputName(std::string_view input);

/// The TGA file that vtf2tga writes for `job`: the output with the ending "tga", or the input so if there is no output.
std::string TgaPathOf(const VtfExport& job);

/// vtf2tga's command line.
std::string Vtf2tgaCommandLine(std::string_view sdkDirectory, std::string_view input, std::string_view tgaPath);

/// Runs vtf2tga and converts the TGA file that it makes. An output without an ending becomes a TGA file; an empty one
/// takes its name from the input. `showLog`, if given, gets the text once the tool has ended and before the conversion.
/// A missing tool and a failed start are told in `report`; after a stop nothing is converted.
VtfExportResult ExtractVtf(const VtfExport& job, const TgaToImage& convert, const ToolRunOptions& options,
                           core::Report& report, const std::function<void(const std::string&)>& showLog = {});

}  // namespace tarnwick::tools
