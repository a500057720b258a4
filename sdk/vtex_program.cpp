#include "sdk/vtex_program.h"

#include <algorithm>
#include <filesystem>

#include "core/file_image.h"
#include "core/output_file.h"
#include "core/paths.h"
#include "sdk/tool_console.h"
#include "sdk/vtex_arguments.h"
#include "textures/texture_compile.h"
#include "textures/vmt_writer.h"

namespace tarnwick::sdk {

using namespace textures;

namespace {

constexpr std::string_view Help =
    R"(Usage: vtex [-nopause] [-quiet] [-fast] [-outdir DIR] [-shader NAME] [-vmtparam KEY VALUE]... INPUT.tga...

Makes a texture of each TGA file, for <game>/materialsrc/PATH.tga at <game>/materials/PATH.vtf, and with -shader or
-vmtparam the material PATH.vmt beside it. An input that a parameter names, such as the normal map of $bumpmap, gets no
material of its own. Folders are made.

  -shader NAME           the material's shader (default: VertexLitGeneric below materials/models, else
                         LightmappedGeneric)
  -vmtparam KEY VALUE    a parameter of the material; may be given many times
  -outdir DIR            write everything to DIR instead
  -fast                  compress quickly, a little less well, for a first look
  -quiet                 print errors and warnings only
  -nopause               do not wait for the Enter key at the end
  -help                  print this

Options of a texture stand in PATH.txt beside PATH.tga, one a line: nocompress, dxt5, onebitalpha, normal, invertgreen,
stripalphachannel, nomip, nolod, clamps, clampt, pointsample, trilinear, anisotropic, reduce N, reducex N, reducey N,
bumpscale X, startframe N, endframe N.

Example: vtex -nopause -shader VertexLitGeneric -vmtparam $model 1 game/materialsrc/models/props/brick.tga
)";

/// A texture's name as parameters are compared with it: small letters, single slashes.
std::string Comparable(std::string_view name) {
  std::string result;
  for (const char c : core::LowerAscii(name)) {
    const char next = c == '\\' ? '/' : c;
    if (next != '/' || (!result.empty() && result.back() != '/')) result += next;
  }
  return result;
}

/// How the parameters refer to the texture of that name.
struct References {
  bool AsNormalMap = false;
  bool AsCompanion = false;  // by any parameter but $basetexture
};

References FindReferences(const VtexRequest& request, const std::string& name) {
  References references;
  for (const auto& [key, value] : request.Parameters) {
    if (Comparable(value) != Comparable(name) || core::EqualIgnoringCase(key, "$basetexture")) continue;
    references.AsCompanion = true;
    if (core::EqualIgnoringCase(key, "$bumpmap") || core::EqualIgnoringCase(key, "$normalmap")) {
      references.AsNormalMap = true;
    }
  }
  return references;
}

Material MaterialFor(const VtexRequest& request, const std::string& name) {
  Material material{request.Shader, request.Parameters};
  if (material.Shader.empty()) {
    material.Shader = Comparable(name).starts_with("models/") ? "VertexLitGeneric" : "LightmappedGeneric";
  }
  const bool hasBase = std::any_of(request.Parameters.begin(), request.Parameters.end(), [](const auto& parameter) {
    return core::EqualIgnoringCase(parameter.first, "$basetexture");
  });
  if (!hasBase) material.Parameters.insert(material.Parameters.begin(), {"$basetexture", name});
  return material;
}

bool WriteMaterial(const Material& material, const std::string& path, std::string& reason) {
  auto file = core::OutputFile::Create(path, &reason);
  if (!file) return false;
  WriteVmt(material, *file);
  if (file->Commit()) return true;
  reason = file->Error();
  return false;
}

/// One run of the tool.
class Compiler {
 public:
  Compiler(const VtexRequest& request, std::ostream& out, std::ostream& err)
      : m_request(request), m_out(out), m_err(err) {}

  /// Makes the texture and material of one input; false, with the reason printed, if it failed.
  bool Compile(const std::string& name, bool isFirst) {
    std::string reason;
    const TextureInput input = FindTextureInput(name);
    const auto place = PlaceOfMaterial(input.Tga, m_request.OutputFolder, reason);
    if (!place) return Fail(input.Tga, reason);
    const References references = FindReferences(m_request, place->Name);
    const auto options = ReadOptions(input);
    if (!options) return false;

    const bool isNormalMap = references.AsNormalMap || core::LowerAscii(place->Stem).ends_with("_normal");
    auto source = MakeTexture(input, *options, isNormalMap, reason);
    if (!source) return Fail("", reason);
    source->Effort = m_request.Fast ? FitEffort::Quick : FitEffort::Best;
    const std::string texture = place->Folder + place->Stem + ".vtf";
    uint64_t bytes = 0;
    if (!WriteTexture(*source, texture, bytes, reason)) return Fail(texture, reason);
    ReportTexture(texture, *source, bytes);

    const bool wanted = !m_request.Shader.empty() || !m_request.Parameters.empty();
    if (!wanted || (references.AsCompanion && !isFirst)) return true;
    const std::string path = place->Folder + place->Stem + ".vmt";
    const Material material = MaterialFor(m_request, place->Name);
    if (!WriteMaterial(material, path, reason)) return Fail(path, reason);
    if (!m_request.Quiet) m_out << path << ": " << material.Shader << "\n";
    return true;
  }

 private:
  bool Fail(const std::string& file, const std::string& reason) {
    m_err << "Error: " << file << (file.empty() ? "" : ": ") << reason << "\n";
    return false;
  }

  std::optional<TextureOptions> ReadOptions(const TextureInput& input) {
    if (input.Options.empty()) return TextureOptions();
    std::string reason;
    const auto image = core::FileImage::Read(input.Options, &reason);
    if (!image) {
      Fail(input.Options, reason);
      return std::nullopt;
    }
    const auto bytes = image->Bytes();
    std::vector<std::string> warnings;
    const auto options = ParseTextureOptions({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, warnings);
    for (const std::string& warning : warnings) m_err << "Warning: " << input.Options << ": " << warning << "\n";
    return options;
  }

  void ReportTexture(const std::string& path, const VtfSource& source, uint64_t bytes) {
    if (m_request.Quiet) return;
    const Picture& largest = source.Frames[0][0];
    m_out << path << ": " << largest.Width << " x " << largest.Height << ", " << PixelFormatName(source.Format)
          << ", mip levels " << WrittenMipLevels(source);
    if (source.Frames.size() > 1) m_out << ", frames " << source.Frames.size();
    m_out << ", " << bytes << " bytes\n";
  }

  const VtexRequest& m_request;
  std::ostream& m_out;
  std::ostream& m_err;
};

}  // namespace

int Vtex(std::span<const std::string> arguments, std::ostream& out, std::ostream& err) {
  for (const std::string& argument : arguments) {
    if (!IsHelpSwitch(argument)) continue;
    out << Help;
    return ToolSuccess;
  }
  std::string reason;
  const auto request = ReadVtexArguments(arguments, reason);
  if (!request) {
    err << "Error: " << reason << "; see vtex -help\n";
    return ToolWrongUsage;
  }
  Compiler compiler(*request, out, err);
  bool allDone = true;
  for (size_t i = 0; i < request->Inputs.size(); ++i) allDone = compiler.Compile(request->Inputs[i], i == 0) && allDone;
  return allDone ? ToolSuccess : ToolFailure;
}

}  // namespace tarnwick::sdk
