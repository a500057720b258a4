#include "sdk/vtf2tga_program.h"

#include <optional>

#include "core/file_image.h"
#include "core/paths.h"
#include "sdk/tool_console.h"
#include "sdk/vtf_file.h"
#include "sdk/vtf_info.h"

namespace tarnwick::sdk {

namespace {

constexpr std::string_view Help = R"(Usage: vtf2tga [-nopause] -i INPUT.vtf [-o OUTPUT.tga]
       vtf2tga -info|-json -i INPUT.vtf

Prints the facts of a texture.

  -i FILE     the texture
  -info       print the facts of the texture as lines "key: value"
  -json       print them as a JSON object
  -nopause    do not wait for the Enter key at the end
  -help       print this

Example: vtf2tga -nopause -i materials/models/props/brick.vtf -o brick.tga
)";

enum class Task { Export, Info, Json };

struct Request {
  Task Wanted = Task::Export;
  std::string Input;
  std::optional<std::string> Output;
};

/// Reads the arguments. Nothing, with the reason printed, if they are wrong.
std::optional<Request> ReadArguments(std::span<const std::string> arguments, std::ostream& err) {
  Request request;
  bool hasInput = false;
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    const bool takesValue = IsSwitch(argument, "-i") || IsSwitch(argument, "-o");
    if (takesValue && i + 1 == arguments.size()) {
      err << "Error: " << argument << " must be followed by a file name; see vtf2tga -help\n";
      return std::nullopt;
    }
    if (IsSwitch(argument, "-nopause")) continue;
    if (IsSwitch(argument, "-info")) {
      request.Wanted = Task::Info;
    } else if (IsSwitch(argument, "-json")) {
      request.Wanted = Task::Json;
    } else if (IsSwitch(argument, "-o")) {
      request.Output = arguments[++i];
    } else if (LooksLikeSwitch(argument) && !takesValue) {
      err << "Error: unknown switch " << argument << "; see vtf2tga -help\n";
      return std::nullopt;
    } else if (hasInput) {
      err << "Error: more than one input: " << argument << "; see vtf2tga -help\n";
      return std::nullopt;
    } else {
      request.Input = takesValue ? arguments[++i] : argument;
      hasInput = true;
    }
  }
  if (request.Input.empty()) {
    err << "Error: no input file; see vtf2tga -help\n";
    return std::nullopt;
  }
  return request;
}

}  // namespace

int Vtf2Tga(std::span<const std::string> arguments, std::ostream& out, std::ostream& err) {
  for (const std::string& argument : arguments) {
    if (!IsHelpSwitch(argument)) continue;
    out << Help;
    return ToolSuccess;
  }
  const auto request = ReadArguments(arguments, err);
  if (!request) return ToolWrongUsage;

  std::string reason;
  const auto fail = [&](const std::string& file) {
    err << "Error: " << file << ": " << reason << "\n";
    return ToolFailure;
  };
  const auto image = core::FileImage::Read(request->Input, &reason);
  if (!image) return fail(request->Input);
  const auto vtf = VtfFile::Open(image->View(), reason);
  if (!vtf) return fail(request->Input);
  if (request->Wanted == Task::Info) out << VtfInfoText(request->Input, vtf->Info());
  if (request->Wanted == Task::Json) out << VtfInfoJson(request->Input, vtf->Info());
  if (request->Wanted != Task::Export) return ToolSuccess;
  reason = "writing TGA files is not there yet";
  return fail(request->Input);
}

}  // namespace tarnwick::sdk
