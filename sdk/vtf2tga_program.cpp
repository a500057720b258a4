#include "sdk/vtf2tga_program.h"

#include <charconv>
#include <filesystem>
#include <optional>

#include "core/file_image.h"
#include "core/paths.h"
#include "sdk/tool_console.h"
#include "textures/texture_export.h"
#include "textures/vtf_file.h"
#include "textures/vtf_info_text.h"

namespace tarnwick::sdk {

using namespace textures;

namespace {

constexpr std::string_view Help = R"(Usage: vtf2tga [-nopause] -i INPUT.vtf [-o OUTPUT.tga] [-mip N]
       vtf2tga [-nopause] -info|-json -i INPUT.vtf

Writes a texture as an uncompressed TGA file: 32 bits where it holds alpha, 24 where not. Further frames, faces and
slices go to numbered files beside OUTPUT: water001.tga, sky_face1.tga, fog_slice1.tga.

  -i FILE     the texture
  -o FILE     the TGA file (default: INPUT with the extension .tga)
  -mip N      write mip level N, half the size of level N - 1 (default: 0, the largest)
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
  std::string Output;
  int Mip = 0;
};

/// The file's name with ".tga" in the place of its extension.
std::string DefaultOutput(const std::string& input) {
  const std::string_view name = core::LastComponent(input);
  return std::string(core::DirectoryWithSeparator(input)).append(name.substr(0, name.rfind('.'))).append(".tga");
}

bool SameFile(const std::string& a, const std::string& b) {
  std::error_code error;
  return std::filesystem::equivalent(core::NativePath(a), core::NativePath(b), error) && !error;
}

/// Reads the arguments. Nothing, with the reason printed, if they are wrong.
std::optional<Request> ReadArguments(std::span<const std::string> arguments, std::ostream& err) {
  Request request;
  const auto refuse = [&](std::string_view why) {
    err << "Error: " << why << "; see vtf2tga -help\n";
    return std::nullopt;
  };
  const auto takeInput = [&](const std::string& input) {
    if (!request.Input.empty()) return false;
    request.Input = input;
    return true;
  };
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    const bool isInput = IsSwitch(argument, "-i");
    const bool isOutput = IsSwitch(argument, "-o");
    const bool isMip = IsSwitch(argument, "-mip");
    if (isInput || isOutput || isMip) {
      if (++i == arguments.size()) return refuse(argument + " must be followed by a value");
      const std::string& value = arguments[i];
      if (value.empty()) return refuse(argument + " is followed by an empty name");
      if (isInput && !takeInput(value)) return refuse("more than one input: " + value);
      if (isOutput) request.Output = value;
      if (isMip) {
        const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), request.Mip);
        if (error != std::errc() || end != value.data() + value.size() || request.Mip < 0) {
          return refuse("-mip must be followed by a number from 0 on");
        }
      }
    } else if (IsSwitch(argument, "-info")) {
      request.Wanted = Task::Info;
    } else if (IsSwitch(argument, "-json")) {
      request.Wanted = Task::Json;
    } else if (IsSwitch(argument, "-nopause")) {
      continue;  // heeded where the tool ends
    } else if (LooksLikeSwitch(argument)) {
      return refuse("unknown switch " + argument);
    } else if (!takeInput(argument)) {
      return refuse("more than one input: " + argument);
    }
  }
  if (request.Input.empty()) return refuse("no input file");
  if (request.Output.empty()) request.Output = DefaultOutput(request.Input);
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

  if (request->Mip >= vtf->Info().MipLevels) {
    reason = "there is no mip level " + std::to_string(request->Mip) + "; the texture has " +
             std::to_string(vtf->Info().MipLevels);
    return fail(request->Input);
  }
  if (SameFile(request->Input, request->Output)) {
    reason = "the TGA file would take the place of the texture";
    return fail(request->Output);
  }
  const bool done = ExportTexture(
      *vtf, request->Mip, request->Output,
      [&](const std::string& file, const StoredImage& written, PixelLayout layout) {
        out << file << ": " << written.Width << " x " << written.Height << ", " << 8 * BytesPerPixel(layout)
            << " bits, from " << PixelFormatName(written.Format) << "\n";
      },
      reason);
  if (done) return ToolSuccess;
  err << "Error: " << reason << "\n";
  return ToolFailure;
}

}  // namespace tarnwick::sdk
